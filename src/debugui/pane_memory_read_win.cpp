// The contents of the memory view: reads and writes the program, and keeps the caret. Knows no window. UI thread only.
#include "debugui/pane_memory_view.h"

#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugui/pane_internal.h"

#include <algorithm>

MemoryView g_memory;

namespace {

constexpr std::uint64_t kPage = 4096;

std::uint64_t RowLength() { return static_cast<std::uint64_t>(g_memory.shape.bytes); }

// Skips unreadable pages, so that those after them show.
std::vector<MemoryByte> ReadMemoryBytes(std::uint64_t address, std::size_t count) {
    std::vector<MemoryByte> bytes(count);
    std::vector<std::uint8_t> part(kPage);
    for (std::size_t done = 0; done < count;) {
        const std::uint64_t at = address + done;
        const auto want = static_cast<std::size_t>(std::min<std::uint64_t>(count - done, kPage - at % kPage));
        const std::size_t got = DebugReadSome(&g_debugger, at, part.data(), want);
        std::copy_n(part.begin(), got, bytes.begin() + static_cast<std::ptrdiff_t>(done));
        done += want;
    }
    return bytes;
}

std::size_t VisibleBytes() { return static_cast<std::size_t>(g_memory.rows) * RowLength(); }

std::wstring VisibleRowText(std::size_t row) {
    const std::size_t first = row * RowLength();
    if (first + RowLength() > g_memory.bytes.size()) return {};
    return MemoryRowText(g_memory.top + first, g_memory.shape, std::span(g_memory.bytes).subspan(first, RowLength()));
}

void FillMemoryView(PaneContent& content) {
    const PaneProgram& program = PaneProgramNow();
    if (!program.registers) {
        content.hint = L"The registers of this thread cannot be read.";
        return;
    }
    if (program.processId != g_memory.processId) {
        g_memory.filled = false;
        g_memory.bytes.clear();
    }
    g_memory.processId = program.processId;
    const bool x64 = g_debugger.isX64 != 0;
    g_memory.x64 = x64;
    const std::wstring expression = PaneAddressText();
    const Evaluation address = PaneEvaluate(!expression.empty() ? expression : x64 ? L"RSP" : L"ESP");
    content.problem = address.problem;
    const std::uint64_t base = address.value.value_or(g_memory.base);
    if (program.serial != g_memory.serial) {
        g_memory.before = std::move(g_memory.bytes);
        g_memory.beforeTop = g_memory.top;
    }
    if (!g_memory.filled || base != g_memory.base) {
        g_memory.top = base;
        g_memory.caretRow = base;
        g_memory.caret = {};
    }
    g_memory.base = base;
    g_memory.serial = program.serial;
    g_memory.filled = true;
    MemoryRead();
}

}  // namespace

void MemoryRead() {
    const int digits = PaneAddressDigits(g_memory.x64, std::max(g_memory.top, g_memory.top + VisibleBytes()));
    const MemoryShape shape = MemoryShapeThatFits(digits, g_memory.characters);
    if (shape != g_memory.shape) MemoryReshape(g_memory, shape);
    g_memory.bytes = ReadMemoryBytes(g_memory.top, VisibleBytes());
}

bool MemoryChanged(std::uint64_t address, const MemoryByte& now) {
    const std::uint64_t offset = address - g_memory.beforeTop;
    return offset < g_memory.before.size() && g_memory.before[static_cast<std::size_t>(offset)] != now;
}

bool MemoryWrite(wchar_t typed) {
    const std::uint64_t address = g_memory.caretRow + static_cast<std::uint64_t>(g_memory.caret.index);
    const std::vector<MemoryByte> old = ReadMemoryBytes(address, 1);
    if (!PaneProgramNow().stopped || !old[0]) return false;
    const auto byte = MemoryTyped(*old[0], g_memory.caret, typed);
    if (!byte || !DebugWriteMem(&g_debugger, address, &*byte, 1)) return false;
    MemoryRead();
    return true;
}

void MemoryScroll(std::int64_t rows) {
    if (!PaneProgramNow().stopped) return;
    g_memory.top = MemoryScrolledTop(g_memory, rows);
    MemoryRead();
}

void MemoryMoveCaret(std::int64_t bytes) {
    if (const std::int64_t rows = MemoryMoveCaretBy(g_memory, bytes); rows != 0) MemoryScroll(rows);
}

void MemoryStepCaret(int step) {
    if (const std::int64_t rows = MemoryStepCaretBy(g_memory, step); rows != 0) MemoryScroll(rows);
}

std::wstring MemoryText() {
    std::wstring text;
    for (std::size_t row = 0; row < static_cast<std::size_t>(g_memory.rows); ++row) {
        const std::wstring line = VisibleRowText(row);
        if (!line.empty()) text += (text.empty() ? L"" : L"\r\n") + line;
    }
    return text;
}

std::wstring MemoryCaretRowText() {
    return MemoryRowText(g_memory.caretRow, g_memory.shape, ReadMemoryBytes(g_memory.caretRow, RowLength()));
}

const PaneView kMemoryView = {
    .title = L"Memory", .list = nullptr, .ofStop = true, .fill = FillMemoryView, .addressCue = L"The stack pointer"};
