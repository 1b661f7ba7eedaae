#include "settings/ini_text.h"

#include "settings/ini_value.h"

#include <algorithm>

namespace {

void AppendUtf16(std::string& bytes, std::wstring_view text) {
    for (const wchar_t c : text) {
        const auto unit = static_cast<unsigned>(c);
        bytes += static_cast<char>(unit & 0xFFU);
        bytes += static_cast<char>((unit >> 8U) & 0xFFU);
    }
}

}  // namespace

void IniText::Add(std::wstring_view section, std::wstring_view key, std::wstring_view stored) {
    auto found = std::ranges::find(sections_, section, &Section::name);
    if (found == sections_.end()) found = sections_.insert(found, Section{.name = std::wstring{section}, .lines = {}});
    found->lines.append(key).append(L"=").append(stored).append(L"\r\n");
}

void IniText::AddText(std::wstring_view section, std::wstring_view key, std::wstring_view text) {
    Add(section, key, EncodeIniValue(text));
}

void IniText::AddNumber(std::wstring_view section, std::wstring_view key, int number) {
    Add(section, key, std::to_wstring(number));
}

std::string IniText::Bytes() const {
    std::string bytes;
    bytes += '\xFF';
    bytes += '\xFE';
    for (const Section& section : sections_) {
        AppendUtf16(bytes, L"[" + section.name + L"]\r\n");
        AppendUtf16(bytes, section.lines);
    }
    return bytes;
}
