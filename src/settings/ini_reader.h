// Reads an INI file section by section. The system's function for one value looks at the file anew in each call: 150
// of them took 8 to 50 ms of every start here, the 11 sections of the settings at most 3 ms. UI thread only.
#pragma once

#include <string>
#include <string_view>
#include <vector>

class IniReader {
public:
    explicit IniReader(const wchar_t* path) : path_(path) {}

    // What the system's functions give for the key; `defaultText` and `defaultNumber` when it is not there. The text is
    // the stored one: see DecodeIniValue.
    std::wstring Text(const wchar_t* section, const wchar_t* key, const wchar_t* defaultText);
    int Number(const wchar_t* section, const wchar_t* key, int defaultNumber);

private:
    struct Section {
        std::wstring name;
        std::wstring lines;  // each ended by a NUL
    };
    const std::wstring& Lines(const wchar_t* section);

    std::wstring path_;
    std::vector<Section> sections_;  // those asked for so far
};
