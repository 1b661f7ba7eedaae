#include "app/about.h"

#include "base/bounded_text.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "files/file_io.h"
#include "files/user_folder.h"
#include "settings/settings_store.h"
#include "settings/version.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <windows.h>

#include <shellapi.h>

#include <array>

// The version of clang begins with its name.
#ifdef __clang__
#define KVX_COMPILER L""
#else
#define KVX_COMPILER L"GCC "
#endif

void AboutShow() {
    static constexpr wchar_t kProgram[] = L"KVX-Editor " KVX_VERSION;
    static constexpr wchar_t kCompiler[] = KVX_COMPILER TEXT(__VERSION__);
    std::array<wchar_t, kPathCapacity> ini = {};
    GetIniPath(nullptr, ini.data(), ini.size());
    const std::wstring text = TextWith(
        L"{1} (64-bit)\n\nA source editor for BASIC, C and assembly: write, build, go to the error, "
        L"run.\n\nMade of: {2}\nCompiled by {3}\nLicence: MIT; those of the parts are in the "
        L"folder \"licenses\".\n\nSettings: {4}\nRecovered texts and logs: {5}",
        {kProgram, KVX_PARTS, kCompiler, ini.data(), UserFolderPath()});
    TellUser(kProgramCaption, text.c_str(), AskIcon::Information);
}

void DocumentationShow() {
    std::array<wchar_t, kPathCapacity> folder = {};
    AppExeDirectory(folder.data(), folder.size());
    const std::wstring page = std::wstring(folder.data()) + L"\\docs\\tour.html";
    if (!FileExists(page.c_str()))
        return ErrorMessage(Text(L"The documentation is not beside the program:\n%s"), page.c_str());
    const auto result =
        reinterpret_cast<INT_PTR>(ShellExecuteW(g_ui.hMainWnd, L"open", page.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
    if (result <= 32)
        ErrorMessage(Text(L"The documentation could not be opened (error %d):\n%s"), static_cast<int>(result),
                     page.c_str());
}
