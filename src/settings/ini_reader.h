// Reads an INI file a section at a time, because GetPrivateProfileString opens the file in each call: 150 calls took 8
// to 50 ms of every start here, and the 11 sections of the settings take at most 3 ms. UI thread only.
#pragma once

#include <string>
#include <string_view>
#include <vector>

class IniReader {
public:
    explicit IniReader(const wchar_t* path) : path_(path) {}

    // The same as GetPrivateProfileString and GetPrivateProfileInt for the key, or the default when the key is missing.
    // The text is the stored one: see DecodeIniValue.
    std::wstring Text(const wchar_t* section, const wchar_t* key, const wchar_t* defaultText);
    int Number(const wchar_t* section, const wchar_t* key, int defaultNumber);

private:
    struct Section {
        std::wstring name;
        std::wstring lines;  // each ends in a NUL
    };
    const std::wstring& Lines(const wchar_t* section);

    std::wstring path_;
    std::vector<Section> sections_;  // those read so far
};
