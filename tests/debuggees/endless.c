// Never ends. EARLY: nor does it get to its first line before a file go.txt stands in its folder. BUSY: without ever
// waiting; FLOOD: with debug strings as fast as it can; WAITS: for input that does not come.
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
    // Nothing was attached to the standard input: a pipe that nobody writes to.
    HANDLE readEnd = NULL, writeEnd = NULL;
    CreatePipe(&readEnd, &writeEnd, NULL, 0);
    ReadFile(readEnd, &byte, 1, &got, NULL);
#endif
    for (;;) {
        AT(4);
        ++turns;
#if defined(FLOOD)
        OutputDebugStringA("again and again and again\n");
#elif !defined(BUSY)
        Sleep(5);
#endif
        AT(5);
    }
}
MAP_END
