#INCLUDE "calls_part.inc"
FUNCTION PBMAIN () AS LONG
    value = 4
    Twice value
    value = value + 1
    FUNCTION = value
END FUNCTION
