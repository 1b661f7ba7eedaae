' hello.bas - a first program.
'
' Press F5 to build and run it in a window of its own, which closes at the end. Ctrl+B only builds, then Ctrl+Shift+R runs
' it in the pane below. Change the numbers and build again; should the compiler complain, double-click its message.

#COMPILE EXE
#DIM ALL

%ROWS = 7          ' how tall the tree is
%TRUNK = 2         ' how tall its trunk is

SUB Repeat(BYVAL count AS LONG, BYVAL what AS LONG)
    LOCAL i AS LONG
    FOR i = 1 TO count
        IF what = 0 THEN PRINT " "; ELSE PRINT "*";
    NEXT i
END SUB

FUNCTION PBMAIN () AS LONG
    LOCAL row, stars AS LONG

    PRINT "Hello from KVX-Editor!"
    PRINT

    FOR row = 1 TO %ROWS
        Repeat %ROWS - row, 0
        Repeat 2 * row - 1, 1
        PRINT
        stars = stars + 2 * row - 1
    NEXT row
    FOR row = 1 TO %TRUNK
        Repeat %ROWS - 2, 0
        PRINT "|||"
    NEXT row

    PRINT
    PRINT "This tree has "; stars; " stars."
    IF stars > 100 THEN PRINT "That is a big one!"
    FUNCTION = 0
END FUNCTION
