// Names of the files around a build, derived from the source's and the output's. Pure.
#pragma once

#include "compilers/compiler_table.h"

#include <string>
#include <string_view>

// The file's last extension replaced (a dot in a folder's name does not count); added when there is none.
std::wstring ReplaceExtension(std::wstring_view path, std::wstring_view extension);
std::wstring_view FileExtension(std::wstring_view path);  // with its dot, empty when there is none

// Where the source is copied to before it is compiled: beside the output as ".bas" for KeldorBasic, beside itself as
// ".pb" for ".kxa" and ".bas" for ".ka32" with the others. Empty: it is compiled in place. `attempt` above 0 gives
// further names ("x.kvx1.pb") for the case that the first belongs to the user; KeldorBasic has only the first, because
// it names its output after the source.
std::wstring StagingTarget(std::wstring_view source, std::wstring_view output, CommandStyle style, int attempt);

// The same path, case and the direction of slashes aside.
bool SamePathText(std::wstring_view a, std::wstring_view b);

// One of the extensions that a build of all open documents takes.
bool IsBatchBuildSource(std::wstring_view path);

// The folder of a path, without the backslash behind it except for a drive's root; empty when there is none.
std::wstring FolderOf(std::wstring_view path);
