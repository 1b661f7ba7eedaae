// Debug strings: UTF-8, none, longer than any buffer, bytes that are no UTF-8, several lines.
#include "debuggee.h"

static char longText[5001];

MAP_BEGIN
void start(void) {
    AT(2);
    OutputDebugStringA("Gr\xC3\xBC\xC3\x9F\x65 \xE4\xB8\xAD\xE6\x96\x87 100%s\n");
    AT(3);
    OutputDebugStringA("");
    AT(4);
    for (int i = 0; i < 5000; ++i) longText[i] = (char)('a' + i % 26);
    OutputDebugStringA(longText);
    AT(5);
    OutputDebugStringA("\xFFodd\xC3");
    AT(6);
    OutputDebugStringA("one\ntwo\n");
    AT(7);
    ExitProcess(0);
}
MAP_END
