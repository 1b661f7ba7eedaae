// The decisions of steps that follow the program. Must not know a process.
#include "debugger/follow_rules.h"

#include "debugger/unwind.h"

#include <algorithm>
#include <array>

namespace {

using Act = FollowMove::Act;

constexpr std::uint64_t kFlagsRoom = 16;  // bytes that PUSHF may take

bool SamePlace(SourcePlace a, SourcePlace b) { return a.line == b.line && a.fileId == b.fileId; }

std::uint64_t WordBytesOf(const RegisterSet& registers) { return registers.x64 ? 8 : 4; }

FollowMove RunTo(std::uint64_t address, std::uint64_t leastSp, std::uint64_t firstLine = 0) {
    return {.act = Act::Run, .to = {.address = address, .leastSp = leastSp}, .firstLine = firstLine};
}

// Leaves the instruction that the thread stands on.
FollowMove StepFrom(Follow* follow, const FollowView& view) {
    using Kind = StepInstruction::Kind;
    const std::uint64_t after = view.ip + view.instruction.length;
    switch (view.instruction.kind) {
        case Kind::Call:
            follow->called = true;
            follow->after = after;
            follow->callerSp = view.sp;
            break;
        case Kind::Return: follow->returned = true; break;
        case Kind::Repeat: return RunTo(after, view.sp);
        case Kind::PushFlags: return RunTo(after, view.sp - kFlagsRoom);
        case Kind::Plain: break;
    }
    return {.act = Act::Step, .to = {}};
}

// The thread has just entered a procedure.
FollowMove AfterCall(Follow* follow, const FollowView& view) {
    if (follow->kind != FollowKind::Into) return RunTo(follow->after, follow->callerSp);
    if (view.lineBegins && !follow->traps) return {};
    return RunTo(follow->after, follow->callerSp, view.nextLine);
}

FollowMove AfterReturn(Follow* follow, const FollowView& view) {
    if (view.place.line == 0) return {.act = Act::Leave, .to = {}};
    if (!follow->traps || follow->kind == FollowKind::Out) return {};
    follow->returned = false;  // the next statement of the caller is a stop by itself
    return StepFrom(follow, view);
}

FollowMove AtLine(Follow* follow, const FollowView& view) {
    if (view.place.line == 0) return {.act = Act::Leave, .to = {}};
    const bool stops = follow->kind != FollowKind::Out && !follow->traps && !SamePlace(view.place, follow->from);
    return stops ? FollowMove{} : StepFrom(follow, view);
}

}  // namespace

void FollowReadLines(const SdbgMap& map, std::uint32_t imageSize, FollowView* view) {
    view->place = PlaceInImage(map, imageSize, view->ip);
    std::uint32_t rva = 0;
    if (view->place.line == 0 || !RvaOf(view->ip, map.imageBase, &rva)) return;
    const std::int32_t record = SdbgFindRecord(&map, rva);
    view->lineBegins = record >= 0 && map.lines[record].rva == rva;
    const std::int32_t next = SdbgNextStop(&map, rva, 0, 0);
    if (next >= 0) view->nextLine = map.imageBase + map.lines[next].rva;
}

FollowMove FollowBegin(Follow* follow, const FollowView& view) {
    if (follow->kind == FollowKind::None) return {};
    if (follow->kind == FollowKind::Instruction || follow->kind == FollowKind::InstructionOver)
        return StepFrom(follow, view);
    if (view.place.line == 0) {
        follow->returned = true;
        return {.act = Act::Leave, .to = {}};
    }
    if (follow->kind == FollowKind::Out && view.returnsTo) {
        follow->returned = true;
        return RunTo(view.returnsTo->address, view.returnsTo->leastSp);
    }
    return StepFrom(follow, view);
}

FollowMove FollowArrived(Follow* follow, const FollowView& view) {
    if (follow->stopAtNext || follow->kind == FollowKind::Instruction) return {};
    if (follow->called) {
        // A call of the next instruction is no procedure: it only asks for the instruction pointer.
        const bool entered = view.sp < follow->callerSp && view.ip != follow->after;
        if (entered && !follow->running) return AfterCall(follow, view);
        follow->called = false;
        if (entered) return {};  // the first line of the procedure
    }
    if (follow->kind == FollowKind::InstructionOver) return {};
    return follow->returned ? AfterReturn(follow, view) : AtLine(follow, view);
}

std::optional<ReturnPlace> ReturnPlaceOf(const RegisterSet& registers, const MemoryReader& read) {
    const std::uint64_t word = WordBytesOf(registers);
    if (const auto address = ReturnAddressWithoutFrame(registers, read))
        return ReturnPlace{.address = *address, .leastSp = registers.general[kSp] + word};
    const std::uint64_t slot = registers.general[kBp] + word;
    ReturnPlace place = {.address = 0, .leastSp = slot + word};
    std::array<std::uint8_t, kLongestCall> before = {};
    if (!read(slot, &place.address, word) || !read(place.address - before.size(), before.data(), before.size()))
        return std::nullopt;
    return EndsWithCall(before) ? std::optional(place) : std::nullopt;
}

std::optional<ReturnPlace> NearestCaller(const RegisterSet& registers, const ProgramMemory& memory,
                                         const std::function<bool(std::uint64_t)>& hasLine) {
    const auto found = NearestReturnToLine(registers, memory, hasLine);
    if (!found) return std::nullopt;
    return ReturnPlace{.address = found->address,
                       .leastSp = registers.general[kSp] + found->offset + WordBytesOf(registers)};
}
