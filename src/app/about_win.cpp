#include "app/about.h"

#include "base/bounded_text.h"
#include "base/wide_format.h"
#include "files/user_folder.h"
#include "settings/settings_store.h"
#include "settings/version.h"
#include "ui/message.h"

#include <windows.h>

#include <array>

void AboutShow() {
    std::array<wchar_t, kPathCapacity> ini = {};
    GetIniPath(nullptr, ini.data(), ini.size());
    const std::wstring text = FormatW(
        L"KVX-Editor " KVX_VERSION L" (64-bit)\n\nA source editor for BASIC, C and assembly: write, build, go to the error, "
        L"run.\n\nMade of: " KVX_PARTS L"\nCompiled by GCC " TEXT(__VERSION__) L"\nLicence: MIT; those of the parts are in the "
        L"folder \"licenses\".\n\nSettings: %s\nRecovered texts and logs: %s",
        ini.data(), UserFolderPath().c_str());
    TellUser(kProgramCaption, text.c_str(), AskIcon::Information);
}
