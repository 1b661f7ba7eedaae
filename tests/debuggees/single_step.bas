FUNCTION PBMAIN () AS LONG
    FOR i = 0 TO 2
        a = a + 1
        IF i = 1 THEN
            ! pushf : or [esp], 256 : popf : nop
        END IF
    NEXT i
    FUNCTION = a
END FUNCTION
