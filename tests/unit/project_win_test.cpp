// Making a project on a real disk.
#include "project/new_project.h"
#include "project/project_file.h"

#include "support/temp_files.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace fs = std::filesystem;

TEST(NewProjectWin, MakesAFolderAndOverwritesNothing) {
    const TempFolder folder;
    const fs::path samples = folder.path / "samples" / "many";
    fs::create_directories(samples);
    WriteBytes(samples / "main.bas", "main");
    WriteBytes(samples / "part.inc", "part");
    NewProject project{.name = L"Bank",
                       .parent = folder.path.wstring(),
                       .compiler = 2,
                       .sample = {.path = samples.wstring(), .isFolder = true}};
    std::wstring file, reason;
    ASSERT_TRUE(MakeProject(project, &file, &reason));
    EXPECT_EQ(ReadBytes(folder.path / "Bank" / "part.inc"), "part");
    const ProjectFile made = ProjectParse(ReadBytes(file));
    EXPECT_TRUE(made.faults.empty());
    EXPECT_EQ(made.compilerId, 2u);
    EXPECT_EQ(ReadBytes(folder.path / "Bank" / fs::path(made.source.text)), "main");

    WriteBytes(folder.path / "Bank" / "main.bas", "mine");
    EXPECT_FALSE(MakeProject(project, &file, &reason)) << "its files are there";
    EXPECT_EQ(ReadBytes(folder.path / "Bank" / "main.bas"), "mine");
    // A folder of sources becomes one: nothing in it is touched, and its source is the main one.
    project.name = L"Old";
    fs::create_directories(folder.path / "Old");
    WriteBytes(folder.path / "Old" / "part.inc", "mine");
    EXPECT_FALSE(MakeProject(project, &file, &reason)) << "the sample has a file of that name";
    EXPECT_NE(reason.find(L"part.inc"), std::wstring::npos);
    EXPECT_FALSE(fs::exists(folder.path / "Old" / "main.bas"));
    NewProject empty = project;
    empty.sample = {};
    WriteBytes(folder.path / "Old" / "only.bas", "mine");
    EXPECT_NE(NewProjectNote(empty).find(L"only.bas is the main source"), std::wstring::npos);
    ASSERT_TRUE(MakeProject(empty, &file, &reason));
    EXPECT_EQ(ProjectParse(ReadBytes(file)).source.text, L"only.bas");
    EXPECT_EQ(ReadBytes(folder.path / "Old" / "only.bas"), "mine");
    EXPECT_FALSE(fs::exists(folder.path / "Old" / "main.bas"));
    EXPECT_FALSE(MakeProject(empty, &file, &reason)) << "the project file is there";
    WriteBytes(folder.path / "Taken", "");
    for (const wchar_t* name : {L"Taken", L"a/b", L"nul", L" ", L".."}) {
        project.name = name;
        EXPECT_FALSE(MakeProject(project, &file, &reason)) << fs::path(name);
        EXPECT_FALSE(reason.empty());
    }
    // What cannot be made whole leaves nothing behind.
    project.name = L"Cut";
    project.sample = {.path = (samples / "none.bas").wstring(), .isFolder = false};
    EXPECT_FALSE(MakeProject(project, &file, &reason));
    EXPECT_FALSE(fs::exists(folder.path / "Cut"));
}
