// Runs its first line three times; lines 3 and 4 have one address.
#include "debuggee.h"

volatile int turns = 0;

MAP_BEGIN
void start(void) {
    for (volatile int i = 0; i < 3; ++i) {
        AT(2);
        ++turns;
        __asm__ volatile(RECORD(1, 3) RECORD(1, 4) "nop\n" ::: "memory");
        AT(5);
    }
    AT(6);
    ExitProcess((UINT)turns);
}
MAP_END
