// Known values in every register and in memory, at line 3.
#include "debuggee.h"

#ifdef _WIN64
#define SET_REGISTERS                                                \
    "mov $0x1111111111111111, %rax\nmov $0x2222222222222222, %rbx\n" \
    "mov $0x3333333333333333, %rcx\nmov $0x4444444444444444, %rdx\n" \
    "mov $0x5555555555555555, %rsi\nmov $0x6666666666666666, %rdi\n" \
    "mov $0x8888888888888888, %r8\nmov $0x9999999999999999, %r9\n"   \
    "mov $0xAAAAAAAAAAAAAAAA, %r10\nmov $0xBBBBBBBBBBBBBBBB, %r11\n" \
    "mov $0xDDDDDDDDDDDDDDDD, %r13\n"                                \
    "mov $0xEEEEEEEEEEEEEEEE, %r14\nmov $0xFFFFFFFFFFFFFFFF, %r15\n"
#define LOAD_ADDRESS "lea values(%rip), %r12\n"
#else
#define SET_REGISTERS                                                       \
    "mov $0x11111111, %eax\nmov $0x33333333, %ecx\nmov $0x44444444, %edx\n" \
    "mov $0x55555555, %esi\nmov $0x66666666, %edi\n"
#define LOAD_ADDRESS "mov $_values, %ebx\n"
#endif

MAP_BEGIN
void start(void) {
    AT(2);
    __asm__ volatile(SET_REGISTERS LOAD_ADDRESS RECORD(1, 3) "nop\nnop\nnop\nnop\nnop\nnop\nnop\nnop\n");
    AT(4);
    ExitProcess(0);
}
MAP_END

// At the address in R12 (EBX): LONG -5, four zero bytes, QUAD -6, text, bytes that are no text.
const struct {
    int number, nothing;
    long long big;
    char text[16], odd[16];
} values = {-5, 0, -6, "Gr\xC3\xBC\xC3\x9F\x65", "\xFF\xFE"};
