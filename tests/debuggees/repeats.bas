FUNCTION PBMAIN () AS LONG
    FOR i = 0 TO 2
        bytes = STRING$(64, "x")
        sum = sum + ASC(bytes, 64)
    NEXT i
    FUNCTION = sum
END FUNCTION
