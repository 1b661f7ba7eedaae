// What the window does for a debugged program: one record, and how it changes. WaitForDebugEvent works only in the
// thread that started the program, so the UI thread waits. What such a wait means for the rest of the window is decided
// here; debug_run_win.cpp owns the record and carries it out. Times are values of GetTickCount64 (ms). Pure.
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
    std::uint64_t since = 0;     // time of the start, then of the last resume
    std::wstring suffix;         // written after the place of the next stop: " (step into)"
    bool following = false;      // TIMER_DEBUG runs
    bool toldLong = false;       // the user was told that the program does not stop
    bool byAddress = false;      // a step by address is under way, of which nothing was said yet
    bool unseen = false;         // the last stop was not shown, because another step followed at once
    std::uint64_t lastSeen = 0;  // time of the last stop that was shown
    // A command waits for the program. Meanwhile no command but Stop may start.
    bool waiting = false;
    bool stopWanted = false;
    bool closeWanted = false;  // the user closed the window; implies stopWanted
    int consoleLooks = 0;      // looks that TIMER_DEBUG_CONSOLE still takes
    bool openedPane = false;   // the debug pane was opened for the session and is closed with it
};

// --- Transitions
void FlowStart(DebugFlow* flow, std::uint64_t now);
// The program was resumed, or is still starting and the timer follows it from now on.
void FlowResume(DebugFlow* flow, const std::wstring& suffix, std::uint64_t now);
void FlowStartGivenUp(DebugFlow* flow);  // the first line was not reached in time; the program runs on
void FlowStopped(DebugFlow* flow);       // the program has stopped
void FlowEnding(DebugFlow* flow);        // the program is about to be ended
void FlowEnded(DebugFlow* flow);         // the session is over
// The user asked for Stop, or closed the window (`thenClose`), while a command waits.
void FlowWantStop(DebugFlow* flow, bool thenClose);

// --- Questions
// True while commands may act on a stopped program, or may pause a running one; both are false while a command waits.
bool FlowIsStopped(const DebugFlow& flow);
bool FlowIsRunning(const DebugFlow& flow);
// True when the first wait of a start must end: the user wants to stop, or the program has needed a second and has not
// reached its first line (`awaitsFirstLine`).
bool FlowStartWaitIsOver(const DebugFlow& flow, bool awaitsFirstLine, std::uint64_t now);
// True when a stop need not be shown if another step follows at once, because drawing a place costs more than reaching
// it. False when the last stop that was shown is too long ago.
bool FlowMayPassUnseen(const DebugFlow& flow, std::uint64_t now);

// --- What is done once
// True once in a run: when it has gone on for so long that a message should say so. Never in a start, which has its own
// message.
bool FlowTakeLongRun(DebugFlow* flow, bool awaitsFirstLine, std::uint64_t now);
// True once in a step by address: when it has ended the program, or has needed a second.
bool FlowTakeStepHint(DebugFlow* flow, bool ended, std::uint64_t now);
// True when the debug pane must be opened for this session (`shown`: it is open). Only a pane opened for the session is
// closed at its end.
bool FlowOpensPane(DebugFlow* flow, bool shown);
// True when the pane was opened for the session and must be closed now.
bool FlowClosesPane(DebugFlow* flow, bool shown);

// A program's console appears a moment after the start, when the first line may be shown already. It first takes the
// foreground, and a little later goes above all other windows.
struct ConsoleLook {
    bool raise = false;  // put the editor above all windows, if it has the foreground
    bool last = false;   // no further look
};
inline constexpr std::uint32_t kConsoleInterval = 50;  // ms between two looks
void FlowWatchConsole(DebugFlow* flow);
ConsoleLook FlowLookForConsole(DebugFlow* flow, bool consoleInFront);
