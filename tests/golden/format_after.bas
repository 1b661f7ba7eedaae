'=== procedure and block if
FUNCTION PBMAIN() AS LONG
    IF a THEN
        b = 1
    ELSE
        b = 2
    END IF
END FUNCTION
'=== one-line if opens nothing
IF a THEN b = 1
x = 2
IF a THEN FOR i = 1 TO 2: NEXT
x = 3
'=== select
SELECT CASE a
    CASE 1
        b
    CASE ELSE
        c
END SELECT
d
'=== next closes two
FOR i = 1 TO 2
    FOR j = 1 TO 2
        x
NEXT j, i
y
'=== loops
DO WHILE a
    WHILE b
        c
    WEND
LOOP UNTIL d
e
'=== try
TRY
    a
CATCH
    b
FINALLY
    c
END TRY
'=== a block whole on its line
FOR i = 1 TO 3: x: NEXT
y
'=== continuation
x = 1 + _
    2 + _ ' more
    3
y
'=== then on a continued line
IF a AND _
    b THEN
    c
END IF
'=== strings and comments stay
a = "if then  for" ' if then
REM while  x
'=== members and constants are no keywords
a.type = %for + $end + b.name
'=== result of the function
FUNCTION f() AS LONG
    FUNCTION = 1
END FUNCTION
'=== declarations open nothing
DECLARE SUB a()
EXIT FOR
x
'=== types
TYPE pt
    x AS LONG
END TYPE
UNION u
    a AS LONG
END UNION
'=== macros
MACRO two = 2
MACRO m
    x
END MACRO
y
'=== class with a method
CLASS c
    INTERFACE i
        CLASS METHOD m()
            x
        END METHOD
    END INTERFACE
END CLASS
'=== a forgotten end does not shift the next procedure
SUB a
    IF b THEN
        c
SUB d
    e
END SUB
'=== both branches of a condition
#IF a
SUB x(b)
#ELSE
SUB x(c)
#ENDIF
    d
END SUB
'=== inline assembly
SUB a
  ! mov  eax, for
    ASM
   push next
    END ASM
 asm  mov if, 1
    x
END SUB
'=== data
SUB a
    DATA next, it's, for
END SUB
'=== labels stand out
SUB a
again:
    GOTO again
END SUB
'=== unmatched ends
END IF
NEXT
LOOP
x
'=== numbers and suffixes
a& = &hFOR + 10if
b$ = LEFT$(c$, 1)
'=== operators get blanks, signs and doubtful marks do not
x = a + b * -1 - c ^ 2
s$ = a$&b$ + "x"
aligned   =  1
show -1, a, b,, -c
x = a% \ b& - &hff:y = .5 - 1e-3
IF a <= b AND-c <> d THEN
END IF
DEFINT a-z
FOR i = -1 TO n - 1:NEXT
DATA 1,2=3
p->x = TIMER - t:PRINT 1 - 1;-2
total = total + _
    (a - b) _ 'more
    *2
'=== a metastatement stays in the first column
SUB a
#DEBUG PRINT "a=b"
    #IF NOT %def(%a)
    x = 1
#ENDIF
END SUB
'=== labels and one-line ifs
SUB a
    again: x = 1
    IF x THEN y = 1: FOR i = 1 TO 2
END SUB
'=== a whole program
#COMPILE exe
#INCLUDE "part.inc"
ENUM colours
    red = 1
END ENUM
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
ENDSUB
INLINE FASTPROC quick(a AS LONG)
CALLBACK FUNCTION back() AS LONG
    IF a THEN
    ELSEIF b THEN
        10 PRINT "ten": IF c THEN EXIT FUNCTION
    ELSE
    ENDIF
END FUNCTION
THREADSAFE THREAD FUNCTION work(x AS DWORD) AS DWORD
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
    ENDASM
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
