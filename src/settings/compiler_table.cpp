// The rules on the table of compilers. They use neither the settings nor the disk. Pure; any thread.
#include "settings/compiler_table.h"

#include "base/bounded_text.h"
#include "base/path.h"
#include "base/texts.h"
#include "settings/file_type_table.h"

#include <algorithm>

namespace {

bool HasMarker(const CompilerProfile& compiler, std::wstring_view path) {
    return std::ranges::any_of(
        compiler.pathMarkers,
        [path](std::wstring_view marker) { return !marker.empty() && path.find(marker) != std::wstring_view::npos; });
}

std::uint32_t OrSubstitute(const CompilerProfile& compiler, const CompilerProbe& exists) {
    const CompilerSubstitute& other = compiler.substitute;
    if (other.id == compiler.id || exists(compiler.id)) return compiler.id;
    return other.evenWhenNotInstalled || exists(other.id) ? other.id : compiler.id;
}

}  // namespace

const CompilerProfile& Profile(std::uint32_t id) { return g_compilers[id < kCompilerCount ? id : 0]; }

const CompilerProfile* CompilerOfCommand(int command) {
    const auto* row = std::ranges::find(g_compilers, command, &CompilerProfile::command);
    return row == std::end(g_compilers) ? nullptr : row;
}

std::wstring CompilerLabel(std::uint32_t id, bool installed) {
    return std::wstring(Profile(id).name) + (installed ? L"" : Text(L" (not found)"));
}

std::uint32_t CompilerNext(std::uint32_t id) { return id < kCompilerCount ? (id + 1) % kCompilerCount : 0; }

std::uint32_t CompilerNextInstalled(std::uint32_t id, const CompilerProbe& exists) {
    std::uint32_t next = id;
    for (std::uint32_t step = 0; step < kCompilerCount; ++step)
        if (next = CompilerNext(next); exists(next)) return next;
    return CompilerNext(id);
}

// The markers may be anywhere in the path: a folder named LIB64 matches.
std::uint32_t PickCompilerForFile(std::wstring_view path, std::uint32_t activeCompiler, const CompilerProbe& exists) {
    const std::size_t dot = path.rfind(L'.');
    if (dot == std::wstring_view::npos) return kDefaultCompiler;
    for (const CompilerProfile& compiler : g_compilers)
        if (HasMarker(compiler, path)) return OrSubstitute(compiler, exists);
    const FileType* type = FileTypeOfExtension(path.substr(dot));
    if (type == nullptr || type->compiler == kActiveCompiler) return activeCompiler;
    if (type->compiler != kAnyBasicCompiler) return type->compiler;
    const auto found = std::ranges::find_if(g_defaultOrder, exists);
    return found == std::end(g_defaultOrder) ? kDefaultCompiler : *found;
}

std::wstring FindCompiler(std::uint32_t id, const wchar_t* exeDirectory,
                          const std::function<bool(const wchar_t* path)>& fileExists) {
    if (id >= kCompilerCount) return {};
    for (const CompilerCandidate& candidate : g_compilers[id].candidates) {
        wchar_t path[kPathCapacity] = {};
        PathJoin(exeDirectory, (std::wstring{candidate.directory} + L'\\' + candidate.file).c_str(), path,
                 kPathCapacity);
        if (fileExists(path)) return path;
    }
    return {};
}

void CompilerMakeOutputPath(const wchar_t* source, wchar_t* out, std::size_t capacity) {
    wchar_t directory[kPathCapacity] = {};
    wchar_t name[kLabelCapacity] = {};
    PathGetDir(source, directory, kPathCapacity);
    PathGetFile(source, name, kLabelCapacity);
    const std::wstring_view whole = name;
    const std::wstring executable = std::wstring{whole.substr(0, whole.rfind(L'.'))} + L".exe";
    if (directory[0] == L'\0')
        SafeCopyW(out, capacity, executable);  // PathJoin would move a bare name to the root of the drive
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
