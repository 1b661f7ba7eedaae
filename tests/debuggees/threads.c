// A second thread passes line 7; the first waits for it.
#include "debuggee.h"

volatile int value = 0;

DWORD WINAPI Work(void* nothing);

MAP_BEGIN
void start(void) {
    AT(2);
    HANDLE thread = CreateThread(NULL, 0, Work, NULL, 0, NULL);
    AT(3);
    WaitForSingleObject(thread, INFINITE);
    AT(4);
    ExitProcess((UINT)value);
}
DWORD WINAPI Work(void* nothing) {
    (void)nothing;
    AT_WITH_COUNT(7, 77);
    value = 5;
    AT(8);
    return 0;
}
MAP_END
