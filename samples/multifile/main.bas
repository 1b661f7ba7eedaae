' main.bas - one program in several files. Build this one; it includes the others.

#INCLUDE "limits.inc"
#INCLUDE "shapes.inc"
#INCLUDE "report.inc"

FUNCTION PBMAIN () AS LONG
    LOCAL i AS LONG
    ReportTitle
    FOR i = 1 TO %SHAPES
        ReportRow i, CircleArea(i), SquareArea(i)
    NEXT i
    ReportTotal
    FUNCTION = ReportRows()
END FUNCTION
