FUNCTION PBMAIN () AS LONG
    turns = 0
    DO
        turns = turns + 1
    LOOP
END FUNCTION
