#include "build/asm_pane.h"

#include "app/app_state.h"
#include "build/build_stage.h"
#include "build/output_pane.h"
#include "build/output_queue.h"
#include "build/rich_lines.h"
#include "files/file_io.h"
#include "files/handles.h"
#include "files/wide_format.h"

#include <richedit.h>

#include <vector>

namespace {

constexpr std::size_t kLinesKept = 20000;  // for the reasons given in kept_lines.h

struct AsmFeed {
    OutputQueue queue;
    std::size_t lines = 0;  // shown
    BlockSize block;
};
AsmFeed g_asm;
AsmRenderer g_renderer = nullptr;

void Add(std::wstring text) {
    if (!text.empty()) g_asm.queue.chunks.push_back({.text = std::move(text)});
}

void AddListing(const wchar_t* listing) {
    std::size_t length = 0;
    const HeapBlock<char> bytes(ReadFileUtf8(listing, &length));
    if (bytes == nullptr) {
        Add(L"(No compiler ASMOUT file was found. Enable ASM output and use /ASMOUT:{asm} for "
            L"KeldorBasic/KVXA32.)\r\n");
        return;
    }
    if (const HeapBlock<wchar_t> text{Utf8ToWide(bytes.get())}) Add(text.get());
    if (g_renderer == nullptr) return;
    if (const HeapBlock<wchar_t> rendered{g_renderer(listing)}) Add(std::wstring(L"\r\n") + rendered.get());
}

}  // namespace

void AsmPaneSetRenderer(AsmRenderer renderer) { g_renderer = renderer; }

void AsmPaneClear() {
    HWND pane = RichPaneEmptied(g_app.hAsmPane, g_asm.lines);
    if (pane != g_app.hAsmPane) {
        ShowTimerStart();
        g_app.hAsmPane = pane;
        PaneApplyFontAndTheme(pane);
    }
    g_asm = {};
}

void AsmPaneLoad(const wchar_t* source, const wchar_t* listing) {
    if (g_app.hAsmPane == nullptr || !g_app.showAsmPane || source == nullptr || listing == nullptr) return;
    AsmPaneClear();
    SendMessageW(g_app.hAsmPane, EM_SETUNDOLIMIT, 0, 0);
    SendMessageW(g_app.hAsmPane, EM_EXLIMITTEXT, 0, 0x7FFFFFFE);
    Add(FormatW(L"=== Assembly Output ===\r\nSource: %s\r\nASMOUT: %s\r\n\r\n", source, listing));
    AddListing(listing);
    ShowTimerStart();
}

void AsmPaneShowNext() {
    if (AsmPaneIsEmpty()) return;
    std::vector<PaneLine> block;
    QueuedLine line;
    int chunksDone = 0;
    while (block.size() < g_asm.block.lines && OutputQueueNext(g_asm.queue, &line, &chunksDone))
        block.push_back({.text = std::move(line.text), .lineBreak = line.lineBreak});
    g_asm.lines += block.size();
    if (g_asm.lines >= kLinesKept && !AsmPaneIsEmpty()) {
        block.push_back({.text = L"... the rest of the listing is left out; the file has it all ..."});
        g_asm.queue = {};
    }
    const double started = ClockMs();
    RichLinesAppend(g_app.hAsmPane, block);
    BlockSizeLearn(g_asm.block, block.size(), ClockMs() - started);
    if (!AsmPaneIsEmpty()) return;
    SendMessageW(g_app.hAsmPane, WM_VSCROLL, SB_TOP, 0);  // a listing is read from its top
    InvalidateRect(g_app.hAsmPane, nullptr, TRUE);
}

bool AsmPaneIsEmpty() { return g_asm.queue.chunks.empty(); }
