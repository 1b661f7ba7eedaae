// Unwinding by the tables of 64-bit modules. Must not know a process.
#include "debugger/unwind.h"

#include <algorithm>
#include <array>
#include <vector>

namespace {

constexpr std::size_t kSearchedStack = 8192;  // bytes that are searched for a return address
constexpr int kMostUnwound = 64;              // frames of libraries
constexpr int kMostChained = 32;              // records of one procedure
constexpr std::uint64_t kWord = 8;

template <typename Value>
bool ReadValue(const ProgramMemory& memory, std::uint64_t address, Value* out) {
    return memory.read(address, out, sizeof(*out));
}

struct ProcedureRecord {
    std::uint32_t begin = 0, end = 0, info = 0;  // RVAs; `info` is that of its unwind information
};

struct ProcedureTable {
    std::uint64_t base = 0;  // of the module
    std::uint64_t address = 0;
    std::uint32_t count = 0;  // 0: no table
};

ProcedureTable TableOfModule(std::uint64_t base, const ProgramMemory& memory) {
    constexpr std::uint64_t kHeaderField = 60, kMagic = 24, kDirectory = 160;
    constexpr std::uint16_t kPe32Plus = 0x20B;
    std::uint32_t header = 0;
    std::uint16_t magic = 0;
    std::array<std::uint32_t, 2> directory = {};  // RVA and size
    if (base == 0 || !ReadValue(memory, base + kHeaderField, &header)) return {};
    if (!ReadValue(memory, base + header + kMagic, &magic) || magic != kPe32Plus) return {};
    if (!ReadValue(memory, base + header + kDirectory, &directory)) return {};
    return {.base = base,
            .address = base + directory[0],
            .count = static_cast<std::uint32_t>(directory[1] / sizeof(ProcedureRecord))};
}

// The records ascend by address. Nothing: no procedure of the table has the code, as with one that keeps no register and
// calls nothing.
std::optional<ProcedureRecord> FindProcedure(const ProcedureTable& table, std::uint32_t rva,
                                             const ProgramMemory& memory) {
    std::uint32_t low = 0;
    std::uint32_t high = table.count;
    while (low < high) {
        const std::uint32_t middle = low + (high - low) / 2;
        ProcedureRecord record;
        if (!ReadValue(memory, table.address + std::uint64_t{middle} * sizeof(record), &record)) return std::nullopt;
        if (rva >= record.begin && rva < record.end) return record;
        if (rva < record.begin)
            high = middle;
        else
            low = middle + 1;
    }
    return std::nullopt;
}

// A register by its number in machine code, which counts in another order than `general`.
std::uint64_t& RegisterOfCode(RegisterSet* frame, std::size_t number) {
    constexpr std::array<std::uint8_t, 8> kPlaces = {0, 2, 3, 1, kSp, kBp, 4, 5};
    return frame->general[number < kPlaces.size() ? kPlaces[number] : number];
}

bool Pop(RegisterSet* frame, std::uint64_t* out, const ProgramMemory& memory) {
    if (!ReadValue(memory, frame->general[kSp], out)) return false;
    frame->general[kSp] += kWord;
    return true;
}

// --- The unwind information of one procedure

enum UnwindOperation : std::uint8_t {
    kPush = 0,
    kAllocateLarge = 1,
    kAllocateSmall = 2,
    kSetFramePointer = 3,
    kSave = 4,
    kSaveFar = 5,
    kEpilogue = 6,
    kSaveXmm = 8,
    kSaveXmmFar = 9,
    kMachineFrame = 10,
};

struct UnwindInfo {
    std::uint8_t flags = 0;
    std::uint8_t prologueSize = 0;
    std::uint8_t frameRegister = 0;  // 0: none
    std::uint64_t frameOffset = 0;   // from the stack pointer of the prologue
    std::vector<std::uint16_t> slots;
    std::optional<ProcedureRecord> chained;
};

std::optional<UnwindInfo> ReadInfo(std::uint64_t address, const ProgramMemory& memory) {
    constexpr std::uint8_t kChained = 4;
    std::array<std::uint8_t, 4> header = {};
    if (!ReadValue(memory, address, &header)) return std::nullopt;
    UnwindInfo info = {.flags = static_cast<std::uint8_t>(header[0] >> 3),
                       .prologueSize = header[1],
                       .frameRegister = static_cast<std::uint8_t>(header[3] & 0x0F),
                       .frameOffset = std::uint64_t{header[3]} >> 4 << 4,
                       .slots = std::vector<std::uint16_t>(header[2]),
                       .chained = {}};
    const std::uint64_t slotsAt = address + header.size();
    const std::size_t bytes = info.slots.size() * sizeof(std::uint16_t);
    if (!info.slots.empty() && !memory.read(slotsAt, info.slots.data(), bytes)) return std::nullopt;
    if ((info.flags & kChained) != 0) {
        ProcedureRecord record;
        const std::uint64_t evenSlots = (std::uint64_t{header[2]} + 1) & ~std::uint64_t{1};
        if (!ReadValue(memory, slotsAt + evenSlots * sizeof(std::uint16_t), &record)) return std::nullopt;
        info.chained = record;
    }
    return info;
}

// Slots that an operation takes, itself included.
std::size_t SlotsOf(std::uint8_t operation, std::uint8_t argument) {
    switch (operation) {
        case kAllocateLarge: return argument == 0 ? 2 : 3;
        case kSave:
        case kSaveXmm: return 2;
        case kSaveFar:
        case kSaveXmmFar: return 3;
        default: return 1;
    }
}

// The value in the slots behind an operation; a single one counts units of `unit` bytes.
std::uint64_t SlotValue(const UnwindInfo& info, std::size_t at, std::size_t slots, std::uint64_t unit) {
    if (slots == 2) return info.slots[at + 1] * unit;
    return info.slots[at + 1] | std::uint64_t{info.slots[at + 2]} << 16;
}

// What one operation undoes. `*returned`: the instruction pointer is set already.
bool UndoOperation(const UnwindInfo& info, std::size_t at, std::uint64_t saved, RegisterSet* frame,
                   const ProgramMemory& memory, bool* returned) {
    const auto operation = static_cast<std::uint8_t>(info.slots[at] >> 8 & 0x0F);
    const auto argument = static_cast<std::uint8_t>(info.slots[at] >> 12);
    const std::size_t slots = SlotsOf(operation, argument);
    std::uint64_t& sp = frame->general[kSp];
    switch (operation) {
        case kPush: return Pop(frame, &RegisterOfCode(frame, argument), memory);
        case kAllocateLarge: sp += SlotValue(info, at, slots, kWord); return true;
        case kAllocateSmall: sp += (std::uint64_t{argument} + 1) * kWord; return true;
        case kSetFramePointer: sp = RegisterOfCode(frame, info.frameRegister) - info.frameOffset; return true;
        case kSave:
        case kSaveFar:
            return ReadValue(memory, saved + SlotValue(info, at, slots, kWord), &RegisterOfCode(frame, argument));
        case kMachineFrame: {  // the processor has stored where an exception came from, perhaps below an error code
            const std::uint64_t from = sp + (argument != 0 ? kWord : 0);
            *returned = ReadValue(memory, from, &frame->ip) && ReadValue(memory, from + 3 * kWord, &sp);
            return *returned;
        }
        default: return true;
    }
}

// Undoes what the procedure had done to the stack before `done`, an offset from its begin.
bool UndoPrologue(const UnwindInfo& info, std::uint32_t done, RegisterSet* frame, const ProgramMemory& memory,
                  bool* returned) {
    const std::uint64_t saved =
        info.frameRegister != 0 ? RegisterOfCode(frame, info.frameRegister) - info.frameOffset : frame->general[kSp];
    for (std::size_t at = 0; at < info.slots.size();) {
        const auto operation = static_cast<std::uint8_t>(info.slots[at] >> 8 & 0x0F);
        const std::size_t slots = SlotsOf(operation, static_cast<std::uint8_t>(info.slots[at] >> 12));
        if (at + slots > info.slots.size()) return false;
        const bool isDone = operation != kEpilogue && (info.slots[at] & 0xFFU) <= done;
        if (isDone && !UndoOperation(info, at, saved, frame, memory, returned)) return false;
        at += slots;
    }
    return true;
}

// --- The end of a procedure: ADD RSP, then POPs, then RET. What it still has to do tells the caller.

std::optional<RegisterSet> RunEpilogue(RegisterSet frame, const ProgramMemory& memory) {
    std::array<std::uint8_t, 32> code = {};
    const std::size_t count = memory.readSome(frame.ip, code.data(), code.size());
    std::size_t at = 0;
    const auto byte = [&](std::size_t ahead) { return at + ahead < count ? code[at + ahead] : std::uint8_t{0}; };
    constexpr std::uint8_t kWide = 0x48, kAddByte = 0x83, kAdd = 0x81, kToSp = 0xC4;
    if (byte(0) == kWide && byte(1) == kAddByte && byte(2) == kToSp) {
        frame.general[kSp] += byte(3);
        at += 4;
    } else if (byte(0) == kWide && byte(1) == kAdd && byte(2) == kToSp) {
        frame.general[kSp] += byte(3) | std::uint64_t{byte(4)} << 8 | std::uint64_t{byte(5)} << 16;
        at += 7;
    }
    for (;;) {
        const bool high = byte(0) == 0x41;  // R8 to R15
        const std::uint8_t opcode = byte(high ? 1 : 0);
        if (opcode < 0x58 || opcode > 0x5F) break;
        if (!Pop(&frame, &RegisterOfCode(&frame, opcode - 0x58U + (high ? 8U : 0U)), memory)) return std::nullopt;
        at += high ? 2 : 1;
    }
    const bool returns = byte(0) == 0xC3 || byte(0) == 0xC2 || (byte(0) == 0xF3 && byte(1) == 0xC3);
    if (!returns || !Pop(&frame, &frame.ip, memory)) return std::nullopt;
    return frame;
}

std::optional<RegisterSet> UnwindInTable(const RegisterSet& frame, const ProcedureTable& table,
                                         const ProgramMemory& memory) {
    RegisterSet caller = frame;
    const auto rva = static_cast<std::uint32_t>(frame.ip - table.base);
    std::optional<ProcedureRecord> record = FindProcedure(table, rva, memory);
    bool returned = false;
    for (int i = 0; record && i < kMostChained; ++i) {
        const auto info = ReadInfo(table.base + (record->info & ~std::uint32_t{3}), memory);
        if (!info) return std::nullopt;
        const std::uint32_t into = rva - record->begin;
        const bool inPrologue = i == 0 && into < info->prologueSize;
        if (i == 0 && !inPrologue)
            if (const auto ended = RunEpilogue(frame, memory)) return ended;
        if (!UndoPrologue(*info, inPrologue ? into : 0xFF, &caller, memory, &returned)) return std::nullopt;
        if (returned) return caller;
        record = info->chained;
    }
    return Pop(&caller, &caller.ip, memory) ? std::optional(caller) : std::nullopt;
}

// --- The way to the program

struct Unwound {
    RegisterSet frame;
    bool onLine = false;
    bool ended = false;  // the stack ends there: no caller is on a line
};

// Unwinds to the first frame on a line, or to where the tables end: code of the program without tables. Nothing when the
// way leads out of all modules, because then some step of it was wrong.
std::optional<Unwound> UnwindLibraries(const RegisterSet& registers, const ProgramMemory& memory,
                                       const std::function<bool(std::uint64_t)>& hasLine) {
    if (!registers.x64 || memory.moduleBase == nullptr) return std::nullopt;
    RegisterSet frame = registers;
    for (int i = 0; i < kMostUnwound; ++i) {
        if (i > 0 && hasLine(frame.ip - 1)) return Unwound{.frame = frame, .onLine = true};
        if (i > 0 && frame.ip == 0) return Unwound{.frame = frame, .ended = true};
        const std::uint64_t base = memory.moduleBase(frame.ip);
        if (base == 0) return std::nullopt;
        const ProcedureTable table = TableOfModule(base, memory);
        if (table.count == 0) return Unwound{.frame = frame, .onLine = false};
        const auto caller = UnwindInTable(frame, table, memory);
        if (!caller || caller->general[kSp] <= frame.general[kSp]) return std::nullopt;
        frame = *caller;
    }
    return std::nullopt;
}

}  // namespace

std::optional<NearestReturn> NearestReturnToLine(const RegisterSet& registers, const ProgramMemory& memory,
                                                 const std::function<bool(std::uint64_t)>& hasLine) {
    const std::uint64_t sp = registers.general[kSp];
    const auto unwound = UnwindLibraries(registers, memory, hasLine);
    if (unwound && unwound->onLine)
        return NearestReturn{.address = unwound->frame.ip,
                             .offset = unwound->frame.general[kSp] - sp - kWord,
                             .framePointer = unwound->frame.general[kBp]};
    if (unwound && unwound->ended) return std::nullopt;
    const std::uint64_t from = unwound ? unwound->frame.general[kSp] : sp;
    std::vector<std::uint8_t> stack(kSearchedStack);
    stack.resize(memory.readSome(from, stack.data(), stack.size()));
    const auto found = FindReturnAddress(stack, registers.x64 ? kWord : kWord / 2, [&](std::uint64_t address) {
        std::array<std::uint8_t, kLongestCall> before = {};
        return hasLine(address - 1) && ReadValue(memory, address - kLongestCall, &before) && EndsWithCall(before);
    });
    if (!found) return std::nullopt;
    return NearestReturn{.address = found->value, .offset = from - sp + found->offset, .framePointer = {}};
}
