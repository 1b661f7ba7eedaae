#include "program/debug_say.h"

#include "base/wide_format.h"
#include "output/output_feed.h"

#include <cstdarg>
#include <utility>

static DebugSink g_sink = nullptr;

void DebugSetSink(DebugSink sink) { g_sink = sink; }

void DebugSay(COLORREF colour, const wchar_t* format, ...) {
    std::va_list args;
    va_start(args, format);
    std::wstring text = FormatArgsW(format, args);
    va_end(args);
    if (g_sink != nullptr)
        g_sink(text, colour);
    else
        OutputFeedMessage(std::move(text), colour);
}
