// The user's breakpoints as data: how they follow the markers of the open files, and which of them the debugged program
// takes. Editor and process are reached only through what the caller hands in. Pure.
#pragma once

#include "base/events.h"
#include "debugui/breakpoint_rules.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

enum class BreakpointStatus : std::uint8_t {
    Idle,      // no session runs
    Planted,   // in the program
    NoCode,    // refused: the line has no code, or the file is not part of the program
    Refused,   // refused: the table is full, memory is not writable, or another line has the address
    Disabled,  // switched off by the user
};

struct UserBreakpoint {
    std::wstring path;      // full path of the file; empty for an untitled document
    int line = 0;           // from 1
    std::string condition;  // UTF-8, at most 63 bytes, empty: none
    bool enabled = true;
    BreakpointStatus status = BreakpointStatus::Idle;
    std::wstring reason;         // why it was refused (NoCode, Refused), for the tooltip
    std::uint64_t address = 0;   // in the program, while planted
    std::uint64_t shares = 0;    // address of another line's breakpoint, when that is why it was refused
    std::uint32_t hits = 0;      // in this session
    std::uint32_t stopFrom = 0;  // stops from this hit on; 0 and 1: at each
    DocumentId document = 0;     // 0 while the file is closed
    int handle = -1;             // of its marker in that document
};
using UserBreakpoints = std::vector<UserBreakpoint>;

// Where a line's code is in the program.
struct CodePlace {
    std::uint32_t fileId = 0;   // 0: the file is not part of the program
    std::uint64_t address = 0;  // 0: the line has no code
    bool untold = false;        // the program does not tell where the lines of this part of the source are
};

enum class PlantResult : std::uint8_t { Planted, TableFull, NotWritable };

// The debugged program, as far as breakpoints need it. Lines are from 1. Without a session all members are empty.
struct BreakpointTarget {
    std::function<CodePlace(const std::wstring& path, int line)> find;
    std::function<PlantResult(std::uint32_t fileId, int line)> plant;
    std::function<void(std::uint64_t address)> remove;
    std::function<void(std::uint64_t address, const std::string& condition)> setCondition;
    std::function<void(std::uint64_t address, std::uint32_t count)> setStopFrom;
    std::function<int(std::uint64_t address)> hits;  // of the breakpoint there; -1: there is none

    bool IsThere() const { return static_cast<bool>(find); }
};

// An open document and the breakpoint markers that its editor has.
struct MarkedDocument {
    DocumentId document = 0;
    std::wstring path;  // empty while untitled
    std::vector<MarkerPlace> markers;
};

// --- The list and the markers
// Takes over what edits did to the markers of one document: lines that moved, markers that came or went. New
// breakpoints are planted.
struct MarkerMerge {
    std::vector<int> surplus;  // handles of second markers on a line, to be deleted from the editor
    bool changed = false;      // a breakpoint is new or a marker is surplus: draw the looks again
};
MarkerMerge MergeMarkers(UserBreakpoints* list, const MarkedDocument& marked, const BreakpointTarget& target);
// Detaches the breakpoints of documents that are not open any more; they keep file and line.
void DetachClosedDocuments(UserBreakpoints* list, const std::function<bool(DocumentId)>& isOpen);
// Detaches the breakpoints of a document that loses its editor or its text: they keep their lines until the file is
// there again. Those of an untitled document are removed, because no file leads back to them.
void DetachDocument(UserBreakpoints* list, DocumentId document, const BreakpointTarget& target);
// True when the breakpoint is in that document, or waits for a document with that path (empty: untitled).
bool BelongsToDocument(const UserBreakpoint& breakpoint, DocumentId document, const std::wstring& path);
// A command for lines, or its undo, has put the marker of a breakpoint on another line: it has the handle `after` now. A
// negative one: the line is gone, and the breakpoint goes to `away` until a marker for it comes back. `line` is that of the
// marker, from 1. True when the list has such a breakpoint.
struct RenewedMarker {
    DocumentId document = 0;
    int before = -1, after = -1;
    int line = 0;
};
bool RenewMarker(UserBreakpoints* list, UserBreakpoints* away, const RenewedMarker& marker,
                 const BreakpointTarget& target);
// Sorts by file, then by line.
void SortBreakpoints(UserBreakpoints* list);
// Index of the breakpoint on a line (from 1) of an open document, or -1.
int FindBreakpoint(const UserBreakpoints& list, DocumentId document, int line);
// Follows an edit that moved the lines from `first` (from 0) on by `added`. True when a breakpoint moved.
bool MoveBreakpointLines(UserBreakpoints* list, DocumentId document, int first, int added);

// --- The list and the program
// Plants one breakpoint again, or sets `status` and `reason` to why it cannot be planted. Without a session it becomes
// idle.
void PlantBreakpoint(UserBreakpoints* list, UserBreakpoint* breakpoint, const BreakpointTarget& target);
// Plants all breakpoints in a new session, with no hits.
void PlantAllBreakpoints(UserBreakpoints* list, const BreakpointTarget& target);
// Plants those breakpoints whose address was taken by another line's and is free now. Returns the documents whose looks
// changed.
std::vector<DocumentId> PlantSharers(UserBreakpoints* list, const BreakpointTarget& target);
// Takes a breakpoint out of the program and out of the list.
void ForgetBreakpoint(UserBreakpoints* list, std::size_t index, const BreakpointTarget& target);
// Makes all breakpoints idle after the end of a session.
void IdleBreakpoints(UserBreakpoints* list);
// Reads how often each breakpoint was hit.
void ReadHits(UserBreakpoints* list, const BreakpointTarget& target);
// The breakpoint that stands at an address of the program, or null.
UserBreakpoint* BreakpointAtAddress(UserBreakpoints* list, std::uint64_t address);

// --- What is shown
BreakpointLook LookOfBreakpoint(const UserBreakpoint& breakpoint);
// The tooltip of a breakpoint; `condition` is its condition as wide text. Empty: there is nothing to say.
std::wstring BreakpointTipText(const UserBreakpoint& breakpoint, const std::wstring& condition);
// The tooltip of a folded block that hides breakpoints on these lines (from 0). Empty for none.
std::wstring FoldedTipText(std::span<const int> lines);
