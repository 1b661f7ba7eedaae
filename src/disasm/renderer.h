// Renders the code of a whole executable as text, piece by piece, with names, labels and source lines. The part around
// one source line comes first. Pure; any bytes are legal input. A renderer belongs to one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

// The start of the code of a source line.
struct DisasmLine {
    std::uint32_t rva = 0;
    std::uint32_t fileId = 0;
    std::uint32_t line = 0;  // from 1; 0: no source line
};

struct DisasmSource {
    std::uint32_t fileId = 0;
    std::string name;  // shown before the line number; empty for the main source
    std::string text;  // UTF-8 with any line breaks; empty: unknown
};

struct DisasmProgram {
    std::vector<std::uint8_t> file;
    std::vector<DisasmLine> lines = {};  // in any order; may be empty
    std::vector<DisasmSource> sources = {};
    std::uint32_t focusFile = 0;  // the part around the focus line comes first, if the line has code
    std::uint32_t focusLine = 0;  // 0: none
    bool bytes = true;            // shown between address and instruction
};

struct DisasmRenderer;
struct DisasmRendererDeleter {
    void operator()(DisasmRenderer* renderer) const;
};
using DisasmRendererPtr = std::unique_ptr<DisasmRenderer, DisasmRendererDeleter>;

DisasmRendererPtr DisasmRendererNew(DisasmProgram program);
// Appends the next lines, each ending in "\r\n", as UTF-8 without control characters. Does the work of about `budget`
// instructions, at most 1 us each. A call may append nothing, because labels are collected first. A file whose code
// cannot be shown gives one line in parentheses that says why. Returns false after the last line.
bool DisasmRenderNext(DisasmRenderer& renderer, std::size_t budget, std::string* out);

// Whether the text began with the part around the focus. Valid after the first text was appended.
bool DisasmBeganAtFocus(const DisasmRenderer& renderer);

// The name of the procedure whose heading is this line of BASIC ("FUNCTION Square (BYVAL x AS LONG)": Square), or
// empty.
std::string DisasmProcedureName(std::string_view line);
