// The table of source file types: which language colours them, whose sources they are, which of the dialogs' filters offer
// them, and what a build and the shell do with them. Every other list of extensions is derived from it. Pure, constant;
// any thread.
#pragma once

#include "settings/compiler_id.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

enum class Language : std::uint8_t { Basic, C, Assembly, GnuAssembly, None };

// Whose sources a type's files are, beside the ids of the compilers.
inline constexpr std::uint32_t kAnyBasicCompiler = 100;  // the first installed one in the order of preference
inline constexpr std::uint32_t kActiveCompiler = 101;    // the one that the user works with

// What the start-up registration writes for a type, when its compiler is to be registered.
enum class ShellEntry : std::uint8_t {
    None,
    Key,       // the extension's key and nothing more
    OpenWith,  // and the editor in its "Open with" list
};

struct FileType {
    std::wstring_view extension;  // lower case, with its dot
    Language language = Language::None;
    std::uint32_t compiler = kActiveCompiler;  // CompilerId or one of the two above
    std::uint32_t dialogGroups = 0;            // FileDialogGroup bits; 0: the dialogs do not name the type
    bool inBatchBuild = false;                 // a build of all open documents takes it
    std::wstring_view stagedAs;  // the extension that its compiler wants; empty: the source is compiled as it is
    ShellEntry shell = ShellEntry::None;
};

// Bit n: the filter of compiler n.
inline constexpr std::uint32_t kDialogC = 1u << 30;
inline constexpr std::uint32_t kDialogAssembly = 1u << 31;

std::span<const FileType> FileTypes();

// The row of a path's extension (what follows its last dot, dot included), without regard to case. Null: no source file.
const FileType* FileTypeOfExtension(std::wstring_view extension);
const FileType* FileTypeOfPath(std::wstring_view path);

// The first type that is this compiler's own; what registering the compiler registers. Null for an unknown id.
const FileType* OwnFileType(std::uint32_t compiler);

// One line of the file dialogs' list.
struct FileTypeFilter {
    std::wstring description;
    std::wstring pattern;
};
// All sources first, all files last. A compiler without types in the dialogs has no line.
std::vector<FileTypeFilter> FileDialogFilters();
