// Loads a library and frees it; the exit code says whether that worked.
#include "debuggee.h"

MAP_BEGIN
void start(void) {
    AT(2);
    HMODULE library = LoadLibraryA("version.dll");
    AT(3);
    UINT found = library != NULL ? 1 : 0;
    FreeLibrary(library);
    AT(4);
    ExitProcess(found);
}
MAP_END
