// The second thread ends the program while the first waits.
#include "debuggee.h"

DWORD WINAPI Work(void* nothing);

MAP_BEGIN
void start(void) {
    AT(2);
    CreateThread(NULL, 0, Work, NULL, 0, NULL);
    for (;;) Sleep(INFINITE);
}
DWORD WINAPI Work(void* nothing) {
    (void)nothing;
    AT(5);
    ExitProcess(9);
}
MAP_END
