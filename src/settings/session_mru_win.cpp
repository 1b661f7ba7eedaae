// The recent-session list in the settings file. UI thread only.
#include "settings/settings_store.h"

#include "base/log.h"
#include "base/wide_format.h"
#include "files/file_io.h"
#include "settings/settings_state.h"

#include <windows.h>

#include <algorithm>

void SessionMRULoad(const wchar_t* overridePath) {
    Settings& settings = g_settings;
    wchar_t ini[kPathCapacity] = {};
    GetIniPath(overridePath, ini, kPathCapacity);
    const int stored = static_cast<int>(GetPrivateProfileIntW(L"Session", L"MRUCount", 0, ini));
    settings.sessionMruCount = std::clamp(stored, 0, kMruCapacity);
    for (int i = 0; i < settings.sessionMruCount; ++i)
        ReadIniText(ini, L"Session", FormatW(L"MRU%d", i).c_str(), L"", settings.sessionMruFiles[i], kPathCapacity);
}

void SessionMRUSave(const wchar_t* overridePath) {
    const Settings& settings = g_settings;
    wchar_t ini[kPathCapacity] = {};
    GetIniPath(overridePath, ini, kPathCapacity);
    bool written = WriteIniText(ini, L"Session", L"MRUCount", FormatW(L"%d", settings.sessionMruCount).c_str());
    for (int i = 0; i < settings.sessionMruCount && written; ++i)
        written = WriteIniText(ini, L"Session", FormatW(L"MRU%d", i).c_str(), settings.sessionMruFiles[i]);
    if (!written) AppLogMsg(L"FAIL: SessionMRUSave error=%lu path=%s", GetLastError(), ini);
}
