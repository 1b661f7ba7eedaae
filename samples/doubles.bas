' doubles.bas - computing with DOUBLE: series, roots, interest, and a picture of a famous set.

%WIDTH = 60
%HEIGHT = 21
%DEPTH = 60

FUNCTION Root(BYVAL x AS DOUBLE) AS DOUBLE
    LOCAL guess AS DOUBLE, steps AS LONG
    guess = x
    DO
        guess = (guess + x / guess) / 2
        steps = steps + 1
    LOOP WHILE ABS(guess * guess - x) > 0.000000000001 AND steps < 100
    FUNCTION = guess
END FUNCTION

FUNCTION Iterate(BYVAL cr AS DOUBLE, BYVAL ci AS DOUBLE) AS LONG
    LOCAL zr, zi, keep AS DOUBLE, n AS LONG
    WHILE n < %DEPTH AND zr * zr + zi * zi <= 4
        keep = zr * zr - zi * zi + cr
        zi = 2 * zr * zi + ci
        zr = keep
        n = n + 1
    WEND
    FUNCTION = n
END FUNCTION

FUNCTION PBMAIN () AS LONG
    LOCAL i, x, y AS LONG
    LOCAL sum, sign, money AS DOUBLE

    sign = 1
    FOR i = 1 TO 200001 STEP 2
        sum = sum + sign / i
        sign = -sign
    NEXT i
    PRINT "pi is about "; INT(sum * 4 * 10000) / 10000
    PRINT "root of 2, found step by step and by SQR: "; INT(Root(2) * 1E9) / 1E9; " "; INT(SQR(2) * 1E9) / 1E9
    PRINT "2 ^ 0.5 * 2 ^ 0.5 = "; 2 ^ 0.5 * 2 ^ 0.5
    PRINT "10 / 4 = "; 10 / 4; ", 10 \ 4 = "; 10 \ 4; ", INT(-2.5) = "; INT(-2.5)
    PRINT "1E+20 * 1E-20 = "; 1E+20 * 1E-20; ", 2 ^ 62 = "; 2 ^ 62

    money = 1000
    PRINT "year", "money"
    FOR i = 1 TO 5
        money = money * 1.05
        PRINT i, INT(money * 100) / 100
    NEXT i

    FOR y = 0 TO %HEIGHT - 1
        FOR x = 0 TO %WIDTH - 1
            SELECT CASE Iterate(x / 20 - 2.1, y / 10 - 1)
                CASE %DEPTH
                    PRINT "#";
                CASE IS > 12
                    PRINT "+";
                CASE 6 TO 12
                    PRINT "-";
                CASE ELSE
                    PRINT " ";
            END SELECT
        NEXT x
        PRINT "|"
    NEXT y
END FUNCTION
