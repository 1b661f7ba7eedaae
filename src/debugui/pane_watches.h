// The watches: addresses of the program, their values as text, what a click on one does, and bytes for typed values. Pure.
#pragma once

#include "debugger/expressions.h"
#include "debugger/watch_value.h"
#include "ui/list_rows.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct Watch {
    std::wstring expression;  // an address
    WatchKind kind = WatchKind::Long;
    std::wstring value;               // as last shown, empty while it is unknown
    std::wstring before;              // at the previous stop
    bool chosen = false;              // the kind, by the user
    std::optional<WatchKind> ofName;  // the kind of the name that the expression is, at the last stop
};
// The kind in which the value is read: that of its name, unless the user has chosen one.
WatchKind KindOfWatch(const Watch& watch);

// Sets the expression of a row: the row after the last adds a watch, an empty text removes one. Blanks around it are
// dropped. A kind that the user has not chosen follows the expression. True when the list has changed.
bool WatchSetExpression(std::vector<Watch>& watches, std::size_t row, std::wstring_view expression);

// Text of the edit field for a value that is shown as "42 (0x0000002A)" or in quotation marks.
std::wstring WatchEditText(WatchKind kind, std::wstring_view shown);

// The bytes to write for a typed value, or why it is refused. `room`: bytes of the text that stands there now; a longer
// one is refused because it would overwrite what comes after it.
struct WatchBytes {
    std::vector<std::uint8_t> bytes;
    std::wstring problem;
};
WatchBytes WatchBytesOf(WatchKind kind, std::string_view utf8, std::size_t room);

// --- The rows
struct WatchList {
    std::vector<Watch> watches;
    std::uint64_t serial = 0;  // of the stop that the values are of
};
// What the views know of the program now.
struct WatchProgram {
    bool session = false;
    bool stopped = false;
    bool x64 = true;
    std::uint64_t serial = 0;  // of the stop
    std::function<Evaluation(const std::wstring& expression)> evaluate;
    std::function<std::optional<WatchKind>(const std::wstring& expression)> kindOf = nullptr;  // of a name
    std::function<std::wstring(const Watch& watch, std::uint64_t address)> read;
};
enum WatchColumn : int { kWatchExpression, kWatchKind, kWatchValue };

// A row for each watch and one to type a new one into. Values are read while the program is stopped; those of the stop
// before are what a change is told by. While it runs, the last ones stay; without a program there are none.
std::vector<ListRow> WatchRows(WatchList& list, const WatchProgram& program);

// --- What is done with a row
// Null for the row of the new watch.
Watch* WatchAt(std::vector<Watch>& watches, int row);
// There is a value that can be written over. `watch` may be null.
bool WatchHasValue(const Watch* watch, bool stopped);

enum class WatchAction : std::uint8_t { EditExpression, ChooseKind, EditValue };
// What a double click on a column does, or Enter (column -1). `watch` may be null.
WatchAction WatchActionOf(int column, const Watch* watch, bool stopped);

// The bytes to write for what was typed as the value of a watch at an address, or why there are none.
WatchBytes WatchInput(WatchKind kind, const Evaluation& address, std::string_view utf8, const ProgramMemory& memory);
