// Makes DEPTH nested calls. Their frame pointers form a chain, and the outermost points to unreadable memory.
#include "debuggee.h"

#define DEPTH 40

int Down(int n);

MAP_BEGIN
void __attribute__((noinline)) Program(void) {
    AT(2);
    int reached = Down(DEPTH);
    AT(3);
    ExitProcess((UINT)reached);
}
int Down(int n) {
    volatile int result = 0;
    AT(7);
    if (n > 0) {
        AT(8);
        result = Down(n - 1) + 1;
    } else {
        AT(10);
        result = 0;
    }
    AT(12);
    return result;
}
__asm__(".globl " SYMBOL(start) "\n" SYMBOL(start) ":\nmov $16, " FRAME_POINTER "\njmp " SYMBOL(Program) "\n");
MAP_END
