' quads.bas - whole numbers of 64 bits, and what happens at the edges.

CONST BIG = 9223372036854775807

FUNCTION PowerMod(BYVAL x AS QUAD, BYVAL n AS QUAD, BYVAL m AS QUAD) AS QUAD
    LOCAL result AS QUAD
    result = 1
    x = x MOD m
    WHILE n > 0
        IF n AND 1 THEN result = (result * x) MOD m
        x = (x * x) MOD m
        n = n \ 2
    WEND
    FUNCTION = result
END FUNCTION

SUB Both(BYVAL a AS QUAD, BYVAL b AS QUAD)
    PRINT a; " \ "; b; " = "; a \ b; ", rest "; a MOD b; ", product "; a * b; ", "; a > b; a < b; a = b
END SUB

FUNCTION PBMAIN () AS LONG
    LOCAL q AS QUAD, x, turns AS LONG, longest, start AS QUAD

    Both 1000000007, 1000003
    Both -1000000007, 1000003
    Both 1000000007, -1000003
    Both BIG, 10
    Both -BIG - 1, -1
    Both 123456789012345678, 987654321
    Both 5000000000, 5000000000
    PRINT "bits: "; (&H0F0F0F0F0F0F AND &H00FF00FF00FF); " "; (BIG XOR -1); " "; (NOT BIG); " "; (4294967296 OR 1)
    PRINT "LONG wraps: "; 2147483647 + 1; ", QUAD does not: "; 2147483648 + 1
    PRINT "2 ^ 1000003 mod 1000000007 = "; PowerMod(2, 1000003, 1000000007)
    PRINT "as DOUBLE: "; BIG * 1.0; ", half: "; BIG / 2; ", back: "; ABS(-BIG)

    ' The longest walk of the 3n+1 game below 3000
    FOR q = 1 TO 3000
        start = q
        turns = 0
        DO UNTIL start = 1
            IF start MOD 2 = 0 THEN start = start \ 2 ELSE start = 3 * start + 1
            turns = turns + 1
        LOOP
        IF turns > x THEN
            x = turns
            longest = q
        END IF
    NEXT q
    PRINT "3n+1: "; longest; " takes "; x; " steps"

    x = 0                                ' FOR ends even where the counter cannot go further
    FOR q = BIG - 2 TO BIG
        x = x + 1
    NEXT q
    PRINT x; " turns"
    FUNCTION = x
END FUNCTION
