// Making a new project: a folder with a main source, which may be a copy of a sample, and a project file. UI thread.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

// A sample: one source, or a folder whose main source has the name main. An empty path: the source with an empty program.
struct ProjectSample {
    std::wstring label;
    std::wstring path;
    bool isFolder = false;
};
// The samples for a compiler: those of all compilers, and those in a folder with its name. The empty program is the first.
std::vector<ProjectSample> ProjectSamples(std::uint32_t compiler);

struct NewProject {
    std::wstring name;
    std::wstring parent;  // absolute; the folder of the project is made in it
    std::uint32_t compiler = 0;
    ProjectSample sample;
};
// The path of the project file that MakeProject would write.
std::wstring NewProjectFile(const NewProject& project);
// What is in the way, for the user; empty: nothing.
std::wstring NewProjectProblem(const NewProject& project);
// What becomes of a folder that has files; empty: it has none. Looks at a few of its files only.
std::wstring NewProjectNote(const NewProject& project);
// Overwrites nothing. False with the reason; what it had made is gone then.
bool MakeProject(const NewProject& project, std::wstring* file, std::wstring* reason);

// Asks and makes it. False when the user cancelled.
bool AskNewProject(HWND owner, std::wstring* file);
