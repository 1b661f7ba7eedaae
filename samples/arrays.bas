' arrays.bas - filling, sorting, searching and summing arrays, and handing whole arrays to procedures.

%LAST = 19

SUB Fill(values() AS LONG, BYVAL seed AS LONG)
    LOCAL i AS LONG
    FOR i = 0 TO UBOUND(values)
        seed = (seed * 1103 + 12345) MOD 65536
        values(i) = seed MOD 100
    NEXT i
END SUB

SUB Show(values() AS LONG)
    LOCAL i AS LONG
    FOR i = 0 TO UBOUND(values)
        PRINT values(i);
        IF i < UBOUND(values) THEN PRINT " ";
    NEXT i
    PRINT
END SUB

SUB Exchange(a AS LONG, b AS LONG)      ' BYREF is what a parameter is without a word
    LOCAL keep AS LONG
    keep = a
    a = b
    b = keep
END SUB

SUB QuickSort(values() AS LONG, BYVAL first AS LONG, BYVAL last AS LONG)
    LOCAL i, j, pivot AS LONG
    IF first >= last THEN EXIT SUB
    i = first
    j = last
    pivot = values((first + last) \ 2)
    DO
        WHILE values(i) < pivot
            i = i + 1
        WEND
        WHILE values(j) > pivot
            j = j - 1
        WEND
        IF i <= j THEN
            Exchange values(i), values(j)
            i = i + 1
            j = j - 1
        END IF
    LOOP UNTIL i > j
    QuickSort values(), first, j
    QuickSort values(), i, last
END SUB

' The place of `wanted` in sorted values, or -1.
FUNCTION Find(values() AS LONG, BYVAL wanted AS LONG) AS LONG
    LOCAL low, high, middle AS LONG
    high = UBOUND(values)
    FUNCTION = -1
    DO WHILE low <= high
        middle = (low + high) \ 2
        IF values(middle) = wanted THEN
            FUNCTION = middle
            EXIT DO
        ELSEIF values(middle) < wanted THEN
            low = middle + 1
        ELSE
            high = middle - 1
        END IF
    LOOP
END FUNCTION

' Counts how often it was called, in a variable that keeps its value.
FUNCTION Average(values() AS LONG) AS DOUBLE
    STATIC calls AS LONG
    LOCAL i AS LONG, sum AS QUAD
    calls = calls + 1
    FOR i = 0 TO UBOUND(values)
        sum = sum + values(i)
    NEXT i
    PRINT "(average no. "; calls; ") ";
    FUNCTION = sum / (UBOUND(values) + 1)
END FUNCTION

FUNCTION PBMAIN () AS LONG
    LOCAL numbers(%LAST) AS LONG
    LOCAL squares(9) AS QUAD, halves(4) AS DOUBLE
    LOCAL i AS LONG

    Fill numbers(), 42
    PRINT "unsorted: ";
    Show numbers()
    PRINT "average: "; Average(numbers())
    QuickSort numbers(), 0, UBOUND(numbers)
    PRINT "sorted: ";
    Show numbers()
    PRINT "average: "; Average(numbers())
    PRINT "place of "; numbers(7); ": "; Find(numbers(), numbers(7))
    PRINT "place of 1000: "; Find(numbers(), 1000)

    FOR i = 0 TO 9
        squares(i) = 1000000 * i
        squares(i) = squares(i) * squares(i)
    NEXT i
    PRINT "largest square: "; squares(9)
    FOR i = 4 TO 0 STEP -1
        halves(i) = i / 2
        PRINT halves(i),
    NEXT i
    PRINT "end"
END FUNCTION
