// Ends at once, before its only statement.
#include "debuggee.h"

MAP_BEGIN
void start(void) {
    volatile int early = 1;
    if (early) ExitProcess(3);
    AT(2);
    ExitProcess(4);
}
MAP_END
