// The project file: what is read, which line a fault has, what writing leaves alone.
#include "project/project_file.h"

#include "base/utf8.h"
#include "compile/build_source.h"
#include "support/golden_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::string Faults(const ProjectFile& file) {
    std::string text;
    for (const ProjectFault& fault : file.faults)
        text += std::to_string(fault.line) + (fault.note ? "n " : " ") + ToUtf8(fault.text).substr(0, 24) + "|";
    return text;
}

const std::string kWhole =
    "\xEF\xBB\xBF; mine\r\n[project]\nNAME = D\xC3\xA9mo \r[Other]\r\nKey=1\r\n[Project]\r\nMain=\"src/a "
    "b.bas\"\r\nRoot=..\r\n"
    "[Build]\r\nCompiler=kvxc64\r\nFlags=-A  -B\r\nFlags=-C\r\nInclude=inc\r\ninclude=..\\lib\r\n"
    "[Run]\r\nArguments=\"x y\" z=1 ; no comment\r\n[Exclude]\r\nFolder=build\r\nFolder=out/t*mp\r\n";

}  // namespace

TEST(ProjectFile, ReadsWhatPeopleWrite) {
    const ProjectFile file = ProjectParse(kWhole);
    EXPECT_EQ(Faults(file), "");
    EXPECT_EQ(file.name.text, L"D\u00e9mo");
    EXPECT_EQ(file.source.text, L"src/a b.bas");
    EXPECT_EQ(file.source.line, 7);
    EXPECT_EQ(file.compilerId, 4u);
    EXPECT_EQ(file.flags, L"-A  -B -C");
    ASSERT_EQ(file.includes.size(), 2u);
    EXPECT_EQ(ProjectPath(L"C:\\p\\q", file.includes[1].text), L"C:\\p\\lib");
    EXPECT_EQ(file.arguments.text, L"\"x y\" z=1 ; no comment");
    const ExcludedFolders excluded = ProjectExcludesOf(file, L"C:\\P\\");
    for (const auto& [path, folder, expected] : std::vector<std::tuple<const wchar_t*, bool, bool>>{
             {L"c:\\p\\BUILD", true, true},
             {L"C:\\p\\build", false, false},  // a file of that name
             {L"C:\\p\\a\\build\\x.bas", false, true},
             {L"C:\\p\\out\\temp\\x\\y.bas", false, true},
             {L"C:\\p\\a\\out\\tmp\\x.bas", false, false},  // a path counts from the root
             {L"C:\\other\\build\\x.bas", false, false}})
        EXPECT_EQ(IsInExcludedFolder(excluded, path, folder), expected) << ToUtf8(path);
}

TEST(ProjectFile, NamesEachFaultWithItsLine) {
    const std::string before = "[Project]\nName=A\n";
    const struct {
        std::string bytes, faults;
    } kRows[] = {
        {"", ""},
        {"Name=x", "1 the key stands before th|"},
        {before + "Name=B", "3 given before in line 2, |"},
        {before + "rubbish\n[Broken\n[]\n=x",
         "3 neither a [Section] nor |4 a section is written as |"
         "5 a section is written as |6 neither a [Section] nor |"},
        {before + "Sorce=a.bas\n[Future]\nSorce=1", "3n the key Sorce is not kno|"},
        {before + "Main=con.bas\nRoot=\\\\.\\C:", "3 the path is a device|4 the path has a characte|"},
        {before + "Main=C:a.bas\nMain=a|b", "3 the path needs a slash a|4 the path has a characte|"},
        {before + "Main=" + std::string(2000, 'a'), "3 the path is too long|"},
        {"[Build]\nCompiler=gcc", "2 no compiler has this nam|"},
        {"[Build]\n\n;x\nFlags=" + std::string(3000, 'x'), "4 the flags are longer tha|"},
        {before + "Main=\xFF.bas", "3 the line is not UTF-8|"},
        {before + "Main=a\x01.bas", "3 the line has a control c|"},
        {before + std::string("Main=a\0b", 8), "3 The file is not text|"},
        {"\xFF\xFE[\0", "1 The file is UTF-16; a pr|"},
        {std::string(kMostProjectBytes + 1, ';'), "1 The file is larger than |"},
    };
    for (const auto& row : kRows) {
        // The texts are compared as far as 24 characters.
        std::string expected = row.faults, found = Faults(ProjectParse(row.bytes));
        EXPECT_EQ(found.size() > 0, expected.size() > 0) << row.bytes.substr(0, 60);
        for (std::size_t at = 0; at < expected.size();) {
            const std::size_t end = expected.find('|', at), other = std::min(found.find('|'), found.size());
            const std::string part = expected.substr(at, std::min<std::size_t>(end - at, 22));
            EXPECT_EQ(found.substr(0, part.size()), part) << row.bytes.substr(0, 60);
            found.erase(0, other + 1);
            at = end + 1;
        }
        EXPECT_EQ(found, "") << row.bytes.substr(0, 60);
    }
    std::string many = "[Build]\n";
    for (int i = 0; i < 5000; ++i) many += "Include=f\n";
    EXPECT_EQ(ProjectParse(many).includes.size(), kMostProjectFolders);
    EXPECT_EQ(ProjectParse(many).faults.size(), kMostProjectFaults);
}

