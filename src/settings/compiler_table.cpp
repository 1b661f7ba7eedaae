// The compilers' tables and the rules over them. Knows neither the settings nor the disk. Pure; any thread.
#include "settings/compiler_table.h"

#include "base/bounded_text.h"
#include "base/path.h"

#include <array>
#include <initializer_list>
#include <string>

namespace {

constexpr CompilerProfile g_profiles[kCompilerCount] = {
    {kCompilerKvxa64, L"KVXA64", L"-S", L"-I", L"", CommandStyle::Kvx, L"--debug"},
    {kCompilerKvxb64, L"KVXB64", L"--syntax-only", L"-I", L"--asm:{asm}", CommandStyle::Kvx, L"--debug"},
    {kCompilerKvxa32, L"KVXA32", L"-S", L"-I", L"/ASMOUT: {asm}", CommandStyle::Kvx, L"--debug"},
    {kCompilerKeldorBasic, L"KeldorBasic", L"/Q", L"/I", L"/ASMOUT:{asm}", CommandStyle::Keldor, L"/D"},
    {kCompilerKvxc64, L"KVXC64", L"--syntax-only", L"-I", L"--asm:{asm}", CommandStyle::Kvx, L"--debug"},
};

constexpr CompilerMenuEntry g_compilers[kCompilerCount] = {
    {kCompilerKvxa64, L"KVXA64", 1250}, {kCompilerKvxb64, L"KVXB64", 1251},
    {kCompilerKvxa32, L"KVXA32", 1253}, {kCompilerKeldorBasic, L"KeldorBasic", 1254},
    {kCompilerKvxc64, L"KVXC64", 1320},
};

constexpr CompilerCandidate kKvxa64Candidates[] = {
    {L"KVXA64", L"kvxa64.exe"},
    {L"..\\KVXA64\\KVXA64\\build", L"KVXA64.exe"},
    {L"..\\..\\KVXA64\\KVXA64", L"KVXA64.exe"},
    {L"..\\..\\KVXA64\\KVXA64\\build", L"kvxa64.exe"},
    {L"..\\..\\KVXA64\\KVXA64\\Release\\V1", L"kvxa64.exe"},
    {L"..\\KVXA64\\KVXA64", L"KVXA64.exe"},
    {L"..\\KVXA64\\KVXA64\\build", L"kvxa64.exe"},
    {L"..\\KVXA64\\KVXA64\\Release\\V1", L"kvxa64.exe"},
};
constexpr CompilerCandidate kKvxb64Candidates[] = {
    {L"KVXB64", L"KVXB64.exe"},
    {L"..\\..\\KVXB64\\KVXB64\\core\\build", L"KVXB64.exe"},
    {L"..\\..\\KVXB64\\KVXB64\\Release\\V1", L"KVXB64.exe"},
    {L"..\\KVXB64\\KVXB64\\core\\build", L"KVXB64.exe"},
    {L"..\\KVXB64\\KVXB64\\Release\\V1", L"KVXB64.exe"},
};
constexpr CompilerCandidate kKvxc64Candidates[] = {
    {L"KVXC64", L"KVXC64.exe"},
    {L"..\\..\\KVXC64\\KVXC64\\build", L"KVXC64.exe"},
    {L"..\\..\\KVXC64\\KVXC64\\Release\\V1", L"KVXC64.exe"},
    {L"..\\KVXC64\\KVXC64\\build", L"KVXC64.exe"},
    {L"..\\KVXC64\\KVXC64\\Release\\V1", L"KVXC64.exe"},
};
constexpr CompilerCandidate kKvxa32Candidates[] = {
    {L"..\\..\\KVXA32\\testcopy", L"KVXA32.exe"},
    {L"..\\KVXA32\\testcopy", L"KVXA32.exe"},
    {L"..\\..\\KVXA32\\build", L"KVXA32.exe"},
    {L"..\\KVXA32\\build", L"KVXA32.exe"},
    {L"..\\..\\KVXA32\\KVXA32\\build", L"KVXA32.exe"},
    {L"..\\KVXA32\\KVXA32\\build", L"KVXA32.exe"},
    {L"KVXA32", L"KVXA32.exe"},
};
constexpr CompilerCandidate kKeldorCandidates[] = {
    {L"KELDORRBASIC", L"KeldorrBASIC.exe"},  // the doubled letter is how that distribution spells it
    {L"..\\..\\KeldorBasic\\build", L"KeldorBASIC.exe"},
    {L"..\\KeldorBasic\\build", L"KeldorBASIC.exe"},
    {L"..\\..\\KeldorBasic\\Release", L"KeldorBASIC.exe"},
    {L"..\\KeldorBasic\\Release", L"KeldorBASIC.exe"},
};
constexpr std::span<const CompilerCandidate> kCandidates[kCompilerCount] = {
    kKvxa64Candidates, kKvxb64Candidates, kKvxa32Candidates, kKeldorCandidates, kKvxc64Candidates};

constexpr bool TablesAreInIdOrder() {
    for (std::uint32_t id = 0; id < kCompilerCount; ++id)
        if (g_profiles[id].id != id || g_compilers[id].id != id) return false;
    return true;
}
static_assert(TablesAreInIdOrder(), "the tables are indexed by id");

bool ContainsAny(std::wstring_view path, std::initializer_list<std::wstring_view> markers) {
    for (const std::wstring_view marker : markers)
        if (path.find(marker) != std::wstring_view::npos) return true;
    return false;
}

struct ExtensionOwner {
    std::wstring_view extension;
    std::uint32_t id;
};
constexpr ExtensionOwner kExtensionOwners[] = {
    {L".kb", kCompilerKeldorBasic}, {L".ka32", kCompilerKvxa32}, {L".kxc", kCompilerKvxc64},
    {L".c64", kCompilerKvxc64},     {L".kxa", kCompilerKvxa64},  {L".kxb", kCompilerKvxb64},
    {L".b64", kCompilerKvxb64},     {L".c", kCompilerKvxb64},    {L".h", kCompilerKvxb64},
};
constexpr std::wstring_view kGenericBasic[] = {L".bas", L".pb", L".pbi", L".pba", L".inc"};

}  // namespace

