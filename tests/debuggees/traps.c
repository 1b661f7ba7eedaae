// Carries its own trap bytes, as its line map is a side file: one before each statement. The first statement has a run of
// three; there are two more traps beside PBMAIN, on no statement, in a section that is no code by its name.
#include "debuggee.h"

int Sum(int count);

__attribute__((section(".extra"))) void Outside(void) { __asm__ volatile("int3\n"); }

void start(void) {
    volatile int a = 0;
    // The side file says that PBMAIN begins at the second of the run.
    __asm__ volatile("int3\n.globl " SYMBOL(pbmain) "\n" SYMBOL(pbmain) ":\nint3\nint3\nnop\n");
    a = 1;
    Outside();
    __asm__ volatile("int3\nnop\n");
    a = a + 5;
    __asm__ volatile("int3\nnop\n");
    ExitProcess((UINT)a);
}
