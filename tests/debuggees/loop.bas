FUNCTION PBMAIN () AS LONG
    FOR i = 1 TO 10
        sum = sum + i
    NEXT i
    FUNCTION = sum
END FUNCTION