const CompilerProfile& Profile(std::uint32_t id) { return g_profiles[id < kCompilerCount ? id : 0]; }

const CompilerMenuEntry& CompilerEntry(std::uint32_t id) { return g_compilers[id < kCompilerCount ? id : 0]; }

const CompilerMenuEntry* CompilerEntryByCommand(int command) {
    for (const CompilerMenuEntry& entry : g_compilers)
        if (entry.command == command) return &entry;
    return nullptr;
}

std::span<const CompilerCandidate> CompilerCandidates(std::uint32_t id) {
    return id < kCompilerCount ? kCandidates[id] : std::span<const CompilerCandidate>{};
}

std::uint32_t CompilerNext(std::uint32_t id) { return id < kCompilerCount ? (id + 1) % kCompilerCount : 0; }

// The markers are plain substrings of the whole path, case-sensitive: a folder named LIB64 counts.
std::uint32_t PickCompilerForFile(std::wstring_view path, std::uint32_t activeCompiler, const CompilerProbe& exists) {
    const std::size_t dot = path.rfind(L'.');
    if (dot == std::wstring_view::npos) return kCompilerKeldorBasic;
    if (ContainsAny(path, {L"KVXA64", L"kvxa64", L"KXA64", L"kxa64"}))
        return !exists(kCompilerKvxa64) && exists(kCompilerKvxb64) ? kCompilerKvxb64 : kCompilerKvxa64;
    if (ContainsAny(path, {L"KVXB64", L"kvxb64", L"B64", L"b64"}))
        return exists(kCompilerKvxb64) ? kCompilerKvxb64 : kCompilerKvxa64;
    if (ContainsAny(path, {L"KVXA32", L"kvxa32", L"KA32", L"ka32"})) return kCompilerKvxa32;
    if (ContainsAny(path, {L"KeldorBasic", L"keldorbasic"})) return kCompilerKeldorBasic;
    if (ContainsAny(path, {L"KVXC64", L"kvxc64", L"KXC64", L"kxc64"})) return kCompilerKvxc64;
    const std::wstring_view extension = path.substr(dot);
    for (const ExtensionOwner& owner : kExtensionOwners)
        if (PathEqualsIgnoreCase(extension, owner.extension)) return owner.id;
    for (const std::wstring_view generic : kGenericBasic) {
        if (PathEqualsIgnoreCase(extension, generic)) {
            for (const std::uint32_t id : g_defaultOrder)
                if (exists(id)) return id;
            return kCompilerKeldorBasic;
        }
    }
    return activeCompiler;
}

void CompilerMakeOutputPath(const wchar_t* source, wchar_t* out, std::size_t capacity) {
    wchar_t directory[kPathCapacity] = {};
    wchar_t name[kLabelCapacity] = {};
    PathGetDir(source, directory, kPathCapacity);
    PathGetFile(source, name, kLabelCapacity);
    const std::wstring_view whole = name;
    const std::wstring executable = std::wstring{whole.substr(0, whole.rfind(L'.'))} + L".exe";
    if (directory[0] == L'\0')
        SafeCopyW(out, capacity, executable);  // a bare name stays one: joined, it would move to the drive's root
    else
        PathJoin(directory, executable.c_str(), out, capacity);
}

void CompilerMakeAsmPath(const wchar_t* source, wchar_t* out, std::size_t capacity) {
    const std::wstring_view whole = source;
    const std::size_t dot = whole.rfind(L'.');
    std::wstring listing{whole.substr(0, dot)};
    if (dot != std::wstring_view::npos) listing += L".asm";
    SafeCopyW(out, capacity, listing);
}
