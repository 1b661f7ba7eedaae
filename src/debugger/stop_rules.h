// What an event of the program means to the session: which exceptions are stops, which line a trap belongs to, when a
// start is over, how much a program may report. Pure.
#pragma once

#include "program/sdbg_map.h"

#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>

inline constexpr std::uint8_t kTrapByte = 0xCC;

// Results of a wait.
enum DebugWait : int { kDebugStopped = 1, kDebugExited = 2, kDebugTimeout = 3, kDebugNoSession = 4 };

// What the program is doing.
enum class DebugRun : std::uint8_t { None, Stopped, Running };

// A pause that the user asked for arrives as a trap outside the program's image. When the program stops for another
// reason first, the trap still arrives but is no stop any more (Overtaken).
enum class DebugPause : std::uint8_t { None, Wanted, Overtaken };

// What a start still waits for: the stop at the first line, or the first trap of the program's own that has a line.
enum class DebugAwaits : std::uint8_t { Nothing, FirstLine, FirstTrap };

// --- Exceptions

enum class ExceptionKind : std::uint8_t {
    Breakpoint,
    SingleStep,
    Fault,  // DBG_CONTINUE runs the instruction again, which fails again
    Other,
};
// Some systems have codes of their own for breakpoints and single steps of 32-bit programs.
ExceptionKind ExceptionKindOf(std::uint32_t code);

// Faults in a row at one address, because a fault that is continued as handled would repeat without end.
struct DebugFaults {
    std::uint64_t address = 0;  // of the last exception
    std::uint32_t count = 0;    // exceptions in a row at that address
};
inline constexpr std::uint32_t kFaultsInARow = 16;
// Counts an exception other than a breakpoint or a single step; `fault` when its kind is Fault. True: the same
// instruction has failed kFaultsInARow times, and the program is held there; counting starts anew.
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
// The same, but nothing outside the executable's image, because PlaceOf takes the code of a library for the map's last
// line. `imageSize` 0: not known.
SourcePlace PlaceInImage(const SdbgMap& map, std::uint32_t imageSize, std::uint64_t address);
// Place of a trap of the program's own. Looks only in the map's text range: at the address, one byte before it, and one
// and two bytes after it.
SourcePlace PlaceOfTrap(const SdbgMap& map, std::uint64_t address);

// Where a pause stops. `address` is in the program's own code: where the main thread stands (`standsThere`), or the
// return address of the call that it is in. The next line may begin at a return address. Therefore the place is that of
// the statement with the call, and the result's address is where that statement begins.
struct PausePlace {
    std::uint64_t address = 0;
    SourcePlace place;
};
PausePlace PlaceOfPause(const SdbgMap& map, std::uint32_t imageSize, std::uint64_t address, bool standsThere);

// --- Breakpoints that were hit
struct BreakpointHit {
    bool mustStop = false;  // at the line of a start, at the target of a step, or because the thread cannot go on
    bool holds = true;      // its condition
    bool temporary = false;
    std::uint32_t hits = 0;  // before this one
    std::uint32_t stopFrom = 0;
};
struct HitVerdict {
    bool counts = false;
    bool stops = false;
};
// A start and a step stop at their line whether the condition there holds or not.
HitVerdict VerdictOfHit(const BreakpointHit& hit);

// --- Traps of the program's own
// True for a further trap on the line of the last stop, because a run of trap bytes on one statement stops once.
bool IsRepeatedTrap(const SdbgMap& map, SourcePlace place, std::uint64_t address, std::int32_t lastLine,
                    std::uint64_t lastAddress);

// A breakpoint exception at an address where no breakpoint stands.
struct TrapEvent {
    std::uint64_t address = 0;
    bool inImage = false;  // of the executable
    bool ipAfter = false;  // the instruction pointer is one byte after the address, and not on it
    std::optional<std::array<std::uint8_t, 2>> bytes;  // before the address and at it; nothing: not readable
    // A breakpoint was lately removed at the address, or one byte before it.
    bool removedAt = false;
    bool removedBefore = false;
    DebugPause pause = DebugPause::None;
    bool runsToUserBreakpoint = false;  // traps of the program's own are no stops until one is reached
    std::int32_t lastLine = 0;          // of the last stop
    std::uint64_t lastAddress = 0;
};
enum class TrapMeaning : std::uint8_t {
    Pause,       // the stop that the user asked for
    PauseLate,   // the same, but the program has stopped for another reason first: no stop
    LateHit,     // two threads hit a breakpoint at once, and its byte is restored: run the instruction again
    PassedOver,  // a trap that this run does not stop at
    Stop,
};
TrapMeaning MeaningOfTrap(const SdbgMap& map, const TrapEvent& trap);
// The address of the instruction that a thread must run after a late hit; nothing: it is none. With the instruction
// pointer after the address only the byte at the address tells, because the byte before it may be CC in ordinary code.
std::optional<std::uint64_t> LateHitAddress(const TrapEvent& trap);

// --- The start
struct StartStop {
    DebugAwaits awaits = DebugAwaits::Nothing;
    std::uint32_t tries = 0;  // how often the start has resumed the program
    std::int32_t line = 0;
    // A second initial breakpoint outside the image, which the loader of a 32-bit program may report.
    bool ofLoader = false;
};
// True: the start resumes the program after this stop.
bool IsFalseStart(const StartStop& stop);
// Milliseconds that a start waits for what `awaits` names.
std::uint32_t StartWaitMs(DebugAwaits awaits);
// Text for the output pane about a start that is over; empty: none. `event` is a DebugWait.
std::wstring StartText(DebugAwaits awaits, int event, std::int32_t line);

// --- Reports
struct DebugReport {
    std::wstring text;
    std::uint32_t colour = 0;
};
// What the program reported since the last stop: debug strings and exceptions. The number is limited, because a flood
// would fill the memory. The first are shown at once. Of the others the last are kept, because they tell how the program
// came to its stop.
struct DebugReports {
    std::uint32_t shown = 0;
    std::size_t characters = 0;    // of those shown
    std::deque<DebugReport> kept;  // the last ones
    std::size_t keptCharacters = 0;
    std::uint32_t leftOut = 0;  // between the two
};
inline constexpr std::uint32_t kReportsAtEachEnd = 5000;
enum class ReportFate : std::uint8_t { Shown, FirstKept, Kept };
// Counts a report, and keeps it when it is not to be shown at once.
ReportFate TakeReport(DebugReports* reports, const DebugReport& report);
