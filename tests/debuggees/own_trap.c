// Stops itself between two statements.
#include "debuggee.h"

MAP_BEGIN
void start(void) {
    volatile int a = 0;
    AT(2);
    a = 1;
    AT(3);
    __asm__ volatile("int3\n");
    AT(4);
    ExitProcess((UINT)a + 1);
}
MAP_END
