#include "disasm/asm_pane.h"

#include "base/clock.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "compile/products.h"
#include "disasm/asm_renderer.h"
#include "disasm/disasm_state.h"
#include "documents/document_row.h"
#include "files/file_io.h"
#include "output/last_build.h"
#include "output/output_pane.h"
#include "output/output_queue.h"
#include "output/show_timer.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "ui/accessible.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/panes.h"
#include "ui/rich_lines.h"
#include "ui/subclass.h"
#include "ui/ui_state.h"

#include <richedit.h>

#include <utility>
#include <vector>

namespace {

constexpr unsigned kShutdownWaitMs = 1000;
constexpr int kHeadLines = 4;    // lines before the text of the feed
constexpr int kSideMargin = 6;   // left and right of the text, at 96 dpi
constexpr UINT kSettleMs = 250;  // after the last change of the width
// A text of so many lines is shown again instead of getting another format as it stands, which takes 1.4 ms for each line
// under Wine: 10,000 lines stopped the window for 14 s.
constexpr std::size_t kManyLines = 200;

struct AsmPane {
    OutputQueue queue;
    AsmFeedPtr feed;  // null: no worker makes text
    AsmScroll scroll;
    BlockSize block = {.lines = 100};  // small, because the first block is painted with the whole pane
    std::wstring source, listing;      // whose code is shown; empty: none
    bool bytes = true;                 // with the bytes of the instructions
};
AsmPane g_asm;

void QueueAsmText(std::wstring text) {
    if (!text.empty()) g_asm.queue.chunks.push_back({.text = std::move(text)});
}

void TakeFromFeed() {
    if (g_asm.feed == nullptr) return;
    std::deque<std::wstring> pieces;
    const bool more = AsmFeedTake(*g_asm.feed, &pieces);
    if (const int place = AsmFeedPlace(*g_asm.feed); place >= 0) g_asm.scroll.place = place + kHeadLines;
    if (!more) g_asm.feed = nullptr;
    for (std::wstring& piece : pieces) QueueAsmText(std::move(piece));
}

AsmRequest RequestWithCaret(const wchar_t* source, const wchar_t* listing) {
    AsmRequest request = AsmRequestOf(LastBuild(), source, listing);
    if (!IsTabIndex(g_documents.activeTab)) return request;
    request.caretFile = TabAt(g_documents.activeTab).path;
    const LRESULT caret = SciSend(g_documents.hEditor, SCI_GETCURRENTPOS);
    request.caretLine =
        static_cast<int>(SciSend(g_documents.hEditor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(caret))) + 1;
    return request;
}

// Appends lines and restores the scroll position, because inserting text scrolls to it. The line for the caret can
// become the top line only when enough lines follow it.
void AppendInPlace(const std::vector<PaneLine>& block) {
    HWND pane = g_disasm.hAsmPane;
    const LRESULT before = SendMessageW(pane, EM_GETFIRSTVISIBLELINE, 0, 0);
    RichLinesAppend(pane, block);
    g_asm.scroll.lines += block.size();
    const LRESULT wanted = AsmTopLine(g_asm.scroll, before);
    if (wanted == 0) {
        POINT top = {};  // set in pixels, because scrolling by lines would stop within the first line
        SendMessageW(pane, EM_SETSCROLLPOS, 0, reinterpret_cast<LPARAM>(&top));
        return;
    }
    const LRESULT after = SendMessageW(pane, EM_GETFIRSTVISIBLELINE, 0, 0);
    if (after != wanted) SendMessageW(pane, EM_LINESCROLL, 0, wanted - after);
    if (before == g_asm.scroll.top) g_asm.scroll.top = SendMessageW(pane, EM_GETFIRSTVISIBLELINE, 0, 0);
}

// What of the pane's text is visible: lines from 0, the last one perhaps in part.
struct Sight {
    LRESULT first;
    LRESULT last;
    LRESULT lines;  // in the pane
};

Sight PresentSight() {
    HWND pane = g_disasm.hAsmPane;
    RECT client = {};
    GetClientRect(pane, &client);
    POINTL bottom = {0, client.bottom};
    const LRESULT character = SendMessageW(pane, EM_CHARFROMPOS, 0, reinterpret_cast<LPARAM>(&bottom));
    return {.first = SendMessageW(pane, EM_GETFIRSTVISIBLELINE, 0, 0),
            .last = SendMessageW(pane, EM_EXLINEFROMCHAR, 0, character),
            .lines = SendMessageW(pane, EM_GETLINECOUNT, 0, 0)};
}

// What a line of so many characters takes, beside it the margins and the scroll bar.
int WidthFor(int characters) {
    return characters * UiSizes().fixedWidth + 2 * UiScaled(kSideMargin) + UiMetric(SM_CXVSCROLL);
}

LRESULT CALLBACK AsmPaneProc(HWND pane, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    if (message == WM_KEYDOWN && wParam == VK_ESCAPE) FocusEditorFromPane();
    // The main window shows the menu.
    if (message == WM_CONTEXTMENU) return SendMessageW(g_ui.hMainWnd, message, reinterpret_cast<WPARAM>(pane), lParam);
    return SubclassNext(pane, message, wParam, lParam);
}

// The bytes are left out where they would push the instructions out of sight.
bool HasRoomForBytes() {
    RECT place = {};
    GetWindowRect(g_disasm.hAsmPane, &place);
    return place.right - place.left >= WidthFor(kAsmCharactersWithBytes);
}

}  // namespace

