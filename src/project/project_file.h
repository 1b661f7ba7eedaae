// The project file: the text that says what belongs to a project and how it is built. docs/projects.md describes the form.
// Reading takes any bytes and names each fault with its line; writing changes one value and keeps all else. Pure; any
// thread.
#pragma once

#include "files/ignore_rules.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

inline constexpr std::size_t kMostProjectBytes = 256 << 10;  // a larger file is not read
inline constexpr std::size_t kMostProjectFolders = 64;       // in each list
inline constexpr std::size_t kMostProjectFlags = 3000;       // characters, of all lines together
inline constexpr std::size_t kMostProjectFaults = 20;        // the rest is left out

struct ProjectFault {
    int line = 0;       // from 1
    bool note = false;  // the file is right, but something in it has no effect
    std::wstring text;  // without a full stop
};

struct ProjectValue {
    std::wstring text;
    int line = 0;  // 0: not given
};

struct ProjectFile {
    bool readable = false;  // it is text; otherwise there is one fault and nothing else
    ProjectValue name;
    ProjectValue root;      // a folder, as written
    ProjectValue source;    // the main source, as written
    ProjectValue compiler;  // the name as the table of compilers has it
    std::uint32_t compilerId = 0;
    std::wstring flags;
    std::vector<ProjectValue> includes;
    std::vector<ProjectValue> excludes;
    ProjectValue arguments;
    ProjectValue folder;  // in which the program starts
    std::vector<ProjectFault> faults;
};
ProjectFile ProjectParse(std::string_view bytes);

// A new project file, with CRLF and comments that explain it.
struct ProjectDraft {
    std::wstring name;
    std::wstring source;  // relative to the file's folder
    std::wstring compiler;
};
std::string ProjectCompose(const ProjectDraft& draft);

// The file with another value for a key: in the key's first line, else at the end of its section, else in a new section.
// All other bytes stay. Characters that no line can hold become blanks.
std::string ProjectWithValue(std::string_view bytes, std::string_view section, std::string_view key,
                             std::wstring_view value);

// An absolute path without "." and "..", with backslashes, from one that may be relative to `folder` (absolute). Both
// slashes separate.
std::wstring ProjectPath(std::wstring_view folder, std::wstring_view written);
// The way back, for writing: with forward slashes, relative when the path is below `folder`, else absolute.
std::wstring ProjectWrittenPath(std::wstring_view folder, std::wstring_view path);

// A line for the output pane, which leads to its place.
std::wstring ProjectFaultLine(std::wstring_view path, const ProjectFault& fault);

// The excluded folders as rules; `root` is the absolute root of the project.
ExcludedFolders ProjectExcludesOf(const ProjectFile& file, std::wstring_view root);

// What is wrong with a name for a new project's folder; empty when it will do.
std::wstring ProjectNameProblem(std::wstring_view name);
