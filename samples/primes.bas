' primes.bas - the sieve of Eratosthenes: every number that is no multiple of a smaller one.

%LIMIT = 1000
%PER_LINE = 10

FUNCTION PBMAIN () AS LONG
    LOCAL composite(%LIMIT) AS LONG
    LOCAL n, multiple, found, twins, previous AS LONG

    n = 2
    WHILE n * n <= %LIMIT
        IF NOT composite(n) THEN
            FOR multiple = n * n TO %LIMIT STEP n
                composite(multiple) = -1
            NEXT multiple
        END IF
        n = n + 1
    WEND

    FOR n = 2 TO %LIMIT
        IF composite(n) = 0 THEN
            found = found + 1
            IF n - previous = 2 THEN twins = twins + 1
            previous = n
            IF n <= 200 THEN
                PRINT n;
                IF found MOD %PER_LINE = 0 THEN PRINT ELSE PRINT " ";
            END IF
        END IF
    NEXT n

    PRINT
    PRINT found; " primes up to "; %LIMIT; ", "; twins; " pairs of twins, the last one is "; previous
    FUNCTION = found
END FUNCTION
