// The workspace file as text. Pure: knows no tab and no settings.
#include "session/workspace_text.h"

#include "settings/compiler_table.h"

#include <algorithm>
#include <cwchar>
#include <limits>

namespace {

constexpr std::size_t kEscapedCapacity = 2048;  // wide characters: a full path of backslashes fits

const wchar_t* SkipJsonBlanks(const wchar_t* text) {
    while (*text == L' ' || *text == L'\t' || *text == L'\r' || *text == L'\n') ++text;
    return text;
}

const wchar_t* FindQuoted(const wchar_t* text, const wchar_t* key) {
    const std::wstring quoted = std::wstring{L"\""} + key + L"\"";
    return std::wcsstr(text, quoted.c_str());
}

// Where the value of the first such key begins, or null.
const wchar_t* FindValue(const wchar_t* text, const wchar_t* key) {
    const wchar_t* found = FindQuoted(text, key);
    if (found == nullptr) return nullptr;
    found = SkipJsonBlanks(found + std::wcslen(key) + 2);
    return *found == L':' ? SkipJsonBlanks(found + 1) : nullptr;
}

wchar_t JsonLetter(wchar_t letter) {
    switch (letter) {
        case L'n': return L'\n';
        case L't': return L'\t';
        case L'r': return L'\r';
        default: return letter;
    }
}

int ReadInt(const wchar_t* text) {
    const bool negative = *text == L'-';
    if (negative) ++text;
    std::int64_t number = 0;
    for (; *text >= L'0' && *text <= L'9'; ++text)
        number = std::min<std::int64_t>(number * 10 + (*text - L'0'), std::numeric_limits<std::int32_t>::max());
    return static_cast<int>(negative ? -number : number);
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
            letter = JsonLetter(*from);
        }
        out[used++] = letter;
    }
    out[used] = L'\0';
    return 1;
}

int JsonExtractInt(const wchar_t* text, const wchar_t* key, int defaultValue) {
    const wchar_t* from = text != nullptr && key != nullptr ? FindValue(text, key) : nullptr;
    return from == nullptr ? defaultValue : ReadInt(from);
}

int JsonParseFiles(const wchar_t* text, wchar_t (*paths)[kPathCapacity], int* cursors, int maximum) {
    const wchar_t* list = text != nullptr ? FindQuoted(text, L"files") : nullptr;
    list = list != nullptr ? std::wcschr(list, L'[') : nullptr;
    const wchar_t* bound = list != nullptr ? std::wcschr(list, L']') : nullptr;
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

std::wstring WorkspaceFlagsAsRead(const wchar_t* flags) {
    const std::wstring text = std::wstring{L"\"compilerFlags\": \""} + flags + L"\"";
    wchar_t out[kWorkspaceFlagsCapacity] = {};
    JsonExtractString(text.c_str(), L"compilerFlags", out, kWorkspaceFlagsCapacity);
    return out;
}
