// The line maps that debuggers read: the .sdbg section, and for trapped programs the statement lines and the .pbd file.
#pragma once

#include "codegen.h"

namespace standin {

// Lines of PBMAIN that a .pbd reader counts as statements, 1-based, in order: from the line after the heading to END
// FUNCTION or END SUB inclusive, without comments, blank lines, '#' in the first column, and lone ELSE and END IF.
std::vector<int> StatementLinesOfMain(std::string_view source);

// Returns the bytes of the section. Records have ascending addresses; `textRva` is added to each offset.
std::vector<uint8_t> BuildSdbg(const Generator& g, uint32_t textRva);

// Returns the bytes of the .pbd file, which README.md describes.
std::string BuildPbd(uint32_t mainAddress);

}  // namespace standin
