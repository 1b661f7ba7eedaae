// Four threads pass line 9 twenty-five times each, all at once; the exit code is the number of passes. The byte before
// line 9 is CC, as it may be in ordinary code.
#include "debuggee.h"

volatile LONG passed = 0;

DWORD WINAPI Work(void* nothing);

MAP_BEGIN
void start(void) {
    HANDLE threads[4];
    AT(2);
    for (int i = 0; i < 4; ++i) threads[i] = CreateThread(NULL, 0, Work, NULL, 0, NULL);
    AT(3);
    WaitForMultipleObjects(4, threads, TRUE, INFINITE);
    AT(4);
    ExitProcess((UINT)passed);
}
DWORD WINAPI Work(void* nothing) {
    (void)nothing;
    AT(8);
    for (int i = 0; i < 25; ++i) {
        __asm__ volatile("lea -0x34(" FRAME_POINTER "), %eax");
        AT(9);
        __asm__ volatile("lock incl %0" : "+m"(passed));
    }
    AT(10);
    return 0;
}
MAP_END
