// Rows of the memory view. Pure.
#include "debugui/pane_memory.h"

#include "base/hex_digit.h"
#include "debugui/pane_rows.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int kGap = 1;  // blanks after the address and before the characters

bool IsPlain(std::uint8_t byte) { return byte >= 32 && byte <= 126; }

// Bytes of a row, in the type of addresses.
std::uint64_t RowBytes(const MemoryPlace& place) { return static_cast<std::uint64_t>(place.shape.bytes); }

std::uint64_t HighestRow(const MemoryPlace& place) {
    return (place.x64 ? ~std::uint64_t{0} : 0xFFFFFFFFU) - (RowBytes(place) - 1);
}

std::uint64_t Distance(const MemoryPlace& place, std::int64_t rows) {
    return static_cast<std::uint64_t>(rows < 0 ? -rows : rows) * RowBytes(place);
}

std::int64_t RowsToCaret(const MemoryPlace& place) {
    const std::uint64_t row = RowBytes(place);
    const auto whole = static_cast<std::uint64_t>(std::max(place.rows - 1, 1)) * row;
    if (place.caretRow < place.top) return -static_cast<std::int64_t>((place.top - place.caretRow + row - 1) / row);
    if (place.caretRow - place.top < whole) return 0;
    return static_cast<std::int64_t>((place.caretRow - place.top - whole) / row + 1);
}

}  // namespace

MemoryShape MemoryShapeThatFits(int digits, int characters) {
    for (const int bytes : {16, 8})
        if (MemoryRowWidth({digits, bytes}) <= characters) return {digits, bytes};
    return {digits, 4};
}

int MemoryHexColumn(const MemoryShape& shape, int index) {
    return shape.digits + kGap + index * 3 + (index >= shape.bytes / 2 ? 1 : 0);  // a wider gap in the middle
}

int MemoryTextColumn(const MemoryShape& shape, int index) {
    return MemoryHexColumn(shape, shape.bytes - 1) + 2 + kGap + index;
}

int MemoryRowWidth(const MemoryShape& shape) { return MemoryTextColumn(shape, shape.bytes); }

std::wstring MemoryRowText(std::uint64_t address, const MemoryShape& shape, std::span<const MemoryByte> bytes) {
    std::wstring row(static_cast<std::size_t>(MemoryRowWidth(shape)), L' ');
    const std::wstring number = HexText(address, shape.digits);
    std::copy_n(number.begin(), std::min(number.size(), static_cast<std::size_t>(shape.digits)), row.begin());
    const int count = std::min(shape.bytes, static_cast<int>(bytes.size()));
    for (int i = 0; i < count; ++i) {
        const MemoryByte& byte = bytes[static_cast<std::size_t>(i)];
        const std::wstring hex = byte ? HexText(*byte, 2) : L"??";
        std::copy(hex.begin(), hex.end(), row.begin() + MemoryHexColumn(shape, i));
        row[static_cast<std::size_t>(MemoryTextColumn(shape, i))] = !byte            ? L' '
                                                                    : IsPlain(*byte) ? static_cast<wchar_t>(*byte)
                                                                                     : L'.';
    }
    return row;
}

MemoryCaret MemoryCaretAt(const MemoryShape& shape, int column) {
    const int text = column - MemoryTextColumn(shape, 0);
    if (text >= 0) return {std::min(text, shape.bytes - 1), true, false};
    for (int i = shape.bytes - 1; i > 0; --i) {
        const int start = MemoryHexColumn(shape, i);
        if (column >= start) return {i, false, column > start};
    }
    return {0, false, column > MemoryHexColumn(shape, 0)};
}

std::optional<std::uint8_t> MemoryTyped(std::uint8_t old, const MemoryCaret& caret, wchar_t typed) {
    if (caret.text) {
        if (typed < 32 || typed > 126) return {};
        return static_cast<std::uint8_t>(typed);
    }
    const int digit = HexValue(typed);
    if (digit < 0) return {};
    return static_cast<std::uint8_t>(caret.low ? (old & 0xF0) | digit : (old & 0x0F) | digit << 4);
}

std::uint64_t MemoryScrolledTop(const MemoryPlace& place, std::int64_t rows) {
    const std::uint64_t distance = Distance(place, rows);
    if (rows < 0) return place.top - std::min(place.top, distance);
    return place.top + std::min(distance, HighestRow(place) - std::min(place.top, HighestRow(place)));
}

