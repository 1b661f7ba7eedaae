// Writes and reads the text of a workspace file. Pure.
#include "session/workspace_text.h"

#include "base/decimal.h"
#include "base/path.h"
#include "settings/compiler_table.h"

#include <algorithm>
#include <cwchar>
#include <memory>

namespace {

constexpr std::size_t kFlagsCapacity = 512;     // wide characters, terminator included
constexpr std::size_t kEscapedCapacity = 2048;  // wide characters; enough for a path of nothing but backslashes

const wchar_t* SkipJsonBlanks(const wchar_t* text) {
    while (*text == L' ' || *text == L'\t' || *text == L'\r' || *text == L'\n') ++text;
    return text;
}

const wchar_t* FindQuoted(const wchar_t* text, const wchar_t* key) {
    const std::wstring quoted = std::wstring{L"\""} + key + L"\"";
    return std::wcsstr(text, quoted.c_str());
}

// Start of the value of the first such key, or null.
const wchar_t* FindValue(const wchar_t* text, const wchar_t* key) {
    const wchar_t* found = FindQuoted(text, key);
    if (found == nullptr) return nullptr;
    found = SkipJsonBlanks(found + std::wcslen(key) + 2);
    return *found == L':' ? SkipJsonBlanks(found + 1) : nullptr;
}

// The first of the letters that is not in a quoted text, or null.
const wchar_t* FindOutsideQuotes(const wchar_t* text, std::wstring_view letters) {
    bool quoted = false;
    for (; *text != L'\0'; ++text)
        if (quoted && *text == L'\\' && text[1] != L'\0')
            ++text;
        else if (*text == L'"')
            quoted = !quoted;
        else if (!quoted && letters.find(*text) != std::wstring_view::npos)
            return text;
    return nullptr;
}

// The opening bracket of the list of files, and the closing one. Null when there is none.
struct ListBounds {
    const wchar_t* start = nullptr;
    const wchar_t* end = nullptr;
};
ListBounds FindFileList(const wchar_t* text) {
    const wchar_t* list = text != nullptr ? FindQuoted(text, L"files") : nullptr;
    list = list != nullptr ? std::wcschr(list, L'[') : nullptr;
    return {.start = list, .end = list != nullptr ? FindOutsideQuotes(list, L"]") : nullptr};
}

wchar_t UnescapedLetter(wchar_t letter) {
    switch (letter) {
        case L'n': return L'\n';
        case L't': return L'\t';
        case L'r': return L'\r';
        default: return letter;
    }
}

}  // namespace

std::wstring WorkspaceCompose(std::span<const WorkspaceTab> tabs, std::int32_t activeFile, std::uint32_t compiler,
                              const wchar_t* flags) {
    std::wstring out = L"{\r\n  \"version\": \"1.0\",\r\n  \"files\": [\r\n";
    for (std::size_t i = 0; i < tabs.size(); ++i) {
        if (tabs[i].path.empty()) continue;
        wchar_t escaped[kEscapedCapacity];
        JsonEscape(tabs[i].path.c_str(), escaped, kEscapedCapacity);
        out.append(L"    {\"path\": \"").append(escaped).append(L"\", \"cursorPos\": ");
        out.append(std::to_wstring(tabs[i].cursor)).append(i + 1 < tabs.size() ? L"},\r\n" : L"}\r\n");
    }
    out.append(L"  ],\r\n  \"activeFile\": ").append(std::to_wstring(activeFile));
    out.append(L",\r\n  \"compiler\": \"").append(WorkspaceCompilerName(compiler));
    out.append(L"\",\r\n  \"compilerFlags\": \"").append(flags).append(L"\"\r\n}\r\n");
    return out;
}

const wchar_t* WorkspaceCompilerName(std::uint32_t compiler) { return Profile(compiler).name; }

int WorkspaceCompilerId(std::wstring_view name) {
    const auto* found =
        std::ranges::find(g_compilers, name, [](const CompilerProfile& row) { return std::wstring_view(row.name); });
    return found == std::end(g_compilers) ? -1 : static_cast<int>(found->id);
}

void JsonEscape(const wchar_t* source, wchar_t* out, std::size_t capacity) {
    if (out == nullptr || capacity == 0) return;
    std::size_t used = 0;
    while (source != nullptr && *source != L'\0' && capacity - used >= 3) {
        if (*source == L'\\' || *source == L'"') out[used++] = L'\\';
        out[used++] = *source++;
    }
    out[used] = L'\0';
}

int JsonExtractString(const wchar_t* text, const wchar_t* key, wchar_t* out, std::size_t capacity) {
    if (text == nullptr || key == nullptr || out == nullptr || capacity == 0) return 0;
    const wchar_t* from = FindValue(text, key);
    if (from == nullptr || *from != L'"') return 0;
    std::size_t used = 0;
    for (++from; *from != L'\0' && *from != L'"' && used + 1 < capacity; ++from) {
        wchar_t letter = *from;
        if (letter == L'\\') {
            ++from;
            if (*from == L'\0') break;
            letter = UnescapedLetter(*from);
        }
        out[used++] = letter;
    }
    out[used] = L'\0';
    return 1;
}

int JsonExtractInt(const wchar_t* text, const wchar_t* key, int defaultValue) {
    const wchar_t* from = text != nullptr && key != nullptr ? FindValue(text, key) : nullptr;
    if (from == nullptr) return defaultValue;
    return *from == L'+' ? 0 : DecimalNumber(std::wstring_view{from});
}

