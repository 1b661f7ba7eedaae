// Compares the age of sources with that of the debugged program. UI thread only.
#include "debugui/stale_sources.h"

#include "base/path.h"
#include "debugger/debug_state.h"
#include "debugui/location.h"
#include "debugui/stop_view.h"
#include "documents/document_row.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "program/debug_say.h"

#include <algorithm>

namespace {

StaleWarnings g_warnings;  // of this session

bool WriteTimeOf(const std::wstring& path, FILETIME* time) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (!PathAnswers(path.c_str())) return false;
    if (!GetFileAttributesExW(PathForSystem(path.c_str()).c_str(), GetFileExInfoStandard, &data)) return false;
    *time = data.ftLastWriteTime;
    return true;
}

bool IsUnsaved(const std::wstring& path) {
    return std::ranges::any_of(
        g_documents.tabs,
        [&](const DocumentTab& tab) { return tab.modified && tab.hasFile && PathEqualsIgnoreCase(tab.path, path); });
}

bool IsNewer(const std::wstring& path, const FILETIME& built) {
    FILETIME written = {};
    return WriteTimeOf(path, &written) && CompareFileTime(&written, &built) > 0;
}

void SayStale(const std::wstring& path, SourceAge age) {
    wchar_t name[kPathCapacity] = {};
    PathGetFile(path.c_str(), name, kPathCapacity);
    for (const std::wstring& text : NewStaleWarnings(&g_warnings, name, age))
        DebugSay(kDebugOrange, L"%s", text.c_str());
}

}  // namespace

void WarnOfStaleSources(const BuildRecord& program) {
    g_warnings = {};
    FILETIME built = {};
    if (!WriteTimeOf(program.output, &built)) return;
    for (const DocumentTab& tab : g_documents.tabs)
        if (tab.hasFile && DebugFileIdOfPath(&g_debugger, tab.path) != 0)
            SayStale(tab.path, {.newer = IsNewer(tab.path, built), .unsaved = tab.modified});
}

void WarnOfStaleStop() {
    const std::wstring path = DebugFilePath(&g_debugger, g_debugger.currentFileId);
    if (path.empty()) return;
    SourceAge age = {.newer = false, .unsaved = IsUnsaved(path)};
    FILETIME built = {};
    if (TakeStaleLook(&g_warnings, path, GetTickCount64()) && WriteTimeOf(LastBuild().output, &built))
        age.newer = IsNewer(path, built);
    SayStale(path, age);
}
