FUNCTION PBMAIN () AS LONG
    FOR i = 0 TO 3 : THREAD CREATE Work() TO threads(i) : NEXT i
    FOR i = 0 TO 3 : THREAD WAIT threads(i) : NEXT i
    FUNCTION = passed
END FUNCTION

FUNCTION Work () AS LONG
    FOR i = 0 TO 24
        INCR passed
    NEXT i
END FUNCTION
