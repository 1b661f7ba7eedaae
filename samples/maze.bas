' maze.bas - builds a maze, draws it, finds ways through it in three manners, takes out its dead ends, and compares.
'
' A maze is a grid of cells. Each cell keeps the doors it has as bits: 1 north, 2 east, 4 south, 8 west. A door always
' belongs to two cells, so both keep it. Everything random comes from one small generator: the same seed gives the same
' maze on every machine.
'
' To play with: %SEED for another maze, %COLUMNS and %ROWS for its size, %EXTRA for more loops.

#COMPILE EXE
#DIM ALL

%SEED = 2024
%COLUMNS = 20
%ROWS = 10
%CELLS = %COLUMNS * %ROWS
%EXTRA = 6                 ' doors to add besides those that end dead ends

%NORTH = 1
%EAST = 2
%SOUTH = 4
%WEST = 8

%START = 0
%GOAL = %CELLS - 1
%UNKNOWN = -1

DIM randomState AS QUAD
DIM doors(%CELLS - 1) AS LONG       ' bits of each cell
DIM mark(%CELLS - 1) AS LONG        ' what a drawing shows in each cell: see Draw

' ---------------------------------------------------------------------------------------------------------------------
' Chance
' ---------------------------------------------------------------------------------------------------------------------

SUB SeedRandom(BYVAL seed AS LONG)
    randomState = seed
END SUB

' A whole number from 0 to limit - 1.
FUNCTION Random(BYVAL limit AS LONG) AS LONG
    randomState = (randomState * 1103515245 + 12345) MOD 2147483648
    FUNCTION = CLNG(randomState \ 65536) MOD limit
END FUNCTION

' ---------------------------------------------------------------------------------------------------------------------
' The grid
' ---------------------------------------------------------------------------------------------------------------------

FUNCTION RowOf(BYVAL cell AS LONG) AS LONG
    FUNCTION = cell \ %COLUMNS
END FUNCTION

FUNCTION ColumnOf(BYVAL cell AS LONG) AS LONG
    FUNCTION = cell MOD %COLUMNS
END FUNCTION

' The direction number 0 to 3 as a door's bit.
FUNCTION DoorBit(BYVAL direction AS LONG) AS LONG
    SELECT CASE direction
        CASE 0
            FUNCTION = %NORTH
        CASE 1
            FUNCTION = %EAST
        CASE 2
            FUNCTION = %SOUTH
        CASE ELSE
            FUNCTION = %WEST
    END SELECT
END FUNCTION

FUNCTION Opposite(BYVAL direction AS LONG) AS LONG
    FUNCTION = (direction + 2) MOD 4
END FUNCTION

' The cell next to this one, or %UNKNOWN at the edge of the grid.
FUNCTION Neighbour(BYVAL cell AS LONG, BYVAL direction AS LONG) AS LONG
    FUNCTION = %UNKNOWN
    SELECT CASE DoorBit(direction)
        CASE %NORTH
            IF RowOf(cell) > 0 THEN FUNCTION = cell - %COLUMNS
        CASE %EAST
            IF ColumnOf(cell) < %COLUMNS - 1 THEN FUNCTION = cell + 1
        CASE %SOUTH
            IF RowOf(cell) < %ROWS - 1 THEN FUNCTION = cell + %COLUMNS
        CASE %WEST
            IF ColumnOf(cell) > 0 THEN FUNCTION = cell - 1
    END SELECT
END FUNCTION

FUNCTION HasDoor(BYVAL cell AS LONG, BYVAL direction AS LONG) AS LONG
    FUNCTION = (doors(cell) AND DoorBit(direction)) <> 0
END FUNCTION

SUB OpenDoor(BYVAL cell AS LONG, BYVAL direction AS LONG)
    LOCAL other AS LONG
    other = Neighbour(cell, direction)
    IF other = %UNKNOWN THEN EXIT SUB
    doors(cell) = doors(cell) OR DoorBit(direction)
    doors(other) = doors(other) OR DoorBit(Opposite(direction))
END SUB

