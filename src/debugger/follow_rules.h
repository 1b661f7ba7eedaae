// Steps that follow the program: what comes after each single step. The process is stepped within the code of a line and
// runs over calls, or into them, to the first line of the procedure. Pure.
#pragma once

#include "debugger/stack_walk.h"
#include "debugger/stop_rules.h"
#include "disasm/step_kind.h"

#include <cstdint>
#include <optional>

enum class FollowKind : std::uint8_t {
    None,
    Over,
    Into,
    Out,
    Instruction,
    InstructionOver,
};

// A step under way. One thread is followed. Frames are told apart by the stack pointer, so a procedure that calls itself
// does not end a step of its caller.
struct Follow {
    FollowKind kind = FollowKind::None;
    std::uint32_t thread = 0;
    SourcePlace from;            // where the step began
    bool traps = false;          // statements begin at traps of the program's own, which are stops by themselves
    bool called = false;         // the last instruction was a call
    std::uint64_t after = 0;     // of that call: the address behind it
    std::uint64_t callerSp = 0;  // of that call: the stack pointer before it
    bool returned = false;       // the last instruction was a return, or the program ran to its caller
    bool stopAtNext = false;     // the user asked for a pause
    // The program runs until it reaches an address of the step with a stack pointer of at least `leastSp`.
    bool running = false;
    std::uint64_t leastSp = 0;
};

// Where the caller goes on, and the least stack pointer there.
struct ReturnPlace {
    std::uint64_t address = 0;
    std::uint64_t leastSp = 0;
};

// The followed thread as it stands.
struct FollowView {
    std::uint64_t ip = 0;
    std::uint64_t sp = 0;
    SourcePlace place;        // line 0: no source
    bool lineBegins = false;  // the code of a line begins at `ip`
    StepInstruction instruction;
    std::uint64_t nextLine = 0;            // where the code of the next line begins, by address; 0: none
    std::optional<ReturnPlace> returnsTo;  // of the present procedure; only a step out looks at it
};

struct FollowMove {
    enum class Act : std::uint8_t {
        Stop,
        Step,   // one instruction
        Run,    // to `to`
        Leave,  // the code has no source: run to the nearest caller that has
    } act = Act::Stop;
    ReturnPlace to;
    std::uint64_t firstLine = 0;  // of Run: a procedure's first line, where it also stops below `to.leastSp`; 0: none
};
// Fills what the line map says about the place where the thread stands. `imageSize` 0: not known.
void FollowReadLines(const SdbgMap& map, std::uint32_t imageSize, FollowView* view);
// The first move of a step of `follow->kind`; `from`, `thread` and `traps` are set. Stop: no step is possible.
FollowMove FollowBegin(Follow* follow, const FollowView& view);
// The next move, after a single step or at the end of a run.
FollowMove FollowArrived(Follow* follow, const FollowView& view);

// Where the procedure at `registers.ip` returns to, by its frame pointer or by the stack before it has one. Nothing when
// the word found there is no address behind a call.
std::optional<ReturnPlace> ReturnPlaceOf(const RegisterSet& registers, const MemoryReader& read);

// The place where the nearest caller that has source goes on (NearestReturnToLine).
std::optional<ReturnPlace> NearestCaller(const RegisterSet& registers, const ProgramMemory& memory,
                                         const std::function<bool(std::uint64_t)>& hasLine);
