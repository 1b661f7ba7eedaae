// Reads sections with GetPrivateProfileSection. Values with quotes and unusual numbers are read with the system's
// functions for one value. UI thread only.
#include "settings/ini_reader.h"

#include "settings/ini_value.h"

#include <windows.h>

#include <utility>

namespace {

constexpr DWORD kFirstCapacity = 16384;
constexpr DWORD kLastCapacity = 1U << 20U;  // this program never writes a longer section

}  // namespace

const std::wstring& IniReader::Lines(const wchar_t* section) {
    for (const Section& read : sections_)
        if (read.name == section) return read.lines;
    std::wstring lines;
    for (DWORD capacity = kFirstCapacity; capacity <= kLastCapacity; capacity *= 4) {
        lines.resize(capacity);
        const DWORD length = GetPrivateProfileSectionW(section, lines.data(), capacity, path_.c_str());
        lines.resize(length);
        if (length + 2 < capacity) break;  // otherwise the section was cut
    }
    return sections_.emplace_back(Section{.name = section, .lines = std::move(lines)}).lines;
}

std::wstring IniReader::Text(const wchar_t* section, const wchar_t* key, const wchar_t* defaultText) {
    const IniLine line = FindIniLine(Lines(section), key);
    if (line.kind == IniLineKind::Missing) return defaultText;
    if (line.kind == IniLineKind::Plain) return std::wstring{line.value};
    std::wstring text(line.value.size() + 2, L'\0');
    text.resize(GetPrivateProfileStringW(section, key, defaultText, text.data(), static_cast<DWORD>(text.size()),
                                         path_.c_str()));
    return text;
}

int IniReader::Number(const wchar_t* section, const wchar_t* key, int defaultNumber) {
    const IniLine line = FindIniLine(Lines(section), key);
    if (line.kind == IniLineKind::Missing) return defaultNumber;
    int number = 0;
    if (ParsePlainNumber(line.value, &number)) return number;
    return static_cast<int>(GetPrivateProfileIntW(section, key, defaultNumber, path_.c_str()));
}
