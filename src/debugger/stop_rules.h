// What an event of the program means to the session: which exceptions are stops, which line a trap belongs to, what a start
// still waits for, how much a program may report. Pure.
#pragma once

#include "program/sdbg_map.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

inline constexpr std::uint8_t kTrapByte = 0xCC;

// Results of a wait.
enum DebugWait : int { kDebugStopped = 1, kDebugExited = 2, kDebugTimeout = 3, kDebugNoSession = 4 };

// What the program is doing.
enum class DebugRun : std::uint8_t { None, Stopped, Running };

// A pause that the user asks for comes as a trap that is not the program's. When the program stops for another reason
// first, the trap is still to come and means nothing any more.
enum class DebugPause : std::uint8_t { None, Wanted, Overtaken };

// What a start still waits for: the stop at the first line, or the first trap of the program's own that has a line.
enum class DebugAwaits : std::uint8_t { Nothing, FirstLine, FirstTrap };

// --- Exceptions

enum class ExceptionKind : std::uint8_t {
    Breakpoint,
    SingleStep,
    Fault,  // of an instruction that runs again when it is continued as handled, and fails again
    Other,
};
// On some systems, 32-bit programs report breakpoints and single steps by codes of their own.
ExceptionKind ExceptionKindOf(std::uint32_t code);

// A fault that is continued as handled fails again at once, for ever.
struct DebugFaults {
    std::uint64_t address = 0;  // of the exception that was reported last
    std::uint32_t count = 0;    // how often in a row it was reported there
};
inline constexpr std::uint32_t kFaultsInARow = 16;
// Counts an exception other than a breakpoint or a single step. True: the same instruction has failed so often that the
// program is held there; counting starts anew.
bool HoldAtFault(DebugFaults* faults, bool fault, std::uint64_t address);

// --- Places
struct SourcePlace {
    std::uint32_t line = 0;  // 0: none
    std::uint32_t fileId = 0;
};
// Address relative to the image base; false when it is not within 32 bits of it.
bool RvaOf(std::uint64_t address, std::uint64_t imageBase, std::uint32_t* rva);
// Line and file that the map gives for an address.
SourcePlace PlaceOf(const SdbgMap& map, std::uint64_t address);
// The same within the executable's image only, because code of a library has no line, however far it lies after the last
// one of the map. `imageSize` 0: not known.
SourcePlace PlaceInImage(const SdbgMap& map, std::uint32_t imageSize, std::uint64_t address);
// The same for a trap of the program's own: only in the map's text range, tried at the address, before it and after it.
SourcePlace PlaceOfTrap(const SdbgMap& map, std::uint64_t address);

// Where a pause stops. `address` is in the program's own code: where the main thread stands (`standsThere`), or the return
// address of the call that it is in. After a call the next line may begin already; the call still runs, so the place is
// that of the statement that holds it, and the address is the statement's, where steps begin.
struct PausePlace {
    std::uint64_t address = 0;
    SourcePlace place;
};
PausePlace PlaceOfPause(const SdbgMap& map, std::uint32_t imageSize, std::uint64_t address, bool standsThere);

// --- Traps of the program's own
// A run of trap bytes on one statement stops once.
bool IsRepeatedTrap(const SdbgMap& map, SourcePlace place, std::uint64_t address, std::int32_t lastLine,
                    std::uint64_t lastAddress);

// A breakpoint exception at an address where no breakpoint stands.
struct TrapEvent {
    std::uint64_t address = 0;
    bool inImage = false;  // of the executable
    // The bytes before and at the address; nothing: not readable, or not in the image.
    std::optional<std::array<std::uint8_t, 2>> bytes;
    DebugPause pause = DebugPause::None;
    bool runsToUserBreakpoint = false;  // traps of the program's own are no stops until one is reached
    std::int32_t lastLine = 0;          // of the last stop
    std::uint64_t lastAddress = 0;
};
enum class TrapMeaning : std::uint8_t {
    Pause,       // the stop that the user asked for
    PauseLate,   // the same, after the program has stopped for another reason: no stop
    LateHit,     // a breakpoint that another thread hit at the same time, and whose byte is back already: run it again
    PassedOver,  // a trap that this run does not stop at
    Stop,
};
TrapMeaning MeaningOfTrap(const SdbgMap& map, const TrapEvent& trap);

// --- The start
struct StartStop {
    DebugAwaits awaits = DebugAwaits::Nothing;
    std::uint32_t tries = 0;  // resumes of the start
    std::int32_t line = 0;
    // A 32-bit program's own loader may report a second initial breakpoint, outside the program's image.
    bool ofLoader = false;
};
// A stop that the start runs on from.
bool IsFalseStart(const StartStop& stop);
// Milliseconds that a start waits for what it awaits.
std::uint32_t StartWaitMs(DebugAwaits awaits);
// What is said of a start that is over; empty: nothing. `event` is a DebugWait.
std::wstring StartText(DebugAwaits awaits, int event, std::int32_t line);

// --- Reports
// What the program reported between two stops: debug strings and exceptions. A flood of them must not fill the memory.
struct DebugReports {
    std::uint32_t shown = 0;
    std::size_t characters = 0;
    std::uint32_t leftOut = 0;
};
enum class ReportFate : std::uint8_t { Shown, FirstLeftOut, LeftOut };
// Counts a report of that length.
ReportFate TakeReport(DebugReports* reports, std::size_t characters);
