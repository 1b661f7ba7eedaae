// Text of paths. Nothing here looks at the disk. Only the backslash separates folders, unless a comment says otherwise;
// a forward slash is an ordinary character. Capacities count wide characters, the terminator included; what does not
// fit is cut. Pure; any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Letter case counts. False when either text is null.
bool StrStartsWithW(const wchar_t* text, const wchar_t* prefix);
void PathGetDir(const wchar_t* path, wchar_t* out, std::size_t capacity);  // with its trailing backslash; empty: none
void PathGetFile(const wchar_t* path, wchar_t* out, std::size_t capacity);
// Puts a backslash between the two where the directory does not end in one. When the result does not fit, `out` gets
// the directory alone. `out` may be one of the inputs.
void PathJoin(const wchar_t* directory, const wchar_t* name, wchar_t* out, std::size_t capacity);
// Removes all backslashes at the end.
void StripTrailingSlash(wchar_t* path);

// Compares names as the file system does: Latin, Greek, Cyrillic and Armenian letters by their simple case pairs,
// whatever the locale. Any other character equals only itself.
bool PathEqualsIgnoreCase(std::wstring_view a, std::wstring_view b);
// The same for one character: its lower-case partner, or the character itself.
wchar_t PathFoldedCharacter(wchar_t character);
// The key to look a path up by. Paths that are equal by PathEqualsIgnoreCase have the same key.
std::wstring PathKey(std::wstring_view path);
// The same letter in the other case by these pairs; the character itself when it is no such letter.
wchar_t OtherCase(wchar_t character);

// Whether the path is the folder or below it; a backslash at the folder's end does not count.
bool PathIsWithin(std::wstring_view folder, std::wstring_view path);
// The path after what was at `from`, a file or a folder, has got the name `to`. Unchanged when it is not within `from`.
std::wstring PathAfterMove(std::wstring_view path, std::wstring_view from, std::wstring_view to);

// True for "C:..." and "\\server...". Any other path is relative to a folder.
bool PathIsAbsolute(std::wstring_view path);

// The form that the system accepts beyond its limit of 260 characters. An absolute, normalised path of 248 characters
// or more (the limit for folders) gets the "\\?\" prefix. Any other path is returned unchanged.
std::wstring PathExtended(std::wstring_view path);

// --- Paths as people and compilers write them: both slashes separate folders.
// Replaces the last extension of the file's name, or appends one when there is none. `extension` has its dot. A dot in
// the name of a folder does not count.
std::wstring ReplaceExtension(std::wstring_view path, std::wstring_view extension);
std::wstring_view FileExtension(std::wstring_view path);  // with its dot, empty when there is none
// True when the paths differ at most in letter case and in the direction of slashes.
bool SamePathText(std::wstring_view a, std::wstring_view b);

// What follows the last slash of either kind; the whole text when there is none.
std::wstring_view FileNameOf(std::wstring_view path);
// The folder of a path, without its trailing backslash unless it is the root of a drive. Empty when there is none.
std::wstring FolderOf(std::wstring_view path);
