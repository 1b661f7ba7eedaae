// Which compiler a file belongs to, where it is found and where its results go; and the texts that are made from the
// tables of compilers and file types.
#include "../samples/toolchain/profile.h"
#include "app/command_line.h"
#include "app/detect_report.h"
#include "base/path.h"
#include "session/workspace_text.h"
#include "settings/compiler_table.h"
#include "settings/file_type_table.h"
#include "settings/shell_entries.h"
#include "settings/version.h"
#include "support/golden_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr unsigned kNone = 0;
constexpr unsigned kAll = 31;
constexpr std::uint32_t kActive = 4;

struct PickCase {
    const wchar_t* path;
    unsigned installed;  // bit n: compiler n
    std::uint32_t picked;
};

// The first marker in a path wins over the second, and a marker over the extension ("b64" is in "Lib64"). Markers are
// case-sensitive.
constexpr PickCase kPickCases[] = {
    {L"C:\\source\\demo", kAll, 3},       {L"C:\\kvxa64\\demo.bas", kAll, 0},    {L"C:\\kvxa64\\demo.bas", 0b00010, 1},
    {L"C:\\kvxa64\\demo.bas", kNone, 0},  {L"C:\\LIB64\\demo.bas", kAll, 1},     {L"C:\\LIB64\\demo.bas", 0b11101, 0},
    {L"C:\\LIB64\\demo.bas", kNone, 0},   {L"C:\\LIB64\\KXA64.txt", kAll, 0},    {L"C:\\lib64\\demo.kb", kAll, 1},
    {L"C:\\Lib64\\demo.kb", kAll, 1},     {L"C:\\LiB_64\\demo.kb", kAll, 3},     {L"C:\\KA32\\demo.kb", kNone, 2},
    {L"C:\\keldorbasic\\x.kxa", kAll, 3}, {L"C:\\Keldorbasic\\x.kxa", kAll, 0},  {L"C:\\KXC64\\demo.kxa", kAll, 4},
    {L"C:\\src\\demo.KB", kAll, 3},       {L"C:\\src\\demo.Kxa", kAll, 0},       {L"C:\\src\\demo.c64", kAll, 4},
    {L"C:\\src\\demo.kxc", kAll, 4},      {L"C:\\src\\demo.kxb", kAll, 1},       {L"C:\\src\\demo.C", kNone, 1},
    {L"C:\\src\\demo.h", kAll, 1},        {L"C:\\src\\demo.bas", kAll, 3},       {L"C:\\src\\demo.PBI", 0b00111, 2},
    {L"C:\\src\\demo.inc", 0b00001, 0},   {L"C:\\src\\demo.pba", 0b10010, 1},    {L"C:\\src\\demo.pb", 0b10000, 4},
    {L"C:\\src\\demo.bas", kNone, 3},     {L"C:\\src\\demo.txt", kAll, kActive}, {L"C:\\src\\demo.bi", kAll, kActive},
    {L"C:\\src.kb\\demo", kAll, kActive},
};

std::string Narrow(std::wstring_view text) { return {text.begin(), text.end()}; }

// One line for each row. Candidates, markers and long descriptions are left out, because other tests cover them.
std::string FixedTexts() {
    std::string text = "--- The help text\n" + Narrow(CommandLineHelp()) + "\n\n--- The detection report\n";
    const auto settings = std::make_unique<Settings>();
    SafeCopyW(settings->compilers[kCompilerKvxa32].path, L"C:\\a32.exe");
    text += Narrow(DetectReportText(*settings, 1)) + "\n\n--- The file dialogs' list\n";
    for (const FileTypeFilter& filter : FileDialogFilters())
        text += Narrow(filter.description) + " | " + Narrow(filter.pattern) + "\n";
    text += "\n--- The compilers, in the file's order, and in the order of the search\n";
    for (const std::uint32_t id : kCompilerSectionOrder) {
        const CompilerProfile& row = g_compilers[id];
        text += std::to_string(id) + " [" + Narrow(row.section) + "] ." + Narrow(OwnFileType(id)->extension.substr(1)) +
                " " + Narrow(row.name) + " Source File, " + Narrow(row.shellIcon) + ", workspace " +
                Narrow(WorkspaceCompilerName(id)) + ", command " + std::to_string(row.command) + "\n";
    }
    for (const std::uint32_t id : kCompilerSearchOrder) text += Narrow(g_compilers[id].section) + "\n";
    return text;
}

}  // namespace

