#include "settings/file_type_table.h"

#include "base/path.h"
#include "base/texts.h"
#include "settings/compilers.h"

#include <algorithm>

namespace {

using enum Language;

constexpr std::uint32_t FilterBit(std::uint32_t compiler) { return 1u << compiler; }

constexpr FileType kTypes[] = {
    {.extension = L".bas",
     .language = Basic,
     .compiler = kAnyBasicCompiler,
     .dialogGroups = FilterBit(kCompilerKeldorBasic) | FilterBit(kCompilerKvxa32) | FilterBit(kCompilerKvxa64),
     .inBatchBuild = true},
    {.extension = L".pb",
     .language = Basic,
     .compiler = kAnyBasicCompiler,
     .dialogGroups = FilterBit(kCompilerKeldorBasic) | FilterBit(kCompilerKvxa64)},
    {.extension = L".pbi",
     .language = Basic,
     .compiler = kAnyBasicCompiler,
     .dialogGroups = FilterBit(kCompilerKeldorBasic)},
    {.extension = L".inc",
     .language = Basic,
     .compiler = kAnyBasicCompiler,
     .dialogGroups = FilterBit(kCompilerKeldorBasic)},
    {.extension = L".kb",
     .language = Basic,
     .compiler = kCompilerKeldorBasic,
     .dialogGroups = FilterBit(kCompilerKeldorBasic)},
    {.extension = L".ka32",
     .language = Basic,
     .compiler = kCompilerKvxa32,
     .dialogGroups = FilterBit(kCompilerKvxa32),
     .inBatchBuild = true,
     .stagedAs = L".bas"},
    {.extension = L".kxa",
     .language = Basic,
     .compiler = kCompilerKvxa64,
     .dialogGroups = FilterBit(kCompilerKvxa64),
     .inBatchBuild = true,
     .stagedAs = L".pb",
     .shell = ShellEntry::OpenWith},
    {.extension = L".kxb",
     .language = Basic,
     .compiler = kCompilerKvxb64,
     .dialogGroups = FilterBit(kCompilerKvxb64),
     .shell = ShellEntry::OpenWith},
    {.extension = L".b64",
     .language = Basic,
     .compiler = kCompilerKvxb64,
     .dialogGroups = FilterBit(kCompilerKvxb64),
     .inBatchBuild = true,
     .shell = ShellEntry::OpenWith},
    {.extension = L".c",
     .language = C,
     .compiler = kCompilerKvxb64,
     .dialogGroups = kDialogC,
     .shell = ShellEntry::Key},
    {.extension = L".h",
     .language = C,
     .compiler = kCompilerKvxb64,
     .dialogGroups = kDialogC,
     .shell = ShellEntry::Key},
    {.extension = L".asm", .language = Assembly, .dialogGroups = kDialogAssembly},
    {.extension = L".s", .language = GnuAssembly, .dialogGroups = kDialogAssembly},
    // The filters of the file dialogs do not name the types below.
    {.extension = L".pba", .language = Basic, .compiler = kAnyBasicCompiler},
    {.extension = L".kxc", .language = Basic, .compiler = kCompilerKvxc64},
    {.extension = L".c64", .language = Basic, .compiler = kCompilerKvxc64},
    {.extension = L".bi", .language = Basic},
    {.extension = L".cpp", .language = C},
    {.extension = L".hpp", .language = C},
    {.extension = L".cc", .language = C},
    {.extension = L".cxx", .language = C},
};

void AddFilter(std::vector<FileTypeFilter>& filters, std::wstring_view name, std::uint32_t groups) {
    std::wstring pattern;
    for (const FileType& type : kTypes)
        if ((type.dialogGroups & groups) != 0) pattern.append(pattern.empty() ? L"*" : L";*").append(type.extension);
    if (!pattern.empty()) filters.push_back({std::wstring(name) + L" (" + pattern + L")", pattern});
}

}  // namespace

std::span<const FileType> FileTypes() { return kTypes; }

const FileType* FileTypeOfExtension(std::wstring_view extension) {
    const auto* type = std::ranges::find_if(
        kTypes, [extension](const FileType& row) { return PathEqualsIgnoreCase(row.extension, extension); });
    return type == std::end(kTypes) ? nullptr : type;
}

const FileType* FileTypeOfPath(std::wstring_view path) { return FileTypeOfExtension(FileExtension(path)); }

const FileType* OwnFileType(std::uint32_t compiler) {
    const auto* type = std::ranges::find(kTypes, compiler, &FileType::compiler);
    return compiler >= kCompilerCount || type == std::end(kTypes) ? nullptr : type;
}

std::vector<FileTypeFilter> FileDialogFilters() {
    std::vector<FileTypeFilter> filters;
    AddFilter(filters, Text(L"All Source Files"), ~0u);
    for (const std::uint32_t id : g_defaultOrder) AddFilter(filters, g_compilers[id].name, FilterBit(id));
    AddFilter(filters, L"C/C++", kDialogC);
    AddFilter(filters, Text(L"Assembly"), kDialogAssembly);
    filters.push_back({Text(L"All Files (*.*)"), L"*.*"});
    return filters;
}
