// Line maps from files: programs of the stand-in compilers, and files that are no such programs.
#include "base/handles.h"
#include "base/log.h"
#include "base/wide_format.h"
#include "debugger/debug_session.h"
#include "program/line_map.h"
#include "settings/compiler_id.h"

#include "program/debug_say.h"
#include "support/deep_folder.h"
#include "support/pe_bytes.h"
#include "support/temp_files.h"

#include <gtest/gtest.h>

#include <winioctl.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace fs = std::filesystem;

namespace {

using namespace std::string_literals;

std::wstring g_said;

class DebuggerMapsWin : public testing::Test {
protected:
    void SetUp() override {
        g_said.clear();
        DebugSetSink([](const std::wstring& text, COLORREF) { g_said += text; });
        DebugSetSourcePath(L"");
    }
    void TearDown() override {
        CloseLog();
        SdbgFree(&map_);
        DebugSetSourcePath(nullptr);
        DebugSetSink(nullptr);
        std::error_code failed;  // a handle that was left open
        fs::remove_all(root_, failed);
        EXPECT_FALSE(failed) << failed.message();
    }

    fs::path Put(const fs::path& name, std::string_view bytes) const {
        WriteBytes(root_ / name, bytes);
        return root_ / name;
    }
    void StartLog() const { OpenLog((root_.wstring() + L"\\").c_str()); }
    // The lines of the log, without byte order mark and times.
    std::vector<std::string> Logged() const {
        CloseLog();
        std::ifstream file(root_ / L"Editor_Detect.log");
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);) {
            if (!line.empty() && line.back() == '\r') line.pop_back();
            lines.push_back(line.substr(line.find("] ") + 2));
        }
        return lines;
    }
    // Loads a map again. "loaded", or what was said instead.
    std::wstring Load(const fs::path& program, std::uint32_t compiler) {
        SdbgFree(&map_);
        g_said.clear();
        const bool loaded = DebugLoadMap(program.c_str(), compiler, &map_);
        EXPECT_EQ(loaded, map_.lines != nullptr && map_.lineCount > 0);
        EXPECT_EQ(loaded, g_said.empty()) << "a failure, and only that, is told";
        return loaded ? L"loaded" : g_said;
    }

    TempFolder folder_;
    const fs::path root_ = folder_.path;
    SdbgMap map_ = {};
};

const std::wstring kNoSection = L"[Debug] No .sdbg section found in EXE.\n";
const std::wstring kNoUse = L"[Debug] PowerBASIC debug database contains no usable line map\n";

std::string Program(const std::vector<pe_bytes::Record>& records) {
    return pe_bytes::Image(true, 0x140000000, {{".text", 0x1000, "code"}, {".sdbg", 0x2000, pe_bytes::Sdbg2(records)}});
}

// --- Files without a map

