// A whole executable's code as text, piece by piece: names and labels, source lines between, the part around one source
// line first. Pure; any bytes are legal input. A renderer belongs to one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

// Where the code of a source line begins.
struct DisasmLine {
    std::uint32_t rva = 0;
    std::uint32_t fileId = 0;
    std::uint32_t line = 0;  // from 1; 0: of no source
};

struct DisasmSource {
    std::uint32_t fileId = 0;
    std::string name;  // shown before the line's number; empty for the main source
    std::string text;  // UTF-8, any line ends; empty: unknown
};

struct DisasmProgram {
    std::vector<std::uint8_t> file;
    std::vector<DisasmLine> lines = {};  // in any order, may be empty
    std::vector<DisasmSource> sources = {};
    std::uint32_t focusFile = 0;  // the part around this line comes first, if it has code
    std::uint32_t focusLine = 0;  // 0: none
};

struct DisasmRenderer;
struct DisasmRendererDeleter {
    void operator()(DisasmRenderer* renderer) const;
};
using DisasmRendererPtr = std::unique_ptr<DisasmRenderer, DisasmRendererDeleter>;

DisasmRendererPtr DisasmRendererNew(DisasmProgram program);
// Appends the next lines, each ending in "\r\n", as UTF-8 without control characters. Does the work of about `budget`
// instructions (1 us each or less), which need not give text: labels are gathered first. A file whose code cannot be
// shown gives one line in parentheses that says why. False: that was the last.
bool DisasmRenderNext(DisasmRenderer& renderer, std::size_t budget, std::string* out);

// The text began with the part around the focus. Known from the first text on.
bool DisasmBeganAtFocus(const DisasmRenderer& renderer);

// Name of the procedure that a line of BASIC begins ("FUNCTION Square (BYVAL x AS LONG)": Square), or empty.
std::string DisasmProcedureName(std::string_view line);
