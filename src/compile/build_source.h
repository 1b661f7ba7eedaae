// What a build takes as its source: the active document, or the main source of the open project. project/ tells here what
// the project gives to builds and runs. UI thread only, but for the pure part.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// How a program is started. An empty folder is its own.
struct ProgramStart {
    std::wstring arguments;
    std::wstring folder;
};

struct BuildProject {
    std::wstring name;    // for the user
    std::wstring file;    // path of the project file
    std::wstring root;    // absolute, with a backslash at its end
    std::wstring source;  // absolute; empty: it names none
    std::uint32_t compiler = 0;
    std::wstring flags;
    std::vector<std::wstring> includes;     // absolute folders
    std::optional<std::wstring> arguments;  // none: those of the settings
    std::optional<std::wstring> folder;     // absolute
};

// --- build_source.cpp: pure

// Whether a file belongs to the project: it is below its root, or it is its main source or its own file.
bool ProjectHoldsFile(const BuildProject& project, std::wstring_view path);
// Behind the status texts of a build while a project is open.
std::wstring BuiltWhichText(std::wstring_view project, std::wstring_view source, bool ofProject);

// Whether the file is of a type that is only included by others.
bool IsIncludeFile(std::wstring_view path);

// --- build_source_win.cpp

// The open document to whose program an include file belongs: that of the last build if it includes the file, else the
// only one that does. Where none includes it itself, included files are looked at, on a worker for which the command
// waits. -1: there is none, or (`several`) one cannot tell which.
int TabOfProgramWith(std::wstring_view includeFile, bool* several);

// Nothing: no project is open. Raises projectChanged.
void BuildUseProject(std::optional<BuildProject> project);
const std::optional<BuildProject>& BuildProjectNow();
// The project whose main source a build would take now: the active document is one of its files, or has no file yet, or
// none is open.
std::optional<BuildProject> BuildProjectAtHand();
// The project whose main source this is.
std::optional<BuildProject> BuildProjectOfSource(std::wstring_view source);
// The source that a build would take now; empty: none. Looks into no text: an include file counts as itself.
std::wstring BuildSourceNow();
// The same, with the program to which an include file belongs.
std::wstring BuildSourceMeant();

// The compiler that a build would use now: the project's, or the setting.
std::uint32_t CompilerNow();
// Uses another compiler for the project at hand until the project file names another one. False: there is none.
bool BuildChooseCompilerOfProject(std::uint32_t id);

// For a program that was built: as the project says whose program it is, else as the settings do.
ProgramStart ProgramStartOf(std::wstring_view program);
ProgramStart ProgramStartOfProject(const BuildProject& project);
// Used from now on; the caller has it written into the project file.
void BuildSetStartOfProject(const ProgramStart& start);
