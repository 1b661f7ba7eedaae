// Makes the breakpoint of line 3 be reported as some systems do: with the address after the trap, and the instruction
// pointer there.
#include "debuggee.h"

EXCEPTION_RECORD record = {.ExceptionCode = EXCEPTION_BREAKPOINT};

MAP_BEGIN
void start(void) {
    AT(2);
    FARPROC raise = GetProcAddress(GetModuleHandleA("ntdll.dll"), "RtlRaiseException");
    // The call returns after line 3 and reports that address; line 3 runs when the debugger puts the instruction
    // pointer back.
#ifdef _WIN64
    __asm__ volatile(
        "and $-16, %%rsp\n"
        "sub $32, %%rsp\n"
        "lea record(%%rip), %%rcx\n"
        "lea 1f(%%rip), %%rdx\n"
        "push %%rdx\n"
        "jmp *%%rax\n" RECORD(1, 3) "nop\n"
        "1:\n" ::"a"(raise) : "rcx", "rdx", "r8", "r9", "r10", "r11", "memory");
#else
    __asm__ volatile(
        "push $_record\n"
        "push $1f\n"
        "jmp *%%eax\n" RECORD(1, 3) "nop\n"
        "1:\n" ::"a"(raise) : "ecx", "edx", "memory");
#endif
    AT(4);
    ExitProcess(5);
}
MAP_END
