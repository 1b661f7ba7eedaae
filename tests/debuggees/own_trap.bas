FUNCTION PBMAIN () AS LONG
    a = 1
    ! nop : int 3
    FUNCTION = a + 1
END FUNCTION
