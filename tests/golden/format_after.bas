' Every block that the formatter knows and the cases of its unit test do not show.
#COMPILE exe
#INCLUDE "part.inc"
enum colours
    red = 1
END enum
TYPE pt
    x AS LONG
    TYPE SET a = b
END TYPE
NAMESPACE n
    CLASS c
        PROPERTY GET size() AS LONG
            PROPERTY = 1
        END PROPERTY
    END CLASS
END NAMESPACE
STATIC PRIVATE SUB helper(BYVAL a AS LONG)
    WITH pt
        .x = 1
        .end = 2
    END WITH
endsub
INLINE FASTPROC quick(a AS LONG)
CALLBACK FUNCTION back() AS LONG
    IF a THEN
    ELSEIF b THEN
        10 PRINT "ten": IF c THEN EXIT FUNCTION
    ELSE
    endif
END FUNCTION
threadsafe THREAD FUNCTION work(x AS DWORD) AS DWORD
    #IFDEF debug
    WHILE x
    #ELSEIF other
    WHILE y
    #ELSE
    WHILE z
    #ENDIF
        DECR x
    WEND
    ASM
  mov eax, 1
    endasm
END FUNCTION
MACRO two(a) = a + a
FUNCTION PBMAIN() AS LONG
    DIM i AS LONG: FOR i = 1 TO 2: PRINT i;: NEXT i
    SELECT CASE AS LONG i
        CASE 1, 2: PRINT "few"
        CASE ELSE
            DO
                TRY
                    PRINT #1, "x";
                CATCH
                    INCR i
                END TRY
            LOOP WHILE i < 3
    END SELECT
    a$ = LEFT$(b$, &hff) + "if 'then'" ' for next
    UNION u
    END UNION
    EXIT: FUNCTION = 0
END FUNCTION
