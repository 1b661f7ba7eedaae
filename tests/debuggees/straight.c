// Statements without a branch; the exit code is 42.
#include "debuggee.h"

MAP_BEGIN
void start(void) {
    volatile int a = 0;
    AT(2);
    a = 10;
    AT(3);
    a = a + 11;
    AT(5);
    a = a * 2;
    AT(6);
    ExitProcess((UINT)a);
}
MAP_END
