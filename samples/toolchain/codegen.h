// Generates machine code for x86 and x64 from the tree. The value of an expression is in the accumulator:
//   LONG in eax, QUAD in rax (x64) or edx:eax (x86), DOUBLE in xmm0, addresses in cx.
// The left side of an operation is on the stack while the right side is computed. bx always holds the address of the
// data section, bp that of the frame. The caller pushes arguments from left to right and removes them; a result is in
// the accumulator. An array is a count (8 bytes, the low 4 used) followed by its elements.
#pragma once

#include "ast.h"
#include "encoder.h"
#include "profile.h"

#include <array>

namespace standin {

// The input of the linker (pe_writer.h).
struct Image {
    bool x64 = true;
    std::vector<uint8_t> text;
    std::vector<uint8_t> data;              // initialised part
    uint32_t dataSize = 0;                  // with the zeroed part after it
    std::vector<uint32_t> dataRvaFixups;    // offsets in data of 32-bit values to which the section's RVA is added
    uint32_t imports = 0, importsSize = 0;  // import directory, offset in data
    uint32_t addressTable = 0, addressTableSize = 0;
    uint32_t dataBaseAt = 0;    // offset in text of the 32-bit field that refers to the data section
    std::vector<uint8_t> sdbg;  // line map section, may be empty
};

// The place where the code of a statement starts.
struct LineRecord {
    uint32_t offset;  // in text
    Pos pos;          // line 0: the following code has no line
};

enum class Import : uint8_t { GetStdHandle, WriteFile, ExitProcess, Sleep, AddHandler, Sprintf, Pow, Floor, Count };

// Cells of the data section that the runtime routines use.
struct RuntimeCells {
    uint32_t outBuffer, outLength, column, handle, written, exitCode, stackLimit, number, left, right, errorLine,
        controlWord, truncate, longFormat, quadFormat, realFormat;
    std::array<uint32_t, 3> errorTexts;
};

// Labels of the runtime routines.
struct RuntimeLabels {
    int flush, putChar, putText, newLine, nextZone, printLong, printQuad, printReal, divide, remainder, divideQuad,
        remainderQuad, badIndex, noStack, power, floor, sleep;
};

struct Generator {
    const Profile& profile;
    const Sources& sources;
    Program& program;
    bool debug = false;
    Encoder e{};
    Image image{};
    std::array<uint32_t, static_cast<size_t>(Import::Count)> importSlots{};
    RuntimeCells cells{};
    RuntimeLabels run{};
    std::vector<uint32_t> stringOffsets{};
    std::vector<LineRecord> records{};

    Procedure* procedure = nullptr;
    int returnLabel = -1;
    std::vector<int> forExits{}, doExits{};
    std::vector<int> trapLines{};  // .pbd: lines of PBMAIN that get a trap, ascending; used up from nextTrap on
    size_t nextTrap = 0;
    uint32_t mainOffset = 0;
};

inline constexpr uint32_t kOutBufferSize = 4096;
inline constexpr uint32_t kStackReserve = 4u << 20;

// Generates everything from the entry stub to the last procedure. `g` holds profile, sources, program, debug and
// e.listing.
void GenerateProgram(Generator& g);

// codegen_expr.cpp
void GenerateExpr(Generator& g, const Expr& expr);  // value into the accumulator
void GenerateStore(Generator& g, const Expr& target, const Expr& value);
void GenerateJumpIfFalse(Generator& g, const Expr& condition, int label);
void GenerateCall(Generator& g, const Expr& call);
void StoreTo(Generator& g, Type type, Mem mem);  // accumulator to memory
Mem MemOf(Generator& g, const Symbol& symbol);   // may load cx

// runtime.cpp
void PlaceRuntimeData(Generator& g);
uint32_t PlaceData(Generator& g, std::string_view bytes);  // initialised
uint32_t PlaceZeroes(Generator& g, int64_t bytes);         // after all initialised data
void EmitStart(Generator& g);                              // the entry point, at offset 0
void EmitRuntime(Generator& g);

}  // namespace standin