FUNCTION CountDoors(BYVAL cell AS LONG) AS LONG
    LOCAL direction, count AS LONG
    FOR direction = 0 TO 3
        count = count - HasDoor(cell, direction)       ' true is -1
    NEXT direction
    FUNCTION = count
END FUNCTION

' ---------------------------------------------------------------------------------------------------------------------
' Building: walk at random into cells not yet visited, step back where there is none left.
' ---------------------------------------------------------------------------------------------------------------------

SUB Build()
    LOCAL visited(%CELLS - 1) AS LONG
    LOCAL trail(%CELLS - 1) AS LONG
    LOCAL length, cell, direction, tries, other, deepest AS LONG

    FOR cell = 0 TO %CELLS - 1
        doors(cell) = 0
    NEXT cell
    cell = %START
    visited(cell) = -1
    trail(0) = cell
    length = 1
    WHILE length > 0
        cell = trail(length - 1)
        direction = Random(4)
        FOR tries = 1 TO 4
            other = Neighbour(cell, direction)
            IF other <> %UNKNOWN THEN
                IF NOT visited(other) THEN EXIT FOR
            END IF
            direction = (direction + 1) MOD 4
        NEXT tries
        IF tries > 4 THEN
            length = length - 1
        ELSE
            OpenDoor cell, direction
            visited(other) = -1
            trail(length) = other
            length = length + 1
            IF length > deepest THEN deepest = length
        END IF
    WEND
    PRINT "Built "; %COLUMNS; " by "; %ROWS; " cells, longest walk "; deepest
END SUB

' Dead ends get a second door, and some more doors open at random: then there are several ways.
SUB Braid(ended AS LONG, added AS LONG)
    LOCAL cell, direction, turns AS LONG
    FOR cell = 0 TO %CELLS - 1
        IF CountDoors(cell) = 1 THEN
            direction = Random(4)
            FOR turns = 1 TO 4
                IF NOT HasDoor(cell, direction) AND Neighbour(cell, direction) <> %UNKNOWN THEN
                    OpenDoor cell, direction
                    ended = ended + 1
                    EXIT FOR
                END IF
                direction = (direction + 1) MOD 4
            NEXT turns
        END IF
    NEXT cell
    turns = 0
    DO WHILE added < %EXTRA AND turns < 1000
        turns = turns + 1
        cell = Random(%CELLS)
        direction = Random(4)
        IF NOT HasDoor(cell, direction) AND Neighbour(cell, direction) <> %UNKNOWN THEN
            OpenDoor cell, direction
            added = added + 1
        END IF
    LOOP
END SUB

' ---------------------------------------------------------------------------------------------------------------------
' Drawing
' ---------------------------------------------------------------------------------------------------------------------

SUB ClearMarks()
    LOCAL cell AS LONG
    FOR cell = 0 TO %CELLS - 1
        mark(cell) = 0
    NEXT cell
END SUB

SUB Draw()
    LOCAL row, column, cell AS LONG
    FOR row = 0 TO %ROWS - 1
        FOR column = 0 TO %COLUMNS - 1
            IF HasDoor(row * %COLUMNS + column, 0) THEN PRINT "+  "; ELSE PRINT "+--";
        NEXT column
        PRINT "+"
        FOR column = 0 TO %COLUMNS - 1
            cell = row * %COLUMNS + column
            IF HasDoor(cell, 3) THEN PRINT " "; ELSE PRINT "|";
            SELECT CASE mark(cell)
                CASE 0
                    PRINT "  ";
                CASE 1
                    PRINT "..";
                CASE 2
                    PRINT "<>";
                CASE ELSE
                    PRINT "??";
            END SELECT
        NEXT column
        PRINT "|"
    NEXT row
    FOR column = 1 TO %COLUMNS
        PRINT "+--";
    NEXT column
    PRINT "+"
END SUB

' ---------------------------------------------------------------------------------------------------------------------
' Ways
' ---------------------------------------------------------------------------------------------------------------------

