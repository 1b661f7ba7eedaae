#include "ui/message.h"

#include "base/log.h"
#include "base/wide_format.h"
#include "ui/box_text.h"
#include "ui/dialog_theme.h"
#include "ui/ui_state.h"

#include <windows.h>

#include <string>

bool g_selftestTabsMode = false;
Answer (*g_answerInstead)(const UserQuestion& question) = nullptr;
void (*g_toldInSelftest)(const wchar_t* text) = nullptr;
const wchar_t kProgramCaption[] = L"KVXE - Unified Compiler Editor";

namespace {

constexpr std::size_t kMessageCapacity = 2048;
constexpr UINT kButtonFlags[] = {MB_OK, MB_YESNO, MB_YESNOCANCEL, MB_OKCANCEL};                        // by AskButtons
constexpr UINT kIconFlags[] = {0, MB_ICONINFORMATION, MB_ICONQUESTION, MB_ICONWARNING, MB_ICONERROR};  // by AskIcon

// The main window, or the dialog that keeps it waiting.
HWND DialogOwner() {
    if (g_ui.hMainWnd == nullptr || IsWindowEnabled(g_ui.hMainWnd)) return g_ui.hMainWnd;
    const HWND dialog = GetLastActivePopup(g_ui.hMainWnd);
    return IsWindowVisible(dialog) && IsWindowEnabled(dialog) ? dialog : g_ui.hMainWnd;
}

Answer ShowMessageBox(const UserQuestion& question) {
    const UINT flags = kButtonFlags[static_cast<std::size_t>(question.buttons)] |
                       kIconFlags[static_cast<std::size_t>(question.icon)] | (question.enterIsNo ? MB_DEFBUTTON2 : 0U);
    const std::wstring text = BreakLongWords(question.text);
    const BoxNames names = {.yes = question.yes,
                            .no = question.no,
                            .guardsYes = question.loses == Answer::Yes,
                            .guardsNo = question.loses == Answer::No};
    switch (ThemedMessageBox(DialogOwner(), text.c_str(), question.caption, flags, names)) {
        case IDOK:
        case IDYES: return Answer::Yes;
        case IDNO: return Answer::No;
        default: return Answer::Cancel;  // also when no box could be shown, so that nothing is lost unasked
    }
}

void TellFormatted(AskIcon icon, const wchar_t* format, std::va_list args) {
    wchar_t text[kMessageCapacity];
    FormatBufferArgsW(text, format, args);
    TellUser(kProgramCaption, text, icon);
}

}  // namespace

Answer AskUser(const UserQuestion& question) {
    if (g_answerInstead != nullptr) return g_answerInstead(question);
    if (!g_selftestTabsMode) return ShowMessageBox(question);
    AppLogMsg(question.icon == AskIcon::Error ? L"ERROR: %s" : L"INFO: %s", question.text);
    if (g_toldInSelftest != nullptr) g_toldInSelftest(question.text);
    return question.inSelftest;
}

void TellUser(const wchar_t* caption, const wchar_t* text, AskIcon icon) {
    AskUser({.caption = caption, .text = text, .buttons = AskButtons::Ok, .icon = icon, .inSelftest = Answer::Yes});
}

void ErrorMessage(const wchar_t* format, ...) {
    std::va_list args;
    va_start(args, format);
    TellFormatted(AskIcon::Error, format, args);
    va_end(args);
}

void InfoMessage(const wchar_t* format, ...) {
    std::va_list args;
    va_start(args, format);
    TellFormatted(AskIcon::Information, format, args);
    va_end(args);
}
