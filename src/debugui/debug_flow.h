// What the window does for a debugged program: one record, and how it changes. The system lets only the thread that started
// a program wait for its events, so the window's own thread waits; what that asks of the rest of the window is decided
// here and carried out by debug_run_win.cpp, the owner of the record. Times are values of GetTickCount64. Pure.
#pragma once

#include <cstdint>
#include <string>

enum class DebugPhase : std::uint8_t {
    None,      // no session
    Starting,  // the program is created and has not reached its first line
    Stopped,
    Running,
    Ending,  // the program is being ended
};

struct DebugFlow {
    DebugPhase phase = DebugPhase::None;
    std::uint64_t since = 0;     // of the start, then of each resume
    std::wstring suffix;         // after the place of the next stop: " (step into)"
    bool following = false;      // TIMER_DEBUG runs and asks for the next event
    bool toldLong = false;       // the user was told that the program does not stop
    bool unseen = false;         // the last stop is not shown in the editor, because another step followed at once
    std::uint64_t lastSeen = 0;  // of the last stop that was shown
    // A wait inside a command. While it lasts, no command but Stop may start.
    bool waiting = false;
    bool stopWanted = false;
    bool closeWanted = false;  // the window's close; implies stopWanted
    int consoleLooks = 0;      // that TIMER_DEBUG_CONSOLE still takes
    bool openedPane = false;   // the debug pane was opened for the session and goes with it
};

// --- Transitions
void FlowStart(DebugFlow* flow, std::uint64_t now);
// The program was resumed, or is still starting and followed from now on.
void FlowResume(DebugFlow* flow, const std::wstring& suffix, std::uint64_t now);
void FlowStartGivenUp(DebugFlow* flow);  // the first line was not reached in time; the program runs on
void FlowStopped(DebugFlow* flow);       // the program has stopped
void FlowEnding(DebugFlow* flow);        // the program is about to be ended
void FlowEnded(DebugFlow* flow);         // the session is over
// Stop, or the window's close, is wanted while a wait goes on.
void FlowWantStop(DebugFlow* flow, bool thenClose);

// --- Questions
// What a command may count on: the program stands, or runs and can be paused.
bool FlowIsStopped(const DebugFlow& flow);
bool FlowIsRunning(const DebugFlow& flow);
// The first wait of a start is over: the user wants to stop, or the program takes longer to reach its first line than the
// window may stand still for. `awaitsFirstLine`: it was resumed and has not reached that line.
bool FlowStartWaitIsOver(const DebugFlow& flow, bool awaitsFirstLine, std::uint64_t now);
// Drawing a place costs more than reaching it. When another step follows at once, a stop need not be shown unless the last
// one that was shown is too long ago.
bool FlowMayPassUnseen(const DebugFlow& flow, std::uint64_t now);

// --- What is done once
// True once a run, when it has gone on for so long that a line should say so. A start has a text of its own for that.
bool FlowTakeLongRun(DebugFlow* flow, bool awaitsFirstLine, std::uint64_t now);
// True when the debug pane is to be opened for this session. The end closes it then; a pane that the user had open stays.
bool FlowOpensPane(DebugFlow* flow, bool shown);
// True when the pane that was opened for the session is to be closed.
bool FlowClosesPane(DebugFlow* flow, bool shown);

// A program's console comes a moment after the program has started, when its first line is reached and shown already. It
// takes the foreground first and the place above all windows a little later.
struct ConsoleLook {
    bool raise = false;  // the editor goes above all windows, if it is in front
    bool last = false;   // no further look
};
inline constexpr std::uint32_t kConsoleInterval = 50;  // ms between two looks
void FlowWatchConsole(DebugFlow* flow);
ConsoleLook FlowLookForConsole(DebugFlow* flow, bool consoleInFront);