TEST(ProjectFile, WritingChangesOneValueAndKeepsTheRest) {
    const struct {
        std::string bytes, expected;
    } kRows[] = {
        {"", "[Project]\r\nMain=a/b.bas\r\n"},
        {"; x", "; x\r\n\r\n[Project]\r\nMain=a/b.bas\r\n"},
        {"[PROJECT]\n main =old ; text\n[X]\ny=1", "[PROJECT]\n main =a/b.bas\n[X]\ny=1"},
        {"[Project]\nName=A\n\n; about X\n[X]\nMain=no", "[Project]\nName=A\nMain=a/b.bas\n\n; about X\n[X]\nMain=no"},
        // What is no text is no section for the writer, too.
        {"[Project]\n[\xBA]\nMain=x", "[Project]\n[\xBA]\nMain=a/b.bas"},
        {"\xEF\xBB\xBF[Project]", "\xEF\xBB\xBF[Project]\r\nMain=a/b.bas\r\n"},
    };
    for (const auto& row : kRows) {
        EXPECT_EQ(ProjectWithValue(row.bytes, "Project", "Main", L"a/b.bas"), row.expected);
        EXPECT_EQ(ProjectWithValue(row.expected, "Project", "Main", L"a/b.bas"), row.expected);
    }
    ExpectGolden("project.kvxproj",
                 ProjectCompose({.name = L"D\u00e9mo", .source = L"main.bas", .compiler = L"KVXA64"}));
    EXPECT_EQ(Faults(ProjectParse(GoldenText("project.kvxproj"))), "");
}

TEST(ProjectFile, PathsAreResolvedAndWritten) {
    const struct {
        const wchar_t *written, *expected;
    } kRows[] = {{L".", L"C:\\p\\q"},
                 {L"./a//b\\.\\c", L"C:\\p\\q\\a\\b\\c"},
                 {L"../../../..", L"C:\\"},
                 {L"/x", L"C:\\x"},
                 {L"D:/x/../y", L"D:\\y"},
                 {L"..", L"C:\\p"},
                 {L"//s/h/../../x", L"\\\\s\\h\\x"}};
    for (const auto& row : kRows) EXPECT_EQ(ProjectPath(L"C:\\p\\q", row.written), row.expected);
    EXPECT_EQ(ProjectWrittenPath(L"c:\\P\\", L"C:\\p\\a\\b.bas"), L"a/b.bas");
    EXPECT_EQ(ProjectWrittenPath(L"C:\\p", L"C:\\pq\\b.bas"), L"C:\\pq\\b.bas");
    const BuildProject project{.file = L"D:\\x.kvxproj", .root = L"C:\\p\\", .source = L"D:\\main.bas"};
    for (const wchar_t* inside : {L"c:\\P\\a.inc", L"d:\\MAIN.bas", L"D:\\x.kvxproj"})
        EXPECT_TRUE(ProjectHoldsFile(project, inside)) << ToUtf8(inside);
    for (const wchar_t* outside : {L"", L"C:\\pq\\a.inc", L"D:\\other.bas"})
        EXPECT_FALSE(ProjectHoldsFile(project, outside)) << ToUtf8(outside);
}
