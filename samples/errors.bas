' errors.bas - one mistake of every kind, for trying how the editor shows and visits them. It does not build.

#INCLUDE "no_such_file.inc"
#RESOURCE "icon.ico"

%SIZE = 10
%SIZE = 12
%ODD = unknown + 1

DIM table(%SIZE) AS LONG

SUB Twice(BYVAL n AS LONG)
    PRINT n * 2
END SUB

SUB Twice()
END SUB

FUNCTION NoResult(BYVAL n AS LONG) AS LONG
    PRINT n
END FUNCTION

FUNCTION PBMAIN () AS LONG
    LOCAL used, unused AS LONG
    LOCAL text AS STRING
    LOCAL used AS DOUBLE
    LOCAL array(0 TO 5) AS LONG
    LOCAL real AS DOUBLE

    used = missing + 1
    used = 1 +
    used = (2 * 3
    PRINT "no end
    used = 12abc
    used = 3 $ 4
    GOTO somewhere
    INPUT used
    Twice
    Twice 1, 2
    Nothing 5
    table = 3
    table(1, 2) = 3
    used(1) = 3
    used = Twice(4)
    %SIZE = 5
    EXIT FOR
    NEXT used
    real = 2.5
    used = real
    used = 5000000000
    used = used \ 0
    IF used THEN
        FOR used = 1 TO 3
            PRINT used
    END IF
    SELECT CASE used
        PRINT "early"
        CASE 1 TO
            PRINT "one"
    END SELECT
    EXIT FUNCTION
    PRINT "never"
    FUNCTION = NoResult(1) + é
END FUNCTION

SUB Open()
    WHILE 1
        EXIT DO
END SUB
