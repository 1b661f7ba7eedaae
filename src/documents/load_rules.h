// What can be opened, and what the user is told about the rest. Pure.
#pragma once

#include "documents/text_pieces.h"

#include <cstddef>
#include <cstdint>
#include <string>

enum class LoadEnd : std::uint8_t { Done, Unreadable, TooLarge, LineTooLong, NoMemory, Cancelled };

// Bytes of UTF-8. Positions are kept in 32 bits.
inline constexpr std::size_t kLargestText = 0x7FFFFFFF;
// Bytes. Scintilla lays out a line as a whole, for every paint after a change and with ten bytes of memory for each
// byte of it.
inline constexpr std::size_t kLargestLine = 16 << 20;
// Bytes. A smaller file is read at once, which is no slower.
inline constexpr std::int64_t kLargeFile = 4 << 20;
// Bytes. A larger text is shown without colours, because they need as much memory again.
inline constexpr std::size_t kLargestColoured = 1 << 30;

// How a file is read. `size`: bytes, -1: not known.
enum class LoadWay : std::uint8_t { Refused, Direct, Worker };
LoadWay LoadWayOf(std::int64_t size, bool remote);

LoadEnd LoadEndOf(PiecesEnd end);
// Why a file was not opened, to follow the message about it; empty when there is nothing to add.
std::wstring LoadFailureText(LoadEnd end);
// What the user is told about a document that is shown plain. `line`: bytes of the line that a change has brought, 0 when
// its file is so.
std::wstring PlainNotice(const wchar_t* label, std::size_t line);
