'=== procedure and block if
function pbmain() as long
if a then
b = 1
else
  b = 2
end if
end function
'=== one-line if opens nothing
if a then b = 1
x = 2
if a then for i = 1 to 2: next
x = 3
'=== select
select case a
case 1
b
case else
c
end select
d
'=== next closes two
for i = 1 to 2
for j = 1 to 2
x
next j, i
y
'=== loops
do while a
while b
c
wend
loop until d
e
'=== try
try
a
catch
b
finally
c
end try
'=== a block whole on its line
for i = 1 to 3: x: next
y
'=== continuation
x = 1 + _
2 + _ ' more
3
y
'=== then on a continued line
if a and _
b then
c
end if
'=== strings and comments stay
a = "if then  for" ' if then
rem while  x
'=== members and constants are no keywords
a.type = %for + $end + b.name
'=== result of the function
function f() as long
function = 1
end function
'=== declarations open nothing
declare sub a()
exit for
x
'=== types
type pt
x as long
end type
union u
a as long
end union
'=== macros
macro two = 2
macro m
x
end macro
y
'=== class with a method
class c
interface i
class method m()
x
end method
end interface
end class
'=== a forgotten end does not shift the next procedure
sub a
if b then
c
sub d
e
end sub
'=== both branches of a condition
#if a
sub x(b)
#else
sub x(c)
#endif
d
end sub
'=== inline assembly
sub a
  ! mov  eax, for
asm
   push next
end asm
 asm  mov if, 1
x
end sub
'=== data
sub a
data next, it's, for
end sub
'=== labels stand out
sub a
again:
goto again
end sub
'=== unmatched ends
end if
next
loop
x
'=== numbers and suffixes
a& = &hFOR + 10if
b$ = left$(c$, 1)
'=== operators get blanks, signs and doubtful marks do not
x=a+b*-1-c^2
s$=a$&b$+"x"
aligned   =  1
show -1,a ,b,,-c
x=a% \b&-&hff:y=.5-1e-3
if a<=b and-c<>d then
end if
defint a-z
for i=-1 to n-1:next
data 1,2=3
p->x=timer-t:print 1-1;-2
total=total+_
(a-b)_ 'more
*2
'=== a metastatement stays in the first column
sub a
#debug print "a=b"
  #if not %def(%a)
x=1
#endif
end sub
'=== labels and one-line ifs
sub a
again: x=1
if x then y=1: for i=1 to 2
end sub
'=== a whole program
#compile exe
#include "part.inc"
enum colours
red = 1
end enum
  type pt
  x as long
  type set a = b
  end type
namespace n
class c
property get size() as long
property = 1
end property
end class
end namespace
static private sub helper(byval a as long)
with pt
  .x = 1
  .end = 2
      end with
endsub
inline fastproc quick(a as long)
callback function back() as long
if a then
elseif b then
10 print "ten": if c then exit function
else
endif
end function
threadsafe thread function work(x as dword) as dword
#ifdef debug
while x
#elseif other
while y
#else
while z
#endif
decr x
wend
asm
  mov eax, 1
endasm
end function
macro two(a) = a + a
function pbmain() as long
dim i as long: for i = 1 to 2: print i;: next i
select case as long i
case 1, 2: print "few"
case else
do
try
print #1, "x";
catch
incr i
end try
loop while i < 3
end select
a$ = left$(b$, &hff) + "if 'then'" ' for next
union u
end union
exit: function = 0
end function
