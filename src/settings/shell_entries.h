// What the registration of file types writes below "Software\Classes". Pure.
#pragma once

#include "settings/compilers.h"

#include <string>
#include <string_view>
#include <vector>

enum class ShellValue : std::uint8_t {
    None,     // the key alone
    Default,  // its default value is `text`
    Mark,     // a value named `text` without a type and without data
};

struct ShellKey {
    std::wstring path;
    ShellValue value = ShellValue::None;
    std::wstring text;
};

// The command by which the shell opens a file with this executable.
std::wstring ShellOpenCommand(std::wstring_view executable);

// The start-up registration of one compiler, in the order in which it is written. Empty for a compiler without types that
// the shell knows.
std::vector<ShellKey> OpenWithKeys(const CompilerProfile& compiler, std::wstring_view command);
// The key of the class that the marks among them name.
std::wstring OpenWithClassKey(const CompilerProfile& compiler);

// The keys that make the editor the default program of an extension, which has no dot, and those that take it back.
std::vector<ShellKey> DefaultProgramKeys(std::wstring_view extension, std::wstring_view description,
                                         std::wstring_view iconFile, std::wstring_view command);
std::vector<std::wstring> DefaultProgramKeysToDelete(std::wstring_view extension);
