// Path text. Only the backslash separates; a forward slash is an ordinary character. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

bool StrStartsWithW(const wchar_t* text, const wchar_t* prefix);
void PathGetDir(const wchar_t* path, wchar_t* out, std::size_t capacity);   // with its trailing backslash
void PathGetFile(const wchar_t* path, wchar_t* out, std::size_t capacity);
void PathJoin(const wchar_t* directory, const wchar_t* name, wchar_t* out, std::size_t capacity);
void StripTrailingSlash(wchar_t* path);

bool PathEqualsIgnoreCase(std::wstring_view a, std::wstring_view b);
