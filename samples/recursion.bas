' recursion.bas - procedures that call themselves, with BYVAL and BYREF parameters.

DIM moves AS LONG          ' a variable outside procedures is seen by all of them

FUNCTION Factorial(BYVAL n AS LONG) AS QUAD
    IF n < 2 THEN
        FUNCTION = 1
    ELSE
        FUNCTION = n * Factorial(n - 1)
    END IF
END FUNCTION

FUNCTION Fibonacci(BYVAL n AS LONG) AS LONG
    IF n < 2 THEN
        FUNCTION = n
        EXIT FUNCTION
    END IF
    FUNCTION = Fibonacci(n - 1) + Fibonacci(n - 2)
END FUNCTION

FUNCTION Gcd(BYVAL a AS LONG, BYVAL b AS LONG) AS LONG
    IF b = 0 THEN FUNCTION = a ELSE FUNCTION = Gcd(b, a MOD b)
END FUNCTION

FUNCTION Ackermann(BYVAL m AS LONG, BYVAL n AS LONG, BYREF calls AS LONG) AS LONG
    calls = calls + 1
    IF m = 0 THEN
        FUNCTION = n + 1
    ELSEIF n = 0 THEN
        FUNCTION = Ackermann(m - 1, 1, calls)
    ELSE
        FUNCTION = Ackermann(m - 1, Ackermann(m, n - 1, calls), calls)
    END IF
END FUNCTION

' Two procedures that call each other; neither needs to be declared before its use.
FUNCTION IsEven(BYVAL n AS LONG) AS LONG
    IF n = 0 THEN FUNCTION = -1 ELSE FUNCTION = IsOdd(n - 1)
END FUNCTION

FUNCTION IsOdd(BYVAL n AS LONG) AS LONG
    IF n = 0 THEN FUNCTION = 0 ELSE FUNCTION = IsEven(n - 1)
END FUNCTION

SUB Hanoi(BYVAL disks AS LONG, BYVAL source AS LONG, BYVAL target AS LONG, BYVAL spare AS LONG)
    IF disks = 0 THEN EXIT SUB
    Hanoi disks - 1, source, spare, target
    moves = moves + 1
    IF moves <= 7 THEN PRINT "  disk "; disks; " from "; source; " to "; target
    Hanoi disks - 1, spare, target, source
END SUB

FUNCTION PBMAIN () AS LONG
    LOCAL i, calls AS LONG

    FOR i = 5 TO 20 STEP 5
        PRINT i; "! = "; Factorial(i)
    NEXT i
    FOR i = 0 TO 20 STEP 4
        PRINT "fib("; i; ") ="; " "; Fibonacci(i)
    NEXT i
    PRINT "gcd(1071, 462) = "; Gcd(1071, 462)
    PRINT "ackermann(2, 3) = "; Ackermann(2, 3, calls); " after "; calls; " calls"
    PRINT "7 is odd: "; IsOdd(7); ", 10 is odd: "; IsOdd(10)
    PRINT "Towers of Hanoi, 3 disks:"
    Hanoi 3, 1, 3, 2
    moves = 0
    Hanoi 0, 1, 3, 2
    moves = 100
    CALL Hanoi(10, 1, 3, 2)
    PRINT "10 disks take "; moves - 100; " moves"
    FUNCTION = moves - 100 - 1023
END FUNCTION
