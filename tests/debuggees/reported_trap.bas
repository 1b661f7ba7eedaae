FUNCTION PBMAIN () AS LONG
    ! call raise
    ! nop
    FUNCTION = 5
END FUNCTION