' Fills in how many steps each cell is away from the start, by circles that grow. Returns the farthest cell.
FUNCTION Distances(away() AS LONG) AS LONG
    LOCAL queue(%CELLS - 1) AS LONG
    LOCAL first, last, cell, other, direction AS LONG
    FOR cell = 0 TO UBOUND(away)
        away(cell) = %UNKNOWN
    NEXT cell
    away(%START) = 0
    queue(0) = %START
    last = 1
    WHILE first < last
        cell = queue(first)
        first = first + 1
        FOR direction = 0 TO 3
            IF HasDoor(cell, direction) THEN
                other = Neighbour(cell, direction)
                IF away(other) = %UNKNOWN THEN
                    away(other) = away(cell) + 1
                    queue(last) = other
                    last = last + 1
                END IF
            END IF
        NEXT direction
    WEND
    FUNCTION = queue(last - 1)
END FUNCTION

' Marks the shortest way, from the goal back to the start. Returns its length.
FUNCTION ShortestWay(away() AS LONG) AS LONG
    LOCAL cell, direction, other AS LONG
    cell = %GOAL
    FUNCTION = away(%GOAL)
    mark(cell) = 2
    DO UNTIL cell = %START
        FOR direction = 0 TO 3
            IF HasDoor(cell, direction) THEN
                other = Neighbour(cell, direction)
                IF away(other) = away(cell) - 1 THEN EXIT FOR
            END IF
        NEXT direction
        cell = other
        mark(cell) = 1
    LOOP
    mark(%START) = 2
END FUNCTION

' Keeps one hand on the right wall. Returns the number of steps, or %UNKNOWN when it walks in circles.
FUNCTION WallFollower() AS LONG
    LOCAL cell, direction, steps AS LONG
    direction = 1
    FUNCTION = %UNKNOWN
    WHILE steps < 10 * %CELLS
        IF cell = %GOAL THEN
            FUNCTION = steps
            EXIT FUNCTION
        END IF
        direction = (direction + 1) MOD 4          ' right turn, then left until there is a door
        DO UNTIL HasDoor(cell, direction)
            direction = (direction + 3) MOD 4
        LOOP
        cell = Neighbour(cell, direction)
        steps = steps + 1
    WEND
END FUNCTION

' Takes any door. Returns the number of steps.
FUNCTION RandomWalk() AS LONG
    LOCAL cell, direction, steps AS LONG
    DO UNTIL cell = %GOAL OR steps >= 100000
        direction = Random(4)
        IF HasDoor(cell, direction) THEN
            cell = Neighbour(cell, direction)
            steps = steps + 1
        END IF
    LOOP
    FUNCTION = steps
END FUNCTION

' ---------------------------------------------------------------------------------------------------------------------
' Figures
' ---------------------------------------------------------------------------------------------------------------------

SUB DoorFigures()
    LOCAL counts(4) AS LONG
    LOCAL cell, i, count AS LONG
    FOR cell = 0 TO %CELLS - 1
        count = CountDoors(cell)
        counts(count) = counts(count) + 1
    NEXT cell
    FOR i = 1 TO 4
        PRINT i; " door(s):", counts(i), counts(i) * 100.0 / %CELLS; "%"
    NEXT i
END SUB

SUB Survey()
    LOCAL away(%CELLS - 1) AS LONG
    LOCAL farthest, cell AS LONG, sum AS DOUBLE
    ClearMarks
    farthest = Distances(away())
    PRINT "Shortest way to the goal: "; ShortestWay(away()); " steps"
    PRINT "Farthest cell: row "; RowOf(farthest); ", column "; ColumnOf(farthest); ", "; away(farthest); " steps"
    FOR cell = 0 TO %CELLS - 1
        sum = sum + away(cell)
    NEXT cell
    PRINT "Average distance: "; sum / %CELLS
    Draw
    PRINT "Hand on the wall: "; WallFollower(); " steps"
    PRINT "At random: "; RandomWalk(); " steps"
    DoorFigures
END SUB

FUNCTION PBMAIN () AS LONG
    LOCAL ended, added AS LONG
    SeedRandom %SEED
    Build
    Survey
    PRINT
    Braid ended, added
    PRINT "Gave "; ended; " dead ends a way out and added "; added; " doors"
    Survey
    FUNCTION = 0
END FUNCTION
