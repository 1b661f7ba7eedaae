#include "compile/build_log.h"

#include "base/wide_format.h"
#include "documents/document_row.h"
#include "files/file_io.h"

#include <set>

namespace {

std::set<std::wstring> g_commandLogs;  // temporary logs that exist

void WriteBytes(BuildLog& log, std::string_view bytes) {
    DWORD written = 0;
    // The log ends when a write fails, because a full disk must not stop the build.
    if (!WriteFile(log.file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr)) log.file.Reset();
}

}  // namespace

BuildLog BuildLogOpen(const std::wstring& path) {
    BuildLog log;
    if (!path.empty())
        log.file.Reset(CreateFileW(PathForSystem(path.c_str()).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                   CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    return log;
}

void BuildLogWrite(BuildLog& log, std::wstring_view text) {
    if (!log.file || text.empty()) return;
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    if (size <= 0) return;
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
    if (bytes.size() > log.left) {
        WriteBytes(log, "\r\n(log cut here)\r\n");
        log.file.Reset();
        return;
    }
    log.left -= bytes.size();
    WriteBytes(log, bytes);
}

std::wstring CommandLogNew() {
    static unsigned serial = 0;
    wchar_t folder[MAX_PATH + 1] = {};
    if (GetTempPathW(MAX_PATH + 1, folder) == 0) return {};
    return *g_commandLogs.insert(FormatW(L"%sKVX-Editor-%lu-%u.log", folder, GetCurrentProcessId(), ++serial)).first;
}

void CommandLogDone(const std::wstring& path, bool needed) {
    if (needed || g_commandLogs.erase(path) == 0) return;
    DeleteFileW(path.c_str());
}

void CommandLogsDelete() {
    for (const std::wstring& path : g_commandLogs)
        if (TabBarFindPath(path.c_str()) < 0) DeleteFileW(path.c_str());
    g_commandLogs.clear();
}
