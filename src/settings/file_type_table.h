// The table of source file types: the language that colours them, the compiler they belong to, the filters of the file
// dialogs that name them, and what a build and the shell do with them. Every other list of extensions is derived from
// it. Pure, constant; any thread.
#pragma once

#include "settings/compiler_id.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

enum class Language : std::uint8_t { Basic, C, Assembly, GnuAssembly, None };

// Values of FileType::compiler that are not ids of compilers.
inline constexpr std::uint32_t kAnyBasicCompiler = 100;  // the first installed compiler in the order of preference
inline constexpr std::uint32_t kActiveCompiler = 101;    // the compiler that the settings name as the active one

// What the start-up registration writes for a type when its compiler is to be registered.
enum class ShellEntry : std::uint8_t {
    None,
    Key,       // the key of the extension only
    OpenWith,  // also the editor in its "Open with" list
};

struct FileType {
    std::wstring_view extension;  // in lower case, with its dot
    Language language = Language::None;
    std::uint32_t compiler = kActiveCompiler;  // CompilerId, or one of the two values above
    std::uint32_t dialogGroups = 0;            // bits of the filters that name the type; 0: none
    bool inBatchBuild = false;                 // IDM_BUILD_ALL builds it
    std::wstring_view stagedAs;                // extension of the copy that is compiled; empty: the source itself is
    ShellEntry shell = ShellEntry::None;
};

// Bits of `dialogGroups`. Bit n is the filter of compiler n.
inline constexpr std::uint32_t kDialogC = 1u << 30;
inline constexpr std::uint32_t kDialogAssembly = 1u << 31;

std::span<const FileType> FileTypes();

// The row of an extension with its dot, or of a path's extension, without regard to case. Null when it is not that of a
// source file.
const FileType* FileTypeOfExtension(std::wstring_view extension);
const FileType* FileTypeOfPath(std::wstring_view path);

// The first type that belongs to this compiler alone: the one that FileExtRegisterCompiler registers. Null for an
// unknown id.
const FileType* OwnFileType(std::uint32_t compiler);

// A line of the filter list in a file dialog.
struct FileTypeFilter {
    std::wstring description;
    std::wstring pattern;
};
// "All Source Files" comes first and "All Files" last. A compiler whose filter has no types is left out.
std::vector<FileTypeFilter> FileDialogFilters();