TEST_F(DebuggerMapsWin, ProgramsWithoutAMap) {
    const std::string good = Program({{1, 5, 0x1000}});
    const fs::path sound = Put(L"good.exe", good);
    EXPECT_EQ(Load(sound, kCompilerKeldorBasic),
              L"[Debug] No PowerBASIC debug database found: " + sound.wstring() + L".pbd\n")
        << "whatever sections it has";
    ASSERT_EQ(Load(sound, kCompilerKvxa64), L"loaded");
    EXPECT_EQ(map_.imageBase, 0x140000000U);
    EXPECT_EQ(map_.textRva, 0x1000U);
    EXPECT_EQ(map_.textSize + map_.nativeTrapMap + map_.neutralizeTraps, 0U);
    EXPECT_NE(map_.byLine, nullptr);
    EXPECT_EQ(map_.ascending, 1U);
    EXPECT_EQ(Load(root_ / L"missing.exe", kCompilerKvxa64), kNoSection);
    EXPECT_EQ(Load(root_, kCompilerKvxa64), kNoSection) << "a folder";
    EXPECT_EQ(Load(L"", kCompilerKvxa64), kNoSection);
    EXPECT_EQ(Load(L"NUL", kCompilerKvxa64), kNoSection);
    EXPECT_EQ(Load(Put(L"empty.exe", ""), kCompilerKvxa64), kNoSection);
    EXPECT_EQ(Load(Put(L"text.exe", std::string(5000, 'x')), kCompilerKvxa64), kNoSection);
    for (const std::size_t size :
         {std::size_t{1}, std::size_t{70}, std::size_t{300}, std::size_t{1024}, good.size() - 1})
        EXPECT_EQ(Load(Put(L"cut.exe", good.substr(0, size)), kCompilerKvxa64), kNoSection) << size;
    EXPECT_EQ(Load(Put(L"none.exe", Program({})), kCompilerKvxa64), kNoSection) << "no records";

    const fs::path held = Put(L"held.exe", good);
    const struct {
        DWORD access, share;
        const wchar_t* expected;
    } holders[] = {{GENERIC_READ, FILE_SHARE_READ, L"loaded"},
                   {GENERIC_READ, 0, kNoSection.c_str()},
                   {GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, kNoSection.c_str()}};
    for (const auto& holder : holders) {
        const UniqueHandle other(
            CreateFileW(held.c_str(), holder.access, holder.share, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(other);
        EXPECT_EQ(Load(held, kCompilerKvxa64), holder.expected) << holder.access << " " << holder.share;
    }
    Load(held, kCompilerKvxa64);
    EXPECT_NE(DeleteFileW(held.c_str()), FALSE) << "the file is closed, the map still there";
}

TEST_F(DebuggerMapsWin, ProgramsAroundFourGigabytes) {
    const std::uint64_t sizes[] = {0xFFFFFFFE, 0xFFFFFFFF, 0x100000000, 0x100010000};
    const fs::path huge = Put(L"huge.exe", Program({{1, 5, 0x1000}}));
    for (const std::uint64_t size : sizes) {
        {
            const UniqueHandle file(CreateFileW(huge.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
            DWORD ignored = 0;
            DeviceIoControl(file.Get(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &ignored, nullptr);
            LARGE_INTEGER end;
            end.QuadPart = static_cast<LONGLONG>(size);
            if (!SetFilePointerEx(file.Get(), end, nullptr, FILE_BEGIN) || !SetEndOfFile(file.Get()))
                GTEST_SKIP() << "this disk holds no file of " << size << " bytes";
        }
        EXPECT_EQ(Load(huge, kCompilerKvxa64), size < 0xFFFFFFFF ? L"loaded" : kNoSection) << size;
    }
}

TEST_F(DebuggerMapsWin, ALongPath) {
    const DeepFolder deep(root_.wstring());
    const std::wstring program = deep.File(L"x.exe"), extended = DeepFolder::LongForm(program);
    WriteBytes(extended, Program({{1, 5, 0x1000}}));
    EXPECT_EQ(Load(program, kCompilerKvxa64), L"loaded");
    EXPECT_NE(DeleteFileW(extended.c_str()), FALSE);
}

TEST_F(DebuggerMapsWin, WholeFiles) {
    std::size_t size = 7;
    const std::string bytes("a\0\n\xFF", 4);
    const HeapBlock<std::uint8_t> block(ReadWholeFileW(Put(L"some", bytes).c_str(), &size));
    ASSERT_TRUE(block);
    EXPECT_EQ(std::string(block.get(), block.get() + size), bytes);
    for (const fs::path& none : {Put(L"empty", ""), root_ / L"missing", root_, fs::path()}) {
        size = 7;
        EXPECT_EQ(ReadWholeFileW(none.c_str(), &size), nullptr) << none;
        EXPECT_EQ(size, 0U) << none;
    }
    EXPECT_EQ(ReadWholeFileW(nullptr, &size), nullptr);
}

// --- Structural lines

TEST_F(DebuggerMapsWin, StructuralLinesAreShownOnTheStatementBefore) {
    const std::string basic =
        "ELSE\nSUB PBMAIN\n  IF a THEN\n    b = 1\n  else\n    c = 1\n  End If ' so\nEND SUB\n'\nELSE\n";
    const fs::path source = Put(L"part.bas", basic);
    const fs::path program =
        Put(L"part.exe", Program({{1, 1, 0x1000},  // nothing before it
                                  {1, 3, 0x1004},
                                  {1, 5, 0x1008},
                                  {2, 7, 0x100C},  // a file that the map does not name
                                  {1, 9, 0x100E},  // keeps its line, although the next record gets a lower one
                                  {1, 10, 0x1010},
                                  {1, 0, 0x1014},
                                  {1, 0xFFFFFFFF, 0x1018}}));
    const auto lines = [this] {
        std::vector<std::uint32_t> found;
        for (int i = 0; i < map_.lineCount; ++i) found.push_back(map_.lines[i].line);
        return found;
    };
    using Lines = std::vector<std::uint32_t>;
    const Lines untouched = {1, 3, 5, 7, 9, 10, 0, 0xFFFFFFFF};
    for (const fs::path& other :
         {fs::path(), root_, root_ / L"missing.bas", Put(L"empty.bas", ""), Put(L"binary.bas", ReadBytes(program)),
          Put(L"wide.bas", "\xFF\xFE" + std::string("E\0L\0S\0E\0\n\0", 10))}) {
        DebugSetSourcePath(other.c_str());
        ASSERT_EQ(Load(program, kCompilerKvxb64), L"loaded") << other;
        EXPECT_EQ(lines(), untouched) << other;
    }

    DebugSetSourcePath(source.c_str());
    StartLog();
    ASSERT_EQ(Load(program, kCompilerKvxb64), L"loaded");
    EXPECT_EQ(lines(), (Lines{1, 3, 4, 6, 9, 8, 0, 0xFFFFFFFF}));
    EXPECT_EQ(SdbgLineToRva(&map_, 6), 0x100CU);
    EXPECT_EQ(SdbgLineToRva(&map_, 8), 0x1010U) << "the index is that of the changed lines";
    EXPECT_EQ(SdbgLineToRva(&map_, 9), 0x100EU);
    EXPECT_EQ(SdbgLineToRva(&map_, 7), 0U);
    const std::string file = "DBG SdbgNormalize: file=" + source.string();
    EXPECT_EQ(Logged(), (std::vector<std::string>{file + " rva=0x00001008 structuralLine=5 mappedLine=4",
                                                  file + " rva=0x0000100C structuralLine=7 mappedLine=6",
                                                  file + " rva=0x00001010 structuralLine=10 mappedLine=8"}));

    // Records of an include file keep their lines.
    const std::string named = pe_bytes::Sdbg2({{2, 5, 0x1000}, {1, 5, 0x1004}, {3, 7, 0x1008}}) +
                              pe_bytes::FileTable({{1, "part.bas"}, {2, "part.inc"}, {3, ""}});
    const fs::path two =
        Put(L"two.exe", pe_bytes::Image(true, 0x140000000, {{".text", 0x1000, "code"}, {".sdbg", 0x2000, named}}));
    Put(L"part.inc", "'");
    ASSERT_EQ(Load(two, kCompilerKvxb64), L"loaded");
    EXPECT_EQ(lines(), (Lines{5, 4, 6}));

    std::uint32_t statements[4] = {};
    EXPECT_EQ(CollectPbmainSourceLines(source.c_str(), statements, 4), 4);
    EXPECT_EQ(statements[3], 8U);
    EXPECT_EQ(CollectPbmainSourceLines(L"", statements, 4), 0);
    EXPECT_TRUE(IsBasicControlOnlySourceLine(source.c_str(), 7));
    EXPECT_FALSE(IsBasicControlOnlySourceLine(source.c_str(), 8));
    EXPECT_FALSE(IsBasicControlOnlySourceLine(source.c_str(), -1));
    EXPECT_FALSE(IsBasicControlOnlySourceLine(nullptr, 1));
    EXPECT_EQ(PreviousPbmainExecutableLine(source.c_str(), 8), 6U);
    EXPECT_EQ(PreviousPbmainExecutableLine(source.c_str(), 3), 0U);
}

// --- Side files

TEST_F(DebuggerMapsWin, SideFiles) {
    std::string side = "......PBMAIN..";
    pe_bytes::Append(&side, 0x401050U);
    pe_bytes::Append(&side, 0U);
    const std::string code = std::string(0x50, '\x90') + "\xCC\x90\xCC\x90\xCC\x90\xCC";
    const std::string good = pe_bytes::Image(false, 0x400000, {{".text", 0x1000, code}});
    const std::string basic = "SUB PBMAIN\n\n  x = 1\n   ' note\nELSE\nEND SUB";
    const fs::path program = Put(L"p.v2.exe", good);
    const fs::path sideFile = Put(L"p.v2.exe.pbd", side);
    const fs::path beside = Put(L"p.v2.bas", basic);

    StartLog();
    ASSERT_EQ(Load(program, kCompilerKeldorBasic), L"loaded");
    EXPECT_EQ(map_.lineCount, 2);
    EXPECT_EQ(map_.lines[1].line, 6U);
    EXPECT_EQ(map_.lines[1].rva, 0x1052U);
    EXPECT_EQ(SdbgLineToRva(&map_, 6), 0x1052U);
    EXPECT_EQ(map_.nativeTrapMap, 1U);
    EXPECT_EQ(map_.textSize, code.size());
    EXPECT_EQ(SdbgRvaToLine(&map_, map_.textRva + map_.textSize), 0U) << "after the code";
    EXPECT_EQ(Load(program, kCompilerKvxa32), kNoSection) << "a side file is of one compiler only";
    const fs::path other = Put(L"other.txt", "FUNCTION PBMAIN\r\nEND FUNCTION\r\n");
    DebugSetSourcePath(other.c_str());
    ASSERT_EQ(Load(program, kCompilerKeldorBasic), L"loaded");
    EXPECT_EQ(map_.lineCount, 1) << "the source that is debugged, not the one beside";

    DebugSetSourcePath((root_ / L"gone.bas").c_str());
    EXPECT_EQ(Load(program, kCompilerKeldorBasic), kNoUse);
    DebugSetSourcePath(L"");
    const struct {
        const char* name;
        std::string program, side, source;
    } cases[] = {
        {"no traps", pe_bytes::Image(false, 0x400000, {{".text", 0x1000, "\x90"}}), side, basic},
        {"an empty program", "", side, basic},
        {"an empty side file", good, "", basic},
        {"an empty source", good, side, ""},
    };
    for (const auto& c : cases) {
        Put(L"p.v2.exe", c.program);
        Put(L"p.v2.exe.pbd", c.side);
        Put(L"p.v2.bas", c.source);
        EXPECT_EQ(Load(program, kCompilerKeldorBasic), kNoUse) << c.name;
    }
    Put(L"p.v2.exe", good);
    Put(L"p.v2.exe.pbd", side);
    Put(L"p.v2.bas", basic);
    EXPECT_EQ(Load(program, kCompilerKeldorBasic), L"loaded") << "all is as it was";
    {
        const UniqueHandle held(CreateFileW(sideFile.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_EQ(Load(program, kCompilerKeldorBasic), kNoUse);
    }
    fs::remove(sideFile);
    fs::create_directory(sideFile);
    EXPECT_EQ(Load(program, kCompilerKeldorBasic),
              L"[Debug] No PowerBASIC debug database found: " + sideFile.wstring() + L"\n")
        << "a folder is no side file";

    const std::vector<std::string> log = Logged();
    ASSERT_GE(log.size(), 3U);
    const std::string names = "pbd=" + sideFile.string() + " source=";
    EXPECT_EQ(log[0], "DBG PbdLoad: " + names + beside.string() +
                          " lines=2 traps=4 map=2 imageBase=0x400000 startRva=0x00001050 firstLine=3 "
                          "firstRva=0x00001050");
    EXPECT_EQ(log[2], "FAIL: PbdLoad unusable " + names + (root_ / L"gone.bas").string() + " lineCount=0 trapCount=0");
    EXPECT_EQ(log[3], "FAIL: PbdLoad unusable " + names + beside.string() + " lineCount=2 trapCount=0");
}

}  // namespace