TEST(Compilers, FileGoesToTheFirstRuleThatApplies) {
    for (const PickCase& test : kPickCases) {
        const auto installed = [&test](std::uint32_t id) { return ((test.installed >> id) & 1U) != 0; };
        EXPECT_EQ(PickCompilerForFile(test.path, kActive, installed), test.picked)
            << test.path << " with " << test.installed;
    }
    EXPECT_EQ(PickCompilerForFile(L"", kActive, [](std::uint32_t) { return true; }), 3U);
}

TEST(Compilers, UnknownIdsGiveTheFirstCompiler) {
    EXPECT_EQ(CompilerNext(2), 3U);
    EXPECT_EQ(CompilerNext(4), 0U);
    EXPECT_EQ(CompilerNext(9), 0U);
    EXPECT_EQ(Profile(0xFFFFFFFF).id, 0U);
    EXPECT_EQ(CompilerOfCommand(1252), nullptr);
    EXPECT_EQ(CompilerOfCommand(1320)->id, 4U);
    EXPECT_EQ(OwnFileType(kAnyBasicCompiler), nullptr);
    EXPECT_EQ(CompilerIdFromName(L"KB"), 3);
    EXPECT_EQ(CompilerIdFromName(L"Kb"), -1);
    EXPECT_EQ(CompilerIdFromName(L""), -1) << "no spelling of those that have fewer";
    EXPECT_EQ(WorkspaceCompilerId(L"KELDORBASIC"), -1);
    EXPECT_EQ(WorkspaceCompilerId(L"KeldorBasic"), 3);
}

TEST(Compilers, TheFirstCandidateThatIsThereIsFound) {
    std::vector<std::wstring> asked;
    const auto find = [&asked](std::uint32_t id, const wchar_t* present) {
        asked.clear();
        return FindCompiler(id, L"C:\\kvx\\", [&](const wchar_t* path) {
            asked.emplace_back(path);
            return asked.back() == present;
        });
    };
    const std::wstring present = L"C:\\kvx\\..\\KeldorBasic\\build\\KeldorBASIC.exe";
    EXPECT_EQ(find(kCompilerKeldorBasic, present.c_str()), present);
    ASSERT_EQ(asked.size(), 3U) << "and nothing after it";
    EXPECT_EQ(asked[0], L"C:\\kvx\\KELDORRBASIC\\KeldorrBASIC.exe");
    EXPECT_EQ(find(kCompilerKvxa32, L""), L"");
    EXPECT_EQ(asked.back(), L"C:\\kvx\\KVXA32\\KVXA32.exe") << "beside the program last of all";
    EXPECT_EQ(find(kCompilerCount, L""), L"");
    EXPECT_TRUE(asked.empty());
}

TEST(Compilers, ResultPaths) {
    struct Case {
        const wchar_t *source, *executable, *listing;
    };
    constexpr Case kCases[] = {
        {L"C:\\x\\file.bas", L"C:\\x\\file.exe", L"C:\\x\\file.asm"},
        {L"C:\\x\\two.dots.kb", L"C:\\x\\two.dots.exe", L"C:\\x\\two.dots.asm"},
        {L"C:\\a.b\\file", L"C:\\a.b\\file.exe", L"C:\\a.asm"},  // the dot of the folder counts for the listing
        {L"C:\\x\\file", L"C:\\x\\file.exe", L"C:\\x\\file"},
        {L"file.bas", L"file.exe", L"file.asm"},
    };
    for (const Case& test : kCases) {
        wchar_t out[64] = L"?";
        CompilerMakeOutputPath(test.source, out, 64);
        EXPECT_STREQ(out, test.executable);
        CompilerMakeAsmPath(test.source, out, 64);
        EXPECT_STREQ(out, test.listing);
    }
    wchar_t small[8];
    CompilerMakeOutputPath(L"C:\\x\\file.bas", small, 8);
    EXPECT_STREQ(small, L"C:\\x\\") << "a name that does not fit is dropped";
}

