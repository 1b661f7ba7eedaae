// Ten turns with their number in RCX (ECX) at line 3; the exit code is their sum.
#include "debuggee.h"

// An absolute address in the data: without one there is nothing to relocate, and the program could not be moved.
int word = 1;
int* volatile place = &word;

MAP_BEGIN
void start(void) {
    volatile int sum = 0;
    AT(2);
    for (volatile int i = 1; i <= 10; ++i) {
        AT_WITH_COUNT(3, i);
        sum += i * *place;
        AT(4);
    }
    AT(5);
    ExitProcess((UINT)sum);
}
MAP_END