void AsmPaneInit(HWND pane) {
    if (pane == nullptr) return;
    SubclassAdd(pane, AsmPaneProc);
    AccessibleNameSet(pane, L"ASM");  // again after the pane was replaced
}

int AsmPaneLeastWidth() { return WidthFor(kAsmCharacters); }

void AsmPaneOnPlaced() {
    if (!g_asm.source.empty() && HasRoomForBytes() != g_asm.bytes)
        SetTimer(g_ui.hMainWnd, TIMER_PANES, kSettleMs, nullptr);  // a bar may still be moving
}

void AsmPaneOnPanesTimer() {
    KillTimer(g_ui.hMainWnd, TIMER_PANES);
    if (g_asm.source.empty() || !PaneIsShown(PaneId::Asm) || HasRoomForBytes() == g_asm.bytes) return;
    AsmPaneLoad(std::wstring(g_asm.source).c_str(), std::wstring(g_asm.listing).c_str());
}

void AsmPaneClear() {
    if (g_asm.feed != nullptr) AsmFeedCancel(*g_asm.feed);
    HWND pane = RichPaneEmptied(g_disasm.hAsmPane, g_asm.scroll.lines);
    if (pane != g_disasm.hAsmPane) {
        ShowTimerStart();
        g_disasm.hAsmPane = pane;
        AsmPaneInit(pane);
        PaneApplyFontAndTheme(pane);
    }
    g_asm = {};
}

void AsmPaneLoad(const wchar_t* source, const wchar_t* listing) {
    if (g_disasm.hAsmPane == nullptr || !PaneIsShown(PaneId::Asm) || source == nullptr || listing == nullptr) return;
    AsmPaneClear();
    SendMessageW(g_disasm.hAsmPane, EM_SETUNDOLIMIT, 0, 0);
    SendMessageW(g_disasm.hAsmPane, EM_EXLIMITTEXT, 0, 0x7FFFFFFE);
    QueueAsmText(FormatW(Text(L"=== Assembly Output ===\r\nSource: %s\r\nASMOUT: %s\r\n\r\n"), source, listing));
    AsmRequest request = RequestWithCaret(source, listing);
    g_asm.source = source;
    g_asm.listing = listing;
    g_asm.bytes = request.bytes = HasRoomForBytes();
    if (FileExists(listing) && !IsBuildProduct(listing)) {
        QueueAsmText(FormatW(Text(L"(%s is no listing: no build of this editor has made it.)\r\n"), listing));
        request.listing.clear();
    }
    g_asm.feed = AsmFeedStart(std::move(request), AsmRender);
    if (g_asm.feed == nullptr) QueueAsmText(Text(L"(The listing cannot be read now: no thread could be started.)\r\n"));
    ShowTimerStart();
}

void AsmPaneApplyTheme() {
    if (g_asm.source.empty() || g_asm.scroll.lines < kManyLines) return PaneApplyFontAndTheme(g_disasm.hAsmPane);
    const std::wstring source = g_asm.source, listing = g_asm.listing;
    AsmPaneClear();
    PaneApplyFontAndTheme(g_disasm.hAsmPane);
    g_asm.source = source;  // a hidden pane is filled when it is shown
    g_asm.listing = listing;
    AsmPaneLoad(source.c_str(), listing.c_str());
}

void AsmPaneFillAgain() {
    const std::wstring source = g_asm.source, listing = g_asm.listing;
    if (!source.empty() && g_asm.scroll.lines == 0 && AsmPaneIsEmpty()) AsmPaneLoad(source.c_str(), listing.c_str());
}

void AsmPaneShowNext() {
    if (AsmPaneIsEmpty()) return;
    TakeFromFeed();
    std::vector<PaneLine> block;
    QueuedLine line;
    int chunksDone = 0;
    while (block.size() < g_asm.block.lines && OutputQueueNext(g_asm.queue, &line, &chunksDone))
        block.push_back({.text = std::move(line.text), .lineBreak = line.lineBreak});
    if (block.empty()) return;
    const double started = ClockMs();
    const Sight before = PresentSight();
    AppendInPlace(block);
    BlockSizeLearn(g_asm.block, block.size(), ClockMs() - started);
    // The frame is redrawn in any case, because a scroll bar that appeared while redrawing was off is not painted yet.
    // Text below what is visible changes only the scroll bar, and painting the text takes as long as the block.
    const bool below = before.last + 1 < before.lines && before.first == PresentSight().first;
    RECT client = {};
    GetClientRect(g_disasm.hAsmPane, &client);
    const RECT scrollBar = {client.right, 0, client.right + UiMetric(SM_CXVSCROLL), client.bottom};
    RedrawWindow(g_disasm.hAsmPane, below ? &scrollBar : nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME);
}

bool AsmPaneIsEmpty() { return g_asm.queue.chunks.empty() && g_asm.feed == nullptr; }

void AsmPaneShutdown() {
    if (g_asm.feed != nullptr) AsmFeedEnd(*g_asm.feed, kShutdownWaitMs);
    g_asm = {};
}
