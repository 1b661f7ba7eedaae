// Message boxes of the program. UI thread only.
#include "ui/message.h"

#include "base/log.h"
#include "base/wide_format.h"
#include "ui/ui_state.h"

#include <windows.h>

bool g_selftestTabsMode = false;

namespace {

constexpr wchar_t kTitle[] = L"KVXE - Unified Compiler Editor";
constexpr std::size_t kMessageCapacity = 2048;

void Show(const wchar_t* logFormat, UINT icon, const wchar_t* format, std::va_list args) {
    wchar_t text[kMessageCapacity];
    FormatBufferArgsW(text, format, args);
    if (g_selftestTabsMode) {
        AppLogMsg(logFormat, text);  // no one is there to answer a box; without a log the text is dropped
        return;
    }
    MessageBoxW(g_ui.hMainWnd, text, kTitle, MB_OK | icon);
}

}  // namespace

void ErrorMessage(const wchar_t* format, ...) {
    std::va_list args;
    va_start(args, format);
    Show(L"ERROR: %s", MB_ICONERROR, format, args);
    va_end(args);
}

void InfoMessage(const wchar_t* format, ...) {
    std::va_list args;
    va_start(args, format);
    Show(L"INFO: %s", MB_ICONINFORMATION, format, args);
    va_end(args);
}
