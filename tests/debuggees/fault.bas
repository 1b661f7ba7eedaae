FUNCTION PBMAIN () AS LONG
    place = &H20000000
    value = PEEK(place)
    FUNCTION = value + 7
END FUNCTION
