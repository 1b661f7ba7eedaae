// The contents of the memory view: reads and writes the program, and keeps the caret. Knows no window. UI thread only.
#include "debugui/pane_memory_view.h"

#include "base/texts.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugui/pane_internal.h"

MemoryView g_memory;

namespace {

std::size_t ReadProgram(std::uint64_t address, void* out, std::size_t count) {
    return DebugReadSome(&g_debugger, address, out, count);
}

void FillMemoryView(PaneContent& content) {
    const PaneProgram& program = PaneProgramNow();
    if (!program.registers) {
        content.hint = Text(L"The registers of this thread cannot be read.");
        return;
    }
    const bool x64 = g_debugger.isX64 != 0;
    MemoryTakeProgram(g_memory, program.processId, x64);
    const std::wstring expression = PaneAddressText();
    const Evaluation address = PaneEvaluatePlace(!expression.empty() ? expression : StackPointerName(x64));
    content.problem = address.problem;
    MemoryTakeStop(g_memory, program.serial, address.value.value_or(g_memory.base));
    MemoryRead();
}

}  // namespace

void MemoryRead() { MemoryReadVisible(g_memory, ReadProgram); }

bool MemoryWrite(wchar_t typed) {
    const std::uint64_t address = g_memory.caretRow + static_cast<std::uint64_t>(g_memory.caret.index);
    const std::vector<MemoryByte> old = MemoryReadBytes(address, 1, ReadProgram);
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

std::wstring MemoryCaretRowText() {
    const auto length = static_cast<std::size_t>(g_memory.shape.bytes);
    return MemoryRowText(g_memory.caretRow, g_memory.shape, MemoryReadBytes(g_memory.caretRow, length, ReadProgram));
}

const PaneView kMemoryView = {.title = English(L"Memory"),
                              .list = nullptr,
                              .ofStop = true,
                              .fill = FillMemoryView,
                              .addressCue = English(L"The stack pointer")};
