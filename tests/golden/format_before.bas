' Every block that the formatter knows and the cases of its unit test do not show.
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
