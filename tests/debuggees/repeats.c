// Fills 64 bytes with one repeated instruction, three times; the exit code is the sum of the last bytes.
#include "debuggee.h"

char bytes[64];

MAP_BEGIN
void start(void) {
    int sum = 0;
    AT(2);
    for (int i = 0; i < 3; ++i) {
        bytes[63] = 0;
        void* to = bytes;
        SIZE_T count = sizeof bytes;
        __asm__ volatile(RECORD(1, 3) "rep stosb\n" RECORD(1, 4) "nop\n" : "+D"(to), "+c"(count) : "a"('x') : "memory");
        sum += bytes[63];
    }
    AT(6);
    ExitProcess((UINT)sum);
}
MAP_END