TEST(Compilers, TextsPutTogetherFromTheTablesAreTheFixedOnes) { ExpectGolden("compiler_texts.txt", FixedTexts()); }

// The stand-ins have a table of switches of their own, because they are separate programs. Both tables must agree.
TEST(Compilers, TheStandInsTakeTheSwitchesThatTheEditorGives) {
    ASSERT_EQ(standin::kProfiles.size(), std::size(g_compilers));
    for (const CompilerProfile& row : g_compilers) {
        const auto* standIn = std::ranges::find_if(standin::kProfiles, [&row](const standin::Profile& profile) {
            return PathEqualsIgnoreCase(row.name, std::wstring(profile.name.begin(), profile.name.end()));
        });
        ASSERT_NE(standIn, standin::kProfiles.end()) << Narrow(row.name);
        EXPECT_EQ(standIn->style == standin::CommandStyle::Keldor, row.commandStyle == CommandStyle::Keldor);
        EXPECT_EQ(standIn->includeSwitch, Narrow(row.includeSwitch));
        EXPECT_EQ(standIn->debugSwitch, Narrow(row.debugFlags));
        EXPECT_EQ(standIn->listingSwitch, Narrow(row.asmFlag).substr(0, standIn->listingSwitch.size()));
        EXPECT_EQ(standIn->listingSwitch.empty(), row.asmFlag[0] == L'\0');
        EXPECT_TRUE(standIn->syntaxSwitch.empty() || standIn->syntaxSwitch == Narrow(row.syntaxFlags));
    }
}

TEST(FileTypes, KnowSourceNames) {
    for (const wchar_t* name : {L"a.bas", L"A.BAS", L"x.y.pbi", L"f.s", L"x.b64", L"a.kxc", L"a.bi", L"a.cpp"})
        EXPECT_NE(FileTypeOfPath(name), nullptr) << Narrow(name);
    for (const wchar_t* name : {L"bas", L"a.ba", L"a.bas.bak", L"a.", L"", L"a.sx", L"a.txt", L"C:\\a.bas\\x"})
        EXPECT_EQ(FileTypeOfPath(name), nullptr) << Narrow(name);
}

TEST(FileTypes, WhatTheShellIsTold) {
    std::string text;
    const auto add = [&](const std::vector<ShellKey>& keys) {
        for (const ShellKey& key : keys)
            text += Narrow(key.path.substr(17)) + " " + "-=!"[static_cast<int>(key.value)] + Narrow(key.text) + "\n";
    };
    const std::wstring command = ShellOpenCommand(L"C:\\E.exe");
    add(OpenWithKeys(Profile(kCompilerKvxb64), command));
    add(OpenWithKeys(Profile(kCompilerKvxc64), command));
    add(DefaultProgramKeys(L"kxc", L"D", L"I.ico", command));
    EXPECT_EQ(text,
              ".kxb -\n.b64 -\n.c -\n.h -\nKVXB64.Source\\shell\\open\\command =\"C:\\E.exe\" \"%1\"\n"
              ".kxb\\OpenWithProgids !KVXB64.Source\n.b64\\OpenWithProgids !KVXB64.Source\n"
              "KVXE.kxc =D\nKVXE.kxc\\DefaultIcon =\"I.ico\",0\n"
              "KVXE.kxc\\shell\\open\\command =\"C:\\E.exe\" \"%1\"\n.kxc =KVXE.kxc\n");
}

// The manifest cannot include the header with the version.
TEST(Version, TheManifestHasTheVersionOfTheHeader) {
    const std::string manifest = ReadBytes(std::string(KVX_ROOT_DIR) + "/src/resources/kvx-editor.manifest");
    EXPECT_NE(manifest.find("name=\"KVX-Editor\" version=\"" KVX_VERSION ".0\""), std::string::npos);
    constexpr int kNumbers[] = {KVX_VERSION_NUMBERS};
    EXPECT_EQ(std::to_string(kNumbers[0]) + "." + std::to_string(kNumbers[1]) + "." + std::to_string(kNumbers[2]),
              KVX_VERSION);
}
