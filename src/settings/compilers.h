// The table of compilers. A row holds everything that the program knows of a compiler, except for the keywords of its
// dialect (language/basic_words.cpp) and its file types (settings/file_type_table.cpp). Names, sections, search,
// reports, option names and shell classes are derived from it. Only the texts of the menu are repeated, in
// resources/app.rc, and a test compares them. Pure, constant; any thread.
#pragma once

#include "resources/ids.h"
#include "settings/compiler_id.h"
#include "settings/compiler_texts.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

enum class CommandStyle : std::uint8_t { Kvx, Keldor };  // "-o OUTPUT SOURCE", or SOURCE first

// The compiler that takes over the sources of one that is not installed.
struct CompilerSubstitute {
    std::uint32_t id;  // the row's own id: no substitute
    bool evenWhenNotInstalled;
};

struct CompilerProfile {
    std::uint32_t id;
    const wchar_t* name;     // for display and in the workspace file
    const wchar_t* section;  // its section in Editor.ini
    int command;             // the menu command that selects it
    // The names that "--compiler" accepts, letter case included. The help text shows the first.
    std::array<std::wstring_view, 4> optionNames;

    // --- Its command line.
    CommandStyle commandStyle;
    const wchar_t* syntaxFlags;  // for a syntax check, when the settings have none
    const wchar_t* includeSwitch;
    const wchar_t* asmFlag;     // for a listing, and the setting's default; "{asm}" is its path; empty: no listing
    const wchar_t* debugFlags;  // fixed, not a setting

    // --- Its settings.
    const wchar_t* defaultFlags;
    const wchar_t* defaultSyntaxFlags;
    std::size_t flagsCapacity;   // characters of "Flags" in the file, terminator included
    const wchar_t* description;  // default of "Description"; empty: none
    bool descriptionLast;        // Editor.ini has "Description" after the recent files

    // --- Its sources. A path that contains one of the markers, letter case included, belongs to this compiler whatever
    // its extension. When markers of several rows match, the first row counts.
    std::array<std::wstring_view, 4> pathMarkers;
    CompilerSubstitute substitute;
    std::span<const CompilerCandidate> candidates;

    // The icon of its file type in the shell. A bare name on purpose, because the shell searches for it.
    const wchar_t* shellIcon;

    // --- Its place in the lists that have an order of their own. 0 is the first place.
    std::uint8_t preference;   // for BASIC sources of no particular compiler, and in the detection report
    std::uint8_t sectionRank;  // of its section in Editor.ini
    std::uint8_t searchRank;   // in the start-up search
};

