// 200 statements on the lines 2 to 201 of many.bas, which the build writes.
#include "debuggee.h"

MAP_BEGIN
void start(void) {
    __asm__ volatile(
        "xor %%eax, %%eax\n"
        ".set number, 1\n"
        ".rept 200\n"
        ".set number, number + 1\n" RECORD(1, number) "inc %%eax\n"
        ".endr\n" ::: "eax");
    AT(202);
    ExitProcess(200);
}
MAP_END
