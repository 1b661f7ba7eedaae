' steps.bas - a short program to step through: set breakpoints with F9, start the debugger, watch the values change.

FUNCTION Square(BYVAL n AS LONG) AS LONG
    LOCAL result AS LONG
    result = n * n
    FUNCTION = result
END FUNCTION

FUNCTION PBMAIN () AS LONG
    LOCAL i, total AS LONG
    ' three turns, then a choice
    FOR i = 1 TO 3
        total = total + Square(i)
        PRINT "turn "; i; ": "; total
        SLEEP 10
    NEXT i

    IF total > 100 THEN
        PRINT "more than a hundred"
    ELSEIF total = _
           14 THEN
        PRINT "fourteen"
    ELSE
        PRINT "something else"
    END IF
    SELECT CASE total
        CASE 1 TO 13 : PRINT "low"
        CASE 14, 15
            PRINT "as expected"
        CASE ELSE
            PRINT "high"
    END SELECT
    WHILE total > 13
        total = total - 1
    WEND
    DO
        total = total - 5
        IF total < 5 THEN EXIT DO
    LOOP
    PRINT "left: "; total
    FUNCTION = total
END FUNCTION
