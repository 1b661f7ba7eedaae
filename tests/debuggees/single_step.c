// Runs a statement twice and raises a single-step exception itself in between.
#include "debuggee.h"

#ifdef _WIN64
#define RAISE "pushfq\norl $0x100, (%%rsp)\npopfq\nnop\n"
#else
#define RAISE "pushfl\norl $0x100, (%%esp)\npopfl\nnop\n"
#endif

volatile int a = 0;

MAP_BEGIN
void start(void) {
    AT(2);
    for (int i = 0; i < 3; ++i) {
        AT(3);
        a = a + 1;
        AT(4);
        if (i == 1) {
            AT(5);
            __asm__ volatile(RAISE ::: "cc", "memory");
        }
        AT(7);
    }
    AT(8);
    ExitProcess((UINT)a);
}
MAP_END