inline constexpr CompilerProfile g_compilers[] = {
    {.id = kCompilerKvxa64,
     .name = L"KVXA64",
     .section = L"KVXA64",
     .command = IDM_USE_KVXA64,
     .optionNames = {L"kvxa64", L"KVXA64"},
     .commandStyle = CommandStyle::Kvx,
     .syntaxFlags = L"-S",
     .includeSwitch = L"-I",
     .asmFlag = L"",
     .debugFlags = L"--debug",
     .defaultFlags = L"",
     .defaultSyntaxFlags = L"",
     .flagsCapacity = 512,
     .description = compiler_texts::kKvxa64Description,
     .descriptionLast = false,
     .pathMarkers = {L"KVXA64", L"kvxa64", L"KXA64", L"kxa64"},
     .substitute = {kCompilerKvxb64, false},
     .candidates = compiler_texts::kKvxa64Candidates,
     .shellIcon = L"KA64.ico",
     .preference = 2,
     .sectionRank = 0,
     .searchRank = 0},
    {.id = kCompilerKvxb64,
     .name = L"KVXB64",
     .section = L"KVXB64",
     .command = IDM_USE_KVXB64,
     .optionNames = {L"kvxb64", L"KVXB64"},
     .commandStyle = CommandStyle::Kvx,
     .syntaxFlags = L"--syntax-only",
     .includeSwitch = L"-I",
     .asmFlag = L"--asm:{asm}",
     .debugFlags = L"--debug",
     .defaultFlags = L"",
     .defaultSyntaxFlags = L"",
     .flagsCapacity = 512,
     .description = compiler_texts::kKvxb64Description,
     .descriptionLast = false,
     .pathMarkers = {L"KVXB64", L"kvxb64", L"B64", L"b64"},
     .substitute = {kCompilerKvxa64, true},
     .candidates = compiler_texts::kKvxb64Candidates,
     .shellIcon = L"KVXE.ico",
     .preference = 3,
     .sectionRank = 1,
     .searchRank = 1},
    {.id = kCompilerKvxa32,
     .name = L"KVXA32",
     .section = L"KVXA32",
     .command = IDM_USE_KVXA32,
     .optionNames = {L"kvxa32", L"KVXA32"},
     .commandStyle = CommandStyle::Kvx,
     .syntaxFlags = L"-S",
     .includeSwitch = L"-I",
     .asmFlag = L"/ASMOUT: {asm}",  // the blank is part of the option
     .debugFlags = L"--debug",
     .defaultFlags = L"",
     .defaultSyntaxFlags = L"",
     .flagsCapacity = 1024,
     .description = L"",
     .descriptionLast = true,
     .pathMarkers = {L"KVXA32", L"kvxa32", L"KA32", L"ka32"},
     .substitute = {kCompilerKvxa32, false},
     .candidates = compiler_texts::kKvxa32Candidates,
     .shellIcon = L"KA32.ico",
     .preference = 1,
     .sectionRank = 2,
     .searchRank = 3},
    {.id = kCompilerKeldorBasic,
     .name = L"KeldorBasic",
     .section = L"KELDORBASIC",
     .command = IDM_USE_KELDORBASIC,
     .optionNames = {L"keldorbasic", L"KeldorBasic", L"kb", L"KB"},
     .commandStyle = CommandStyle::Keldor,
     .syntaxFlags = L"/Q",
     .includeSwitch = L"/I",
     .asmFlag = L"/ASMOUT:{asm}",
     .debugFlags = L"/D",
     .defaultFlags = L"/L /Q",
     .defaultSyntaxFlags = L"/Q",
     .flagsCapacity = 512,
     .description = L"",
     .descriptionLast = true,
     .pathMarkers = {L"KeldorBasic", L"keldorbasic"},
     .substitute = {kCompilerKeldorBasic, false},
     .candidates = compiler_texts::kKeldorCandidates,
     .shellIcon = L"KB.ico",
     .preference = 0,
     .sectionRank = 4,
     .searchRank = 4},
    {.id = kCompilerKvxc64,
     .name = L"KVXC64",
     .section = L"KVXC64",
     .command = IDM_USE_KVXC64,
     .optionNames = {L"kvxc64", L"KVXC64"},
     .commandStyle = CommandStyle::Kvx,
     .syntaxFlags = L"--syntax-only",
     .includeSwitch = L"-I",
     .asmFlag = L"--asm:{asm}",
     .debugFlags = L"--debug",
     .defaultFlags = L"",
     .defaultSyntaxFlags = L"",
     .flagsCapacity = 512,
     .description = compiler_texts::kKvxc64Description,
     .descriptionLast = false,
     .pathMarkers = {L"KVXC64", L"kvxc64", L"KXC64", L"kxc64"},
     .substitute = {kCompilerKvxc64, false},
     .candidates = compiler_texts::kKvxc64Candidates,
     .shellIcon = L"KVXE.ico",
     .preference = 4,
     .sectionRank = 3,
     .searchRank = 2},
};
// The same rows under another name.
inline constexpr std::span<const CompilerProfile> g_profiles = g_compilers;

using CompilerOrder = std::array<std::uint32_t, kCompilerCount>;

namespace compiler_texts {

// The ids in the order of a column of ranks. When a rank is missing or given twice, a place keeps an invalid id, which
// the assertions below detect.
constexpr CompilerOrder OrderBy(std::uint8_t CompilerProfile::*rank) {
    CompilerOrder order;
    order.fill(kCompilerCount);
    for (const CompilerProfile& row : g_compilers)
        if (row.*rank < kCompilerCount) order[row.*rank] = row.id;
    return order;
}

constexpr bool IsWhole(const CompilerOrder& order) {
    return std::ranges::all_of(
        order, [](std::uint32_t id) { return id < kCompilerCount; });
}

constexpr bool RowsAreInIdOrder() {
    for (std::uint32_t id = 0; id < kCompilerCount; ++id)
        if (g_compilers[id].id != id) return false;
    return std::size(g_compilers) == kCompilerCount;
}

}  // namespace compiler_texts

inline constexpr CompilerOrder g_defaultOrder = compiler_texts::OrderBy(&CompilerProfile::preference);
inline constexpr CompilerOrder kCompilerSectionOrder = compiler_texts::OrderBy(&CompilerProfile::sectionRank);
inline constexpr CompilerOrder kCompilerSearchOrder = compiler_texts::OrderBy(&CompilerProfile::searchRank);

static_assert(compiler_texts::RowsAreInIdOrder(), "the rows are indexed by id");
static_assert(compiler_texts::IsWhole(g_defaultOrder) && compiler_texts::IsWhole(kCompilerSectionOrder) &&
                  compiler_texts::IsWhole(kCompilerSearchOrder),
              "each rank is given once");
