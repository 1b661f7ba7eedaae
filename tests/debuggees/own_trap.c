// Has a trap of its own, right after an instruction of one byte.
#include "debuggee.h"

MAP_BEGIN
void start(void) {
    volatile int a = 0;
    AT(2);
    a = 1;
    AT(3);
    __asm__ volatile("nop\nint3\n");
    AT(4);
    ExitProcess((UINT)a + 1);
}
MAP_END
