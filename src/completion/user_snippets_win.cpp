// Reads the user's snippets. UI thread.
#include "completion/user_snippets.h"

#include "base/handles.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "base/wide_format.h"
#include "documents/file_commands.h"
#include "output/line_colours.h"
#include "output/output_pane.h"
#include "settings/settings_place.h"
#include "symbols/symbol_place.h"

#include <string>

namespace {

constexpr ULONGLONG kLookMs = 2000;            // between two looks at the file
constexpr std::uint64_t kLargest = 256 << 10;  // bytes

struct UserFile {
    SnippetList list;
    ULONGLONG lookedAt = 0;  // tick count
    std::uint64_t size = 0, modified = 0;
};
UserFile g_userFile;

std::wstring FilePath() { return SettingsFolder() + L"Snippets.txt"; }

std::string BytesOf(const std::wstring& path) {
    const UniqueHandle file(CreateFileW(path.c_str(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    std::string bytes(kLargest, '\0');
    DWORD got = 0;
    if (!file || !ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &got, nullptr)) return {};
    bytes.resize(got);
    return bytes;
}

void TellProblems(const std::wstring& path, const std::vector<std::string>& problems) {
    for (const std::string& problem : problems)
        OutputPaneAppend(FormatW(L"[Snippets] %s: %s\r\n", path.c_str(), Utf8ToWideText(problem).c_str()).c_str(),
                         kLineYellow);
    if (!problems.empty()) TellSymbolStatus(Text(L"Some snippets were left out; the output pane tells why"));
}

void Read(const std::wstring& path, bool exists) {
    auto list = std::make_shared<std::vector<Snippet>>();
    if (exists && g_userFile.size <= kLargest) {
        SnippetFile file = ReadSnippetFile(BytesOf(path));
        TellProblems(path, file.problems);
        *list = std::move(file.snippets);
    } else if (exists) {
        TellProblems(path, {"the file is too large"});
    }
    list->insert(list->end(), BuiltinSnippets().begin(), BuiltinSnippets().end());
    g_userFile.list = std::move(list);
}

}  // namespace

SnippetList SnippetsKnown() {
    const ULONGLONG now = GetTickCount64();
    if (g_userFile.list != nullptr && now - g_userFile.lookedAt < kLookMs) return g_userFile.list;
    g_userFile.lookedAt = now;
    const std::wstring path = FilePath();
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    const bool exists = GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data) != 0;
    const std::uint64_t size = static_cast<std::uint64_t>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
    const std::uint64_t modified =
        static_cast<std::uint64_t>(data.ftLastWriteTime.dwHighDateTime) << 32 | data.ftLastWriteTime.dwLowDateTime;
    if (g_userFile.list != nullptr && size == g_userFile.size && modified == g_userFile.modified)
        return g_userFile.list;
    g_userFile.size = size;
    g_userFile.modified = modified;
    Read(path, exists);
    return g_userFile.list;
}

void SnippetsEdit() {
    const std::wstring path = FilePath();
    UniqueHandle made(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!made && GetLastError() != ERROR_FILE_EXISTS)
        return TellSymbolStatus(Text(L"The file of snippets cannot be made"));
    const std::string_view text = SnippetFileTemplate();
    DWORD written = 0;
    if (made && !WriteFile(made.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr))
        return TellSymbolStatus(Text(L"The file of snippets cannot be written"));
    made.Reset();
    FileOpen(path.c_str());
}
