' comment
REM another, and IF inside
#INCLUDE "win32.inc"
%LIMIT = &HFF + 10
NAMESPACE demo
FUNCTION PBMAIN () AS LONG
    LOCAL s AS STRING, d AS DOUBLE
    s = LEFT$("quote ""in"" it", 3) : d = 1.5E3
    s = "not closed
    IF d >= 2 THEN foreach = unlock ELSE PRINT s;
    FOREACH x IN y
END FUNCTION
