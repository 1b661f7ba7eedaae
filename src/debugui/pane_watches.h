// The watches: addresses of the program, their values as text, and bytes for typed values. Pure.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The values are those of `kind` in DebugWatchValue.
enum class WatchKind : std::uint8_t { Long, Quad, Text, Double };
inline constexpr int kWatchKinds = 4;
const wchar_t* WatchKindName(WatchKind kind);

struct Watch {
    std::wstring expression;  // an address
    WatchKind kind = WatchKind::Long;
    std::wstring value;   // as last shown, empty while it is unknown
    std::wstring before;  // at the previous stop
};

// Sets the expression of a row: the row after the last adds a watch, an empty text removes one. Blanks around it are
// dropped. True when the list has changed.
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
