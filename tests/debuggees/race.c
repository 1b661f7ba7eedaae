// Four threads pass line 9 a hundred times each, all at once; the exit code is the number of passes.
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
    for (int i = 0; i < 100; ++i) {
        AT(9);
        __asm__ volatile("lock incl %0" : "+m"(passed));
    }
    AT(10);
    return 0;
}
MAP_END
