// The text of an INI file, put together in memory. Pure.
//
// Every call of the system's function that writes one value rewrites the whole file: 130 of them took 230 to 500 ms here
// on a disk (each truncation is flushed by the file system) and 14 ms on a memory disk, and the settings are saved
// whenever a file is opened. So a save builds the same text and writes it once.
#pragma once

#include <string>
#include <string_view>
#include <vector>

class IniText {
public:
    // Appends to the section, which is created at the end when it is new. `stored` is written as it is: see
    // EncodeIniValue for texts that may hold anything.
    void Add(std::wstring_view section, std::wstring_view key, std::wstring_view stored);
    void AddText(std::wstring_view section, std::wstring_view key, std::wstring_view text);
    void AddNumber(std::wstring_view section, std::wstring_view key, int number);

    // The file's bytes: UTF-16, little endian, after the mark that makes the system's functions keep every character
    // instead of the code page's only.
    std::string Bytes() const;

private:
    struct Section {
        std::wstring name;
        std::wstring lines;
    };
    std::vector<Section> sections_;
};
