// The watched places of a program: what they are called, what may be written to them. Pure.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// In the numbers of DebugWatchValue.
enum class WatchKind : std::uint8_t { Long, Quad, Text, Double };
inline constexpr int kWatchKinds = 4;
const wchar_t* WatchKindName(WatchKind kind);

struct Watch {
    std::wstring expression;  // an address
    WatchKind kind = WatchKind::Long;
    std::wstring value;   // as last shown, empty while it cannot be known
    std::wstring before;  // at the stop before that
};

// The expression of a row: a new watch at the end of the list, another text for an old one, none at all removes it.
// Blanks around it are dropped. True when the list has changed.
bool WatchSetExpression(std::vector<Watch>& watches, std::size_t row, std::wstring_view expression);

// What stands in the edit field for a value shown as "42 (0x0000002A)" or in quotation marks.
std::wstring WatchEditText(WatchKind kind, std::wstring_view shown);

// The bytes to write for a typed value, or why there are none. `room`: bytes of the text that stands there now; a longer
// one would run over what lies behind it.
struct WatchBytes {
    std::vector<std::uint8_t> bytes;
    std::wstring problem;
};
WatchBytes WatchBytesOf(WatchKind kind, std::string_view utf8, std::size_t room);
