#include "settings/settings_import.h"

#include "base/path.h"
#include "files/utf16.h"
#include "settings/ini_value.h"
#include "settings/secret_text.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

bool Same(std::wstring_view a, std::wstring_view b) { return PathEqualsIgnoreCase(a, b); }

bool IsNumber(std::wstring_view text) {
    return !text.empty() && std::ranges::all_of(
                                text, [](wchar_t c) { return c >= L'0' && c <= L'9'; });
}

// Whether the key is one of a list, such as "File3" of "File%d", or a further part of a protected text.
bool IsNumberedKey(const SettingRow& row, std::wstring_view key) {
    std::wstring_view stem = row.key;
    if (row.type == SettingType::List)
        stem = stem.substr(0, stem.find(L"%d"));
    else if ((row.flags & kSettingSecret) == 0)
        return false;
    return key.size() > stem.size() && Same(key.substr(0, stem.size()), stem) && IsNumber(key.substr(stem.size()));
}

// Keys that the program writes into the file outside of the table.
bool IsOtherKey(std::wstring_view section, std::wstring_view key) {
    if (Same(section, L"Meta")) return Same(key, L"Version");
    if (Same(section, L"Session")) return true;
    constexpr std::wstring_view kPlace[] = {L"Left", L"Top", L"Width", L"Height", L"Max"};
    return Same(section, L"Window") &&
           std::ranges::any_of(kPlace, [&](std::wstring_view name) { return Same(key, name); });
}

std::wstring_view Unquoted(std::wstring_view value) {
    const bool quoted =
        value.size() > 1 && value.front() == value.back() && (value.front() == L'"' || value.front() == L'\'');
    return quoted ? value.substr(1, value.size() - 2) : value;
}

bool TakesValue(const SettingRow& row, std::wstring_view value) {
    if ((row.flags & kSettingSecret) != 0) return true;  // its text continues in further keys
    if (row.type == SettingType::Text) return DecodeIniValue(Unquoted(value)).size() < row.capacity;
    if (row.type == SettingType::List) return true;
    int number = 0;
    if (!ParsePlainNumber(value, &number)) return false;
    return row.type == SettingType::Bool || ApplyLimits(row.limits, number) == number;
}

// Returns false when the line means nothing.
bool TakeImportLine(std::wstring_view section, std::wstring_view line, std::vector<const SettingRow*>& given) {
    const std::size_t equals = line.find(L'=');
    if (equals == std::wstring_view::npos) return false;
    std::wstring_view key = line.substr(0, equals), value = line.substr(equals + 1);
    while (key.ends_with(L' ')) key.remove_suffix(1);
    while (value.ends_with(L' ')) value.remove_suffix(1);
    while (value.starts_with(L' ')) value.remove_prefix(1);
    bool known = IsOtherKey(section, key);
    for (const SettingRow& row : SettingRows()) {
        if (!Same(row.section, section)) continue;
        if (IsNumberedKey(row, key)) {
            known = true;
            if (row.type == SettingType::List) given.push_back(&row);
        } else if (Same(row.key, key)) {
            if (!TakesValue(row, value)) return false;
            given.push_back(&row);
            known = true;
        }
    }
    return known;
}

// The bytes of the value that a row describes.
std::size_t BytesOf(const SettingRow& row) {
    switch (row.type) {
        case SettingType::Text: return row.capacity * sizeof(wchar_t);
        case SettingType::List: return static_cast<std::size_t>(row.rows) * row.rowCapacity * sizeof(wchar_t);
        default: return sizeof(std::int32_t);
    }
}

void TakeBack(const SettingRow& row, const Settings& before, Settings& now) {
    std::memcpy(reinterpret_cast<char*>(&now) + row.offset, reinterpret_cast<const char*>(&before) + row.offset,
                BytesOf(row));
}

bool IsOfNoUse(const SettingRow& row, const Settings& now) {
    if ((row.flags & kSettingExeRelative) != 0) return SettingText(now, row)[0] == L'\0';
    return (row.flags & kSettingSecret) != 0 && IsSecretText(SettingText(now, row));
}

}  // namespace

std::optional<std::string> IniBytesAsUtf16(std::string_view bytes) {
    constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
    const Utf16Kind kind = Utf16KindOf(bytes);
    if (kind.order == Utf16Order::Little && kind.mark) return std::nullopt;
    if (kind.order != Utf16Order::None) {
        std::string utf8;
        AppendUtf16AsUtf8(bytes.substr(kind.mark ? 2 : 0), kind.order, utf8);  // half a character at the end is dropped
        return Utf8AsUtf16(utf8, Utf16Order::Little, true);
    }
    const bool mark = bytes.starts_with(kUtf8Mark);
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    if (!mark && (std::ranges::all_of(bytes, isAscii) || !IsValidUtf8Bytes(bytes.data(), bytes.size())))
        return std::nullopt;
    return Utf8AsUtf16(bytes.substr(mark ? kUtf8Mark.size() : 0), Utf16Order::Little, true);
}

ImportFinding LookAtImport(std::span<const IniSectionText> sections) {
    ImportFinding finding;
    for (const IniSectionText& section : sections) {
        finding.recentSessions = finding.recentSessions || Same(section.name, L"Session");
        std::wstring_view rest = section.lines;
        while (!rest.empty()) {
            const std::wstring_view line = rest.substr(0, rest.find(L'\0'));
            rest.remove_prefix(std::min(line.size() + 1, rest.size()));
            if (line.empty() || line.front() == L';' || TakeImportLine(section.name, line, finding.given)) continue;
            const std::wstring_view key = line.substr(0, line.find(L'='));
            finding.notUnderstood.push_back(L"[" + section.name + L"] " + std::wstring{key});
        }
    }
    return finding;
}

void KeepWhatImportLacks(ImportFinding& finding, const Settings& before, Settings& now) {
    for (const SettingRow& row : SettingRows()) {
        const bool given = std::ranges::find(finding.given, &row) != finding.given.end();
        const bool useless = given && IsOfNoUse(row, now);
        if (useless && (row.flags & kSettingSecret) != 0)
            finding.notUnderstood.push_back(std::wstring{L"["} + row.section + L"] " + row.key);
        if (!given || useless) TakeBack(row, before, now);
    }
    if (finding.recentSessions) return;
    now.sessionMruCount = before.sessionMruCount;
    std::memcpy(now.sessionMruFiles, before.sessionMruFiles, sizeof(now.sessionMruFiles));
}
