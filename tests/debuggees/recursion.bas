FUNCTION PBMAIN () AS LONG
    reached = Down(40)
    FUNCTION = reached
END FUNCTION

FUNCTION Down (BYVAL n AS LONG) AS LONG
    IF n > 0 THEN
        result = Down(n - 1) + 1
    ELSE
        result = 0
    END IF
    FUNCTION = result
END FUNCTION
