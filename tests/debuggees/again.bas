FUNCTION PBMAIN () AS LONG
    turns = turns + 1
    IF turns < 3 THEN _
        GOTO 2
    a = a + 1
    FUNCTION = turns
END FUNCTION
