// Which instructions the disassembly view shows around an address. Pure.
#pragma once

#include "disasm/disasm.h"
#include "ui/list_rows.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

inline constexpr std::size_t kInstructionsBefore = 60;
inline constexpr std::size_t kInstructionsShown = 200;
inline constexpr std::size_t kLongestInstruction = 15;  // bytes

// Instructions of `bytes`, which stand at `address`, with one that begins at `target`. Code cannot be decoded
// backwards, so starts before the target are tried until one leads to it: first those of lines (`lineStarts`,
// ascending), then others. Empty when the target is not within `bytes`.
std::vector<DisasmInstruction> DisasmAround(std::span<const std::uint8_t> bytes, std::uint64_t address,
                                            std::uint64_t target, bool x64, std::span<const std::uint64_t> lineStarts,
                                            const DisasmSymbols& symbols = {});
// A stretch of the program's memory.
struct CodeBytes {
    std::uint64_t address = 0;
    std::vector<std::uint8_t> bytes;
};
// Reads as many of the bytes as can be read from the start, and answers how many.
using CodeReader = std::function<std::size_t(std::uint64_t address, void* out, std::size_t count)>;
// Reads memory around an address. When a part before it is unreadable, starts at the address's page, or at the address
// itself. Empty when nothing can be read there.
CodeBytes ReadCodeAround(std::uint64_t target, const CodeReader& readSome);

// What the rows tell of the program.
struct CodeView {
    struct Place {
        std::uint32_t fileId = 0, line = 0;  // line 0: no source
        bool operator==(const Place&) const = default;
    };
    bool x64 = true;
    std::uint64_t current = 0;  // where the thread stands
    std::function<Place(std::uint64_t address)> placeAt;
    std::function<std::wstring(std::uint32_t fileId, std::uint32_t line)> sourceLine;
    std::function<std::wstring(std::uint64_t address)> placeText;  // of the target of a branch; empty: none
    std::function<bool(std::uint64_t address)> hasBreakpoint;
};
// What a row stands for.
struct CodeRow {
    CodeView::Place place;
    std::uint64_t address = 0;  // of the instruction; 0: a row of source
    std::string variable;       // "rbp-0x4": the place that it uses in the frame of its procedure; empty: none
};
// The place in the frame that an instruction uses, as the user can name it: "rbp-0x4". Empty: none.
std::string FramePlaceOf(std::string_view instruction);
struct CodeRows {
    std::vector<ListRow> rows;
    std::vector<CodeRow> meanings;  // one for each row
    int target = -1;                // the row of the instruction at the target
};
// A row for each instruction, below a row of source where another line begins.
CodeRows RowsOfCode(const CodeBytes& code, const std::vector<DisasmInstruction>& list, std::uint64_t target,
                    const CodeView& view);

// "48 89 E5"; at most six bytes, and ".." when there are more.
std::wstring CodeBytesText(std::span<const std::uint8_t> bytes);
