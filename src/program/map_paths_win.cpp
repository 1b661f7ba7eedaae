// The part of map_paths.h that calls Windows: encodings, "..", and whether a copy still exists.
#include "program/map_paths.h"

#include "base/bounded_text.h"
#include "base/decode.h"
#include "base/handles.h"
#include "base/path.h"
#include "files/file_io.h"
#include "files/share_probe.h"

#include <cstring>

std::wstring PathOfMapFile(const char* name, bool first, const MapSource& compiled) {
    if (name == nullptr) return {};
    const HeapBlock<wchar_t> decoded(DecodeCompilerText(name, std::strlen(name)));
    if (!decoded) return {};
    std::wstring path = MapPath(decoded.get(), FolderOf(compiled.source));
    wchar_t whole[kPathCapacity];
    if (PathNormalizeInput(path.c_str(), whole, kPathCapacity)) path = whole;
    if (path.empty() || path.ends_with(L'\\')) return {};
    if (compiled.source.empty()) return path;
    if (!compiled.staged.empty() && PathEqualsIgnoreCase(path, compiled.staged)) return compiled.source;
    // The file of the map's first record is what was compiled. If it no longer exists, it was the copy of the source.
    const bool mayBeCopy = first || LooksLikeCopy(path, compiled.source);
    return mayBeCopy && !(PathAnswers(path.c_str()) && FileExists(path.c_str())) ? compiled.source : path;
}
