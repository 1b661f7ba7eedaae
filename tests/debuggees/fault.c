// Reads memory that is not allocated. HEALS: a second thread allocates it after a while, so that the same instruction
// succeeds. OUTSIDE: GetSystemTime writes there, so that the fault is in a library. BREAKS: the library has a trap. HANDLES: the
// program allocates it itself, in a handler.
#include "debuggee.h"

#define PLACE ((char*)0x20000000)

DWORD WINAPI Bring(void* nothing);
LONG CALLBACK Handle(EXCEPTION_POINTERS* exception);

MAP_BEGIN
void start(void) {
    AT(2);
    volatile char* place = PLACE;
#ifdef HEALS
    CreateThread(NULL, 0, Bring, NULL, 0, NULL);
#endif
#ifdef HANDLES
    AddVectoredExceptionHandler(1, Handle);
#endif
    AT(3);
#ifdef OUTSIDE
    GetSystemTime((SYSTEMTIME*)place);
#endif
#ifdef BREAKS
    DebugBreak();
    place = (volatile char*)"";
#endif
    UINT read = (UINT)*place;
    AT(4);
    ExitProcess(read + 7);
}
DWORD WINAPI Bring(void* nothing) {
    (void)nothing;
    Sleep(150);
    VirtualAlloc(PLACE, 4096, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    return 0;
}
LONG CALLBACK Handle(EXCEPTION_POINTERS* exception) {
    (void)exception;
    return VirtualAlloc(PLACE, 4096, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE) != NULL ? EXCEPTION_CONTINUE_EXECUTION
                                                                                       : EXCEPTION_CONTINUE_SEARCH;
}
MAP_END
