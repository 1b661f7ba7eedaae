// Path text. Only the backslash separates where nothing else is said; a forward slash is an ordinary character. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

bool StrStartsWithW(const wchar_t* text, const wchar_t* prefix);
void PathGetDir(const wchar_t* path, wchar_t* out, std::size_t capacity);  // with its trailing backslash
void PathGetFile(const wchar_t* path, wchar_t* out, std::size_t capacity);
void PathJoin(const wchar_t* directory, const wchar_t* name, wchar_t* out, std::size_t capacity);
void StripTrailingSlash(wchar_t* path);

// As the file system compares names: Latin, Greek, Cyrillic and Armenian letters by their simple case pairs, whatever
// the locale. Any other character equals only itself.
bool PathEqualsIgnoreCase(std::wstring_view a, std::wstring_view b);
// The same text for all paths that are equal by that rule: a key to look paths up by.
std::wstring PathKey(std::wstring_view path);

// "C:..." or "\\server...": everything else is relative to some folder.
bool PathIsAbsolute(std::wstring_view path);

// The form that the system accepts beyond its 260-character limit: an absolute, already normalised path of 248
// characters or more gets the "\\?\" prefix (folders are limited to 248), every other one is returned as it is.
std::wstring PathExtended(std::wstring_view path);

// --- Names that people and compilers write: both slashes separate.
// The file's last extension replaced (a dot in a folder's name does not count); added when there is none.
std::wstring ReplaceExtension(std::wstring_view path, std::wstring_view extension);
std::wstring_view FileExtension(std::wstring_view path);  // with its dot, empty when there is none
// The same path, case and the direction of slashes aside.
bool SamePathText(std::wstring_view a, std::wstring_view b);

// The folder of a path, without its trailing backslash except for a drive's root; empty when there is none.
std::wstring FolderOf(std::wstring_view path);
