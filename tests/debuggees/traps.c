// Its line map is a side file, so it has its own trap bytes: one before each statement, but three before the first. One
// more trap belongs to no statement and stands in a section of its own.
#include "debuggee.h"

// A side file cannot point into the first 64 bytes of the code.
__asm__(".text\n.skip 80, 0x90\n");

__attribute__((section(".extra"))) void Outside(void) { __asm__ volatile("int3\n"); }

void start(void) {
    volatile int a = 0;
    __asm__ volatile("int3\nint3\nint3\nnop\n");
    a = 1;
    Outside();
    __asm__ volatile("int3\nnop\n");
    a = a + 5;
    __asm__ volatile("int3\nnop\n");
    ExitProcess((UINT)a);
}
