// What the views know of the program from one refresh to the next: the registers of the thread they show, lines of its
// source, names of places. Pure.
#pragma once

#include "debugger/registers.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct PaneProgram {
    bool session = false;
    bool stopped = false;
    std::uint64_t serial = 0;  // of the stop
    std::uint32_t processId = 0;
    std::uint32_t thread = 0;              // that the views show
    std::uint32_t chosenThread = 0;        // by the user, until the next stop; 0: the one that stopped
    std::size_t chosenFrame = 0;           // of that thread's stack, by the user, until the next stop
    std::optional<RegisterSet> registers;  // of that thread
    std::optional<RegisterSet> before;     // at the stop before
};

// The session as the debugger has it now.
struct PaneSession {
    bool active = false;
    bool stopped = false;
    std::uint64_t serial = 0;  // of the last stop
    std::uint32_t processId = 0;
    std::uint32_t stopThread = 0;  // of the last stop; 0: none yet
    std::uint32_t mainThread = 0;
};
using RegisterReader = std::function<std::optional<RegisterSet>(std::uint32_t thread)>;

// Brings `program` up to the session; registers are read only from a program that is stopped. True: it is another program
// than before, or none any more, and whatever else was read of the old one is void.
bool PaneProgramFollow(PaneProgram* program, const PaneSession& session, const RegisterReader& read);

// What a view shows now.
enum class PaneShows : std::uint8_t {
    NoSession,  // a hint, because there is no program
    Running,    // a hint, because nothing was read of this program yet
    Stale,      // what was read at the last stop
    Now,        // what is read now
};
// `ofStop`: the view shows a stopped program and nothing else; `readOf` is the process that its rows were read from.
PaneShows PaneShowsNow(const PaneProgram& program, bool ofStop, std::uint32_t readOf);

// --- Source
// A text in UTF-8 and where its lines begin.
struct SourceLines {
    std::string text;
    std::vector<std::uint32_t> starts;  // bytes
};
SourceLines SourceLinesOf(std::string text);
// A line (from 1) as the views show it; empty when the text has none of that number.
std::wstring SourceLineText(const SourceLines& source, std::uint32_t line);
// A line without the blanks around it; a tab inside is shown as a blank.
std::wstring ShownSource(std::string_view utf8);

// --- Places
// "steps.bas:12"; "line 12" without a file's name.
std::wstring LinePlaceText(const std::wstring& fileName, std::uint32_t line);
// "ntdll.dll+0x1F2C"; empty without a name.
std::wstring ModulePlaceText(const std::wstring& moduleName, std::uint64_t offset);
