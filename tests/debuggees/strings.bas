FUNCTION PBMAIN () AS LONG
    OutputDebugStringA "Grüße 中文 100%s" & $LF
    OutputDebugStringA ""
    OutputDebugStringA longText
    OutputDebugStringA CHR$(255) & "odd" & CHR$(195)
    OutputDebugStringA "one" & $LF & "two" & $LF
    FUNCTION = 0
END FUNCTION
