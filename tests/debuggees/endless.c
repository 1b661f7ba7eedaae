// Never ends. EARLY: it does not reach its first line until a file go.txt stands in its folder. BUSY: it never waits.
// SPINS: its line 4 alone never ends. FLOOD: it writes debug strings as fast as it can. WAITS: it waits for input that does not come.
#include "debuggee.h"

volatile int turns = 0;

MAP_BEGIN
void start(void) {
#ifdef EARLY
    while (GetFileAttributesA("go.txt") == INVALID_FILE_ATTRIBUTES) Sleep(5);
#endif
    AT(2);
    turns = 0;
#ifdef WAITS
    char byte = 0;
    DWORD got = 0;
    ReadFile(GetStdHandle(STD_INPUT_HANDLE), &byte, 1, &got, NULL);
    // That returns at once when no standard input is attached, so a pipe follows that nobody writes to.
    HANDLE readEnd = NULL, writeEnd = NULL;
    CreatePipe(&readEnd, &writeEnd, NULL, 0);
    ReadFile(readEnd, &byte, 1, &got, NULL);
#endif
    for (;;) {
        AT(4);
        ++turns;
#if defined(FLOOD)
        OutputDebugStringA("again and again and again\n");
#elif defined(SPINS)
        for (;;) ++turns;
#elif !defined(BUSY)
        Sleep(5);
#endif
        AT(5);
    }
}
MAP_END