int JsonParseFiles(const wchar_t* text, wchar_t (*paths)[kPathCapacity], int* cursors, int maximum) {
    const ListBounds bounds = FindFileList(text);
    const wchar_t* list = bounds.start;
    const wchar_t* const bound = bounds.end;
    if (bound == nullptr) return 0;
    int count = 0;
    while (count < maximum) {
        const wchar_t* entry = FindQuoted(list, L"path");
        if (entry == nullptr || entry > bound) break;
        paths[count][0] = L'\0';
        JsonExtractString(entry, L"path", paths[count], kPathCapacity);
        list = entry + std::wcslen(L"\"path\"");

        const wchar_t* cursor = FindQuoted(list, L"cursorPos");
        cursors[count] = 0;
        if (cursor != nullptr && cursor < bound) {
            cursors[count] = JsonExtractInt(cursor, L"cursorPos", 0);
            list = cursor + std::wcslen(L"\"cursorPos\"");
        }
        ++count;
    }
    return count;
}

std::wstring WorkspacePathFor(std::wstring_view given, std::wstring_view current, const wchar_t* programFolder) {
    if (given.empty()) given = current.empty() ? std::wstring_view{L"workspace.json"} : current;
    if (given.starts_with(L'\\') || PathIsAbsolute(given)) return std::wstring{given};
    wchar_t joined[kPathCapacity] = {};
    PathJoin(programFolder, std::wstring{given}.c_str(), joined, kPathCapacity);
    return joined;
}

bool WorkspaceIsOurs(const wchar_t* text) {
    if (text == nullptr || *SkipJsonBlanks(text) != L'{') return false;
    const wchar_t* value = FindValue(text, L"files");
    const ListBounds list = FindFileList(text);
    if (value == nullptr || value != list.start || list.end == nullptr) return false;
    const wchar_t* const first = SkipJsonBlanks(list.start + 1);
    const wchar_t* const path = FindQuoted(first, L"path");
    const bool entries = *first == L'{' && path != nullptr && path < list.end;
    const bool empty = first == list.end;
    const bool others = FindValue(text, L"cursorPos") != nullptr || FindValue(text, L"activeFile") != nullptr;
    return (entries || empty) && others;
}

WorkspaceFile WorkspaceFileOf(bool exists, const wchar_t* text) {
    if (!exists) return WorkspaceFile::Missing;
    if (text == nullptr) return WorkspaceFile::Unreadable;
    if (*text == L'\0') return WorkspaceFile::Missing;
    return WorkspaceIsOurs(text) ? WorkspaceFile::Ours : WorkspaceFile::Foreign;
}

WorkspaceSaveStep WorkspaceSaveStepOf(WorkspaceFile file, std::span<const WorkspaceTab> tabs, bool isDefaultFile) {
    if (file == WorkspaceFile::Foreign || file == WorkspaceFile::Unreadable) return WorkspaceSaveStep::Refuse;
    if (std::ranges::any_of(tabs, [](const WorkspaceTab& tab) { return !tab.path.empty(); }))
        return WorkspaceSaveStep::Write;
    return file == WorkspaceFile::Ours && isDefaultFile ? WorkspaceSaveStep::DeleteFile : WorkspaceSaveStep::LeaveFile;
}

Workspace WorkspaceParse(const wchar_t* text) {
    struct FileList {
        wchar_t paths[kWorkspaceMaxListed][kPathCapacity];
        int cursors[kWorkspaceMaxListed];
    };
    const auto list = std::make_unique<FileList>();  // on the heap because of its 2 MB
    const int count = JsonParseFiles(text, list->paths, list->cursors, kWorkspaceMaxListed);
    Workspace workspace;
    for (int i = 0; i < count; ++i) workspace.files.push_back({.path = list->paths[i], .cursor = list->cursors[i]});
    workspace.activeFile = JsonExtractInt(text, L"activeFile", 0);
    wchar_t name[32] = {};
    if (JsonExtractString(text, L"compiler", name, std::size(name)) != 0)
        workspace.compiler = WorkspaceCompilerId(name);
    wchar_t flags[kFlagsCapacity] = {};
    if (JsonExtractString(text, L"compilerFlags", flags, kFlagsCapacity) != 0) workspace.flags = flags;
    return workspace;
}

std::wstring WorkspaceFlagsToSet(const std::wstring& own, const std::wstring& read) {
    // `own` as it would be read after it was written: a quote ends it, and backslashes are lost.
    wchar_t mutilated[kFlagsCapacity] = {};
    const std::wstring text = L"\"compilerFlags\": \"" + own + L"\"";
    JsonExtractString(text.c_str(), L"compilerFlags", mutilated, kFlagsCapacity);
    return read == mutilated ? own : read;
}

std::vector<WorkspaceCaret> WorkspaceCarets(const Workspace& workspace, int tabCount) {
    std::vector<WorkspaceCaret> carets;
    for (int tab = 0; tab < std::min(tabCount, static_cast<int>(workspace.files.size())); ++tab) {
        const std::int32_t position = workspace.files[static_cast<std::size_t>(tab)].cursor;
        if (position > 0) carets.push_back({tab, position});
    }
    return carets;
}
