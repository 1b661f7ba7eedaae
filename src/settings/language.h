// The language of the program's texts: files languages\NAME.txt beside the program and in the user's own folder, which
// counts first. UI thread only.
#pragma once

#include <string>
#include <vector>

// The language that the program is written in: it has no file.
inline constexpr wchar_t kEnglish[] = L"English";

// Reads the file of the language and uses it from now on; called once, before there is a window. Empty and kEnglish are
// English, and look for no file. What is wrong in the file goes to the log, and those texts stay English.
void LanguageUse(const wchar_t* name);

// kEnglish and the names of all files, sorted.
std::vector<std::wstring> LanguageNames();
