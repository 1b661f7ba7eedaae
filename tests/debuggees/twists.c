// Code that steps must follow although it is odd: a call of the next instruction (4), the stored flags (5), a repeated
// instruction (6), a jump to code without lines (12), and a line that calls itself below an entry that is in the line
// before (13, 14). The exit code is 3, or more when a trap flag was stored.
#include "debuggee.h"

#ifdef _WIN64
#define REG(name) "%%r" #name
#else
#define REG(name) "%%e" #name
#endif

char bytes[64];
volatile UINT code = 0;

void Leaves(void);
void Once(void);

MAP_BEGIN
void start(void) {
    AT(3);
    code = 3;
    __asm__ volatile(RECORD(1, 4) "call 1f\n1: pop " REG(ax) "\n" ::: "eax", "memory");
    UINT flags = 0;
    __asm__ volatile(RECORD(1, 5) "pushf\npop " REG(ax) "\nand $0x100, %%eax\n" : "=a"(flags)::"memory");
    void* to = bytes;
    SIZE_T count = sizeof bytes;
    __asm__ volatile(RECORD(1, 6) "rep stosb\n" : "+D"(to), "+c"(count) : "a"('x') : "memory");
    __asm__ volatile(RECORD(1, 7) "call " SYMBOL(Leaves) "\nnop\nnop\n" ::: "memory");
    __asm__ volatile(RECORD(1, 8) "mov $3, %%ecx\ncall " SYMBOL(Once) "\nnop\n" ::: "ecx", "memory");
    AT(9);
    ExitProcess(code | flags);
}
__asm__(".globl " SYMBOL(Leaves) "\n" SYMBOL(Leaves) ":\n" RECORD(1, 12) "nop\njmp bare\n");
__asm__(RECORD(1, 13) "nop\n.globl " SYMBOL(Once) "\n" SYMBOL(Once) ":\nnop\n" RECORD(
    1, 14) "dec %ecx\njz 1f\ncall " SYMBOL(Once) "\nnop\n1: ret\n");
// The last record has no line.
__asm__(RECORD(1, 0) "nop\nbare: nop\nret\n");
MAP_END
