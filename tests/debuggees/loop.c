// Ten turns of a loop, with the number of the turn in RCX (ECX) at line 3; the exit code is their sum.
#include "debuggee.h"

// An absolute address in the data. Without one the program has nothing to relocate and could not be moved.
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
