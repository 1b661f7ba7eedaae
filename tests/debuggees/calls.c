// One statement is a single CALL of a procedure in the second file, whose first record is at its first instruction.
#define SEVERAL_FILES
#include "debuggee.h"

volatile int value = 3;

MAP_BEGIN
void start(void) {
    AT_FILE(1, 3);
    value = 4;
    AT_FILE(1, 4);
    __asm__ volatile("call " SYMBOL(Twice) "\n" ::: "eax", "ecx", "edx", "memory");
    AT_FILE(1, 5);
    value = value + 1;
    AT_FILE(1, 6);
    ExitProcess((UINT)value);
}
__asm__(".globl " SYMBOL(Twice) "\n" SYMBOL(Twice) ":\n" RECORD(2, 2) "jmp " SYMBOL(TwiceBody) "\n");
void TwiceBody(void) {
    AT_FILE(2, 3);
    value = value * 2;
    AT_FILE(2, 4);
}
// The last record has no line.
__asm__(RECORD(2, 0) "nop\n");
MAP_END_FILES(".long 2\n" MAP_FILE(1, "calls.bas") MAP_FILE(2, "calls_part.inc"))