std::int64_t MemoryMoveCaretBy(MemoryPlace& place, std::int64_t bytes) {
    const std::int64_t index = place.caret.index + bytes;
    std::int64_t rows = index / place.shape.bytes;
    if (index % place.shape.bytes < 0) --rows;
    const std::uint64_t distance = Distance(place, rows);
    if (rows < 0 ? place.caretRow < distance : HighestRow(place) - place.caretRow < distance) return 0;
    place.caretRow = rows < 0 ? place.caretRow - distance : place.caretRow + distance;
    place.caret.index = static_cast<int>(index - rows * place.shape.bytes);
    return RowsToCaret(place);
}

std::int64_t MemoryStepCaretBy(MemoryPlace& place, int step) {
    if (place.caret.text) return MemoryMoveCaretBy(place, step);
    const std::int64_t rows = place.caret.low == (step > 0) ? MemoryMoveCaretBy(place, step) : 0;
    place.caret.low = !place.caret.low;
    return rows;
}

void MemoryReshape(MemoryPlace& place, const MemoryShape& shape) {
    const std::uint64_t caret = place.caretRow + static_cast<std::uint64_t>(place.caret.index);
    place.shape = shape;
    // Rows are counted from the first shown one, also upwards: `caret - top` may wrap, but 2^64 is a multiple of the
    // row length.
    const std::uint64_t rest = std::min((caret - place.top) % RowBytes(place), caret);
    place.caretRow = caret - rest;
    place.caret.index = static_cast<int>(rest);
}

// --- What has been read

namespace {

std::size_t RowLength(const MemoryContent& content) { return static_cast<std::size_t>(content.shape.bytes); }

std::size_t VisibleBytes(const MemoryContent& content) {
    return static_cast<std::size_t>(content.rows) * RowLength(content);
}

}  // namespace

void MemoryTakeProgram(MemoryContent& content, std::uint32_t processId, bool x64) {
    if (processId != content.processId) {
        content.filled = false;
        content.bytes.clear();
    }
    content.processId = processId;
    content.x64 = x64;
}

void MemoryTakeStop(MemoryContent& content, std::uint64_t serial, std::uint64_t base) {
    if (serial != content.serial) {
        content.before = std::move(content.bytes);
        content.beforeTop = content.top;
    }
    if (!content.filled || base != content.base) {
        content.top = base;
        content.caretRow = base;
        content.caret = {};
    }
    content.base = base;
    content.serial = serial;
    content.filled = true;
}

void MemoryReadVisible(MemoryContent& content, const MemoryPart& readSome) {
    const std::uint64_t end = content.top + VisibleBytes(content);
    const int digits = PaneAddressDigits(content.x64, std::max(content.top, end));
    const MemoryShape shape = MemoryShapeThatFits(digits, content.characters);
    if (shape != content.shape) MemoryReshape(content, shape);
    content.bytes = MemoryReadBytes(content.top, VisibleBytes(content), readSome);
}

std::vector<MemoryByte> MemoryReadBytes(std::uint64_t address, std::size_t count, const MemoryPart& readSome) {
    constexpr std::uint64_t kPage = 4096;
    std::vector<MemoryByte> bytes(count);
    std::vector<std::uint8_t> part(kPage);
    for (std::size_t done = 0; done < count;) {
        const std::uint64_t at = address + done;
        const auto want = static_cast<std::size_t>(std::min<std::uint64_t>(count - done, kPage - at % kPage));
        const std::size_t got = readSome(at, part.data(), want);
        std::copy_n(part.begin(), got, bytes.begin() + static_cast<std::ptrdiff_t>(done));
        done += want;
    }
    return bytes;
}

bool MemoryHasChanged(const MemoryContent& content, std::uint64_t address, const MemoryByte& now) {
    const std::uint64_t offset = address - content.beforeTop;
    return offset < content.before.size() && content.before[static_cast<std::size_t>(offset)] != now;
}

std::span<const MemoryByte> MemoryRowBytes(const MemoryContent& content, std::size_t row) {
    const std::size_t first = row * RowLength(content);
    if (first + RowLength(content) > content.bytes.size()) return {};
    return std::span(content.bytes).subspan(first, RowLength(content));
}

std::wstring MemoryVisibleText(const MemoryContent& content) {
    std::wstring text;
    for (std::size_t row = 0; row < static_cast<std::size_t>(content.rows); ++row) {
        const std::span<const MemoryByte> bytes = MemoryRowBytes(content, row);
        if (bytes.empty()) continue;
        if (!text.empty()) text += L"\r\n";
        text += MemoryRowText(content.top + row * RowLength(content), content.shape, bytes);
    }
    return text;
}
