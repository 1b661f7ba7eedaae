FUNCTION PBMAIN () AS LONG
    a = 10
    a = a + 11
    ' doubled
    a = a * 2
    FUNCTION = a
END FUNCTION
