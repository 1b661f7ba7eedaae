// Files of line maps on a disk: staged copies that are gone, and maps that name a file twice or by an empty name.
#include "program/map_paths.h"
#include "base/handles.h"
#include "debugui/location.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "program/line_map.h"

#include "support/temp_files.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// A folder with main.kxa and part.inc.
class MapFiles : public testing::Test {
protected:
    void SetUp() override {
        for (const wchar_t* name : {L"main.kxa", L"part.inc"}) WriteBytes(folder + name, "'");
    }
    void TearDown() override {
        DebugForgetFiles();
        DebugSetSourcePath(L"");
    }
    TempFolder temporary;
    const std::wstring folder = temporary.path.wstring() + L"\\";
};

TEST_F(MapFiles, CopiesOfTheSourceAreTheSource) {
    const MapSource compiled = {.source = folder + L"main.kxa", .staged = folder + L"part.inc"};
    const struct {
        const char* name;
        bool first;
        const wchar_t* expected;  // beside the source
    } cases
        [] =
            {
                {"main.kxa", true, L"main.kxa"},
                {"part.inc", false, L"main.kxa"},  // the staged copy, whether it exists or not
                {"main.pb", false, L"main.kxa"},
                {"x/../main.bas", false, L"main.kxa"},
                {"gone.inc", true, L"main.kxa"},
                {"gone.inc", false, L"gone.inc"},
                {"main.inc", false, L"main.inc"},
                {"./x/y.inc", false, L"x\\y.inc"},
            };
    for (const auto& c : cases) EXPECT_EQ(PathOfMapFile(c.name, c.first, compiled), folder + c.expected) << c.name;
    for (const char* name : {static_cast<const char*>(nullptr), "", "C:\\", "folder\\", "folder/"})
        EXPECT_EQ(PathOfMapFile(name, false, compiled), L"");
    EXPECT_EQ(PathOfMapFile("main.pb", false, {.source = folder + L"part.inc", .staged = L""}), folder + L"main.pb");
}

// A share that went away costs the caller a moment once, and is asked for nothing before it answers.
TEST_F(MapFiles, ASilentShareIsNotWaitedFor) {
    static HANDLE back;
    const UniqueHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    back = event.Get();
    SetShareProbe([](const wchar_t*) { WaitForSingleObject(back, 10000); });
    const ULONGLONG begun = GetTickCount64();
    const MapSource compiled = {.source = folder + L"main.kxa", .staged = L""};
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(PathOfMapFile("\\\\gone\\share\\main.bas", false, compiled), compiled.source);
        EXPECT_FALSE(PathAnswers(L"\\\\?\\UNC\\gone\\share\\part.inc"));
    }
    EXPECT_LT(GetTickCount64() - begun, 3000U);
    EXPECT_TRUE(PathAnswers(folder.c_str()));
    SetEvent(back);
    for (int i = 0; i < 500 && !PathAnswers(L"//gone/share/x"); ++i) Sleep(10);
    EXPECT_TRUE(PathAnswers(L"\\\\gone\\share\\x")) << "it is back";
    SetShareProbe(nullptr);
    for (const wchar_t* path :
         {L"C:\\a", L"\\\\server", L"\\\\server\\", L"\\\\?\\C:\\a", L"\\\\.\\pipe\\a", L"a", L""})
        EXPECT_EQ(ShareRootOf(path), L"") << path;
}

TEST_F(MapFiles, TheFirstOfANumberAndTheFirstOfAPathWin) {
    char names[][12] = {"part.inc", "other.inc", "PART.INC", "C:\\", "main.kxa", "zero.inc"};
    std::vector<SdbgFile> files = {{7, names[0]}, {7, names[1]}, {8, names[2]}, {9, names[3]},
                                   {4, names[4]}, {5, nullptr},  {0, names[5]}};
    SdbgLine line = {4, 1, 0x1000};
    DebuggerState state;
    state.map.lines = &line;
    state.map.lineCount = 1;
    state.map.files = files.data();
    state.map.fileCount = static_cast<std::int32_t>(files.size());
    DebugSetSourcePath((folder + L"main.kxa").c_str());
    DebugForgetFiles();
    EXPECT_EQ(DebugFilePath(&state, 7), L"") << "there is no session";
    EXPECT_EQ(DebugFileIdOfPath(&state, (folder + L"part.inc").c_str()), 0U);
    state.active = 1;
    const struct {
        std::uint32_t id;
        const wchar_t* path;
    } paths[] = {{7, L"part.inc"}, {8, L"PART.INC"}, {4, L"main.kxa"}};
    for (const auto& c : paths) EXPECT_EQ(DebugFilePath(&state, c.id), folder + c.path) << c.id;
    for (const std::uint32_t id : {0U, 5U, 9U, 77U}) EXPECT_EQ(DebugFilePath(&state, id), L"") << id;
    const struct {
        const wchar_t* path;
        std::uint32_t id;
    } ids[] = {{L"Part.inc", 7}, {L"MAIN.kxa", 4}, {L"other.inc", 0}, {L"zero.inc", 0}, {L"main.pb", 0}};
    for (const auto& c : ids) EXPECT_EQ(DebugFileIdOfPath(&state, (folder + c.path).c_str()), c.id) << c.id;

    // A map without files has the source alone.
    state.map.fileCount = 0;
    DebugForgetFiles();
    EXPECT_EQ(DebugFilePath(&state, 1), folder + L"main.kxa");
    EXPECT_EQ(DebugFilePath(&state, 2), L"");
    EXPECT_EQ(DebugFileIdOfPath(&state, (folder + L"MAIN.KXA").c_str()), 1U);
    EXPECT_EQ(DebugFileIdOfPath(&state, (folder + L"part.inc").c_str()), 0U);
    state.map = {};
}

}  // namespace
