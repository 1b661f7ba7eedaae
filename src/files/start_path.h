// Paths that processes can be started with. Windows takes no working folder and no program beyond about 260 characters;
// under Wine a longer one corrupts memory, or another file is started. Any thread.
#pragma once

#include <cstddef>
#include <string>

inline constexpr std::size_t kLongestStartPath = 258;  // characters

// The folder as a working folder; its short form (8.3) when it is too long. Empty when there is none that fits.
std::wstring WorkingFolderOf(const std::wstring& folder);
// False when the path is too long. Its short form would not do, because Wine makes it long again.
bool ProgramCanBeStarted(const std::wstring& program);
// What to tell the user in these cases, without a line break.
std::wstring LongFolderText(const std::wstring& folder);
std::wstring LongProgramText(const std::wstring& program);

// The command line of a program; `arguments` may be empty.
std::wstring ProgramCommandLine(const std::wstring& program, const std::wstring& arguments);
