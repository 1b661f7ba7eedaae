// The table of panes, and the panes that no other folder creates: output, terminal, ASM. UI thread.
#include "app/panes.h"

#include "ai/ai_pane.h"
#include "app/app_state.h"
#include "app/pane_titles.h"
#include "base/log.h"
#include "base/texts.h"
#include "compile/terminal.h"
#include "debugui/debug_pane.h"
#include "disasm/asm_pane.h"
#include "files/file_io.h"
#include "output/last_build.h"
#include "output/output_pane.h"
#include "project/project_tree.h"
#include "resources/ids.h"
#include "search/files_search.h"
#include "symbols/outline_pane.h"
#include "ui/accessible.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/rich_lines.h"
#include "ui/subclass.h"

#include <commctrl.h>

#include <iterator>

namespace {

constexpr const wchar_t* kAsmGreeting =
    English(L"ASM output will appear here after compilation.\r\nToggle via View > ASM Pane or the toolbar button.");

HWND CreateOutput(HWND parent, int controlId) {
    const HWND pane = RichPaneCreate(parent, controlId, nullptr, false);
    OutputPaneInit(pane);
    return pane;
}

void ApplyOutputTheme() {
    OutputPaneApplyFont();
    RichScrollToLeft(g_app.hOutput);
}

HWND CreateTerminal(HWND parent, int controlId) {
    const HWND line =
        CreateWindowExW(WS_EX_CLIENTEDGE, WC_EDITW, nullptr, WS_CHILD | WS_CLIPSIBLINGS | ES_AUTOHSCROLL, 0, 0, 0, 0,
                        parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(controlId)), g_app.hInstance, nullptr);
    if (line == nullptr) return nullptr;
    SubclassAdd(line, TerminalSubclassProc);
    return line;
}

void ApplyTerminalTheme() {
    SendMessageW(g_app.hTerminal, WM_SETFONT, reinterpret_cast<WPARAM>(UiStockFont()), FALSE);
    TerminalShowCue();
    ControlApplyTheme(g_app.hTerminal);
}

void FocusTerminal() { SetFocus(g_app.hTerminal); }  // it was opened to type a command

HWND CreateAsmPane(HWND parent, int controlId) {
    const HWND pane = RichPaneCreate(parent, controlId, Text(kAsmGreeting), false);
    AsmPaneInit(pane);
    return pane;
}

void ApplyAsmTheme() {
    AsmPaneApplyTheme();
    RichScrollToLeft(g_app.hAsmPane);
}

// Until the user has chosen a width for the panes at the side, the first listing gets one that does not cut it.
void WidenForAsm() {
    const int least = UiUnscaled(AsmPaneLeastWidth());
    RECT client = {};
    GetClientRect(g_app.hMainWnd, &client);
    const bool room = AsmPaneLeastWidth() * 3 <= client.right && !PaneIsShown(PaneId::Ai);
    if (!room || g_app.settings.aiSidebarWidth != kFirstSideWidth || least <= kFirstSideWidth) return;
    SettingsChange([least](Settings& settings) { settings.aiSidebarWidth = ClampSideWidth(least); });
}

// Loads the listing of the last build when that wrote a listing or a program. Otherwise the pane keeps its text.
void LoadAsmPane() {
    WidenForAsm();
    const BuildRecord& last = LastBuild();
    if (!last.source.empty() && (FileExists(last.listing.c_str()) || FileExists(last.output.c_str())))
        AsmPaneLoad(last.source.c_str(), last.listing.c_str());
    else
        AsmPaneFillAgain();
}

constexpr PaneSpec kPanes[] = {
    {.id = PaneId::Output,
     .title = English(L"Output"),
     .area = PaneArea::Bottom,
     .controlId = IDC_OUTPUT,
     .window = &g_app.hOutput,
     .create = CreateOutput,
     .applyTheme = ApplyOutputTheme,
     .hasTitle = true,
     .comesBack = true,
     .command = IDM_VIEW_OUTPUT},
    {.id = PaneId::ErrorList,
     .title = English(L"Error List"),
     .area = PaneArea::BelowBottom,
     .controlId = IDC_ERROR_LIST,
     .window = &g_app.hErrorList,
     .create = ErrorListCreate,
     .lazy = true,
     .applyTheme = ErrorListApplyTheme,
     .setting = &Settings::showErrorList,
     .hasTitle = true,
     .comesBack = true,
     .height = &Settings::errorListHeight,
     .command = IDM_VIEW_ERROR_LIST,
     .handleNotify = ErrorListHandleNotify},
    {.id = PaneId::Terminal,
     .title = English(L"Terminal"),
     .area = PaneArea::BelowBottom,
     .controlId = IDC_TERMINAL,
     .window = &g_app.hTerminal,
     .create = CreateTerminal,
     .applyTheme = ApplyTerminalTheme,
     .setting = &Settings::showTerminal,
     .hasTitle = true,
     .command = IDM_VIEW_TERMINAL,
     .onShown = FocusTerminal},
    {.id = PaneId::Debug,
     .title = English(L"Debug"),
     .area = PaneArea::BottomRight,
     .controlId = IDC_DEBUG_PANE,
     .window = &g_app.hDebugPane,
     .create = DebugPaneCreate,
     .lazy = true,
     .applyTheme = DebugPaneApplyTheme,
     .hasTitle = true,
     .comesBack = true,
     .command = IDM_VIEW_DEBUG_PANE},
    {.id = PaneId::Asm,
     .title = L"ASM",
     .area = PaneArea::Right,
     .controlId = IDC_ASM,
     .window = &g_app.hAsmPane,
     .create = CreateAsmPane,
     .applyTheme = ApplyAsmTheme,
     .hasTitle = true,
     .comesBack = true,
     .command = IDM_VIEW_ASM,
     .onShown = LoadAsmPane},
    {.id = PaneId::Ai,
     .title = English(L"AI Chat"),
     .area = PaneArea::Right,
     .controlId = IDC_AI_CHAT,
     .window = &g_app.hAiChat,
     .create = AiPaneCreate,
     .applyTheme = AiPaneApplyTheme,
     .setting = &Settings::showAiSidebar,
     .hasTitle = true,
     .command = IDM_VIEW_AI,
     .onShown = AiPaneFocusInput,
     .parts = AiPaneParts},
    {.id = PaneId::Tree,
     .title = English(L"Project"),
     .area = PaneArea::Left,
     .controlId = IDC_PROJECT_TREE,
     .window = &g_app.hProjectTree,
     .create = ProjectTreeCreate,
     .applyTheme = ProjectTreeApplyTheme,
     .setting = &Settings::showProjectTree,
     .hasTitle = true,
     .command = IDM_VIEW_TREE,
     .handleNotify = ProjectTreeHandleNotify},
    {.id = PaneId::FilesResults,
     .title = English(L"Search Results"),
     .area = PaneArea::Bottom,
     .controlId = IDC_FILES_PANE,
     .window = &g_app.hFilesPane,
     .create = FilesPaneCreate,
     .lazy = true,
     .applyTheme = FilesPaneApplyTheme,
     .hasTitle = true,
     .comesBack = true,
     .command = IDM_VIEW_FILES_RESULTS,
     .onShown = FilesPaneFocus},
    {.id = PaneId::Outline,
     .title = English(L"Outline"),
     .area = PaneArea::Left,
     .controlId = IDC_OUTLINE_PANE,
     .window = &g_app.hOutline,
     .create = OutlinePaneCreate,
     .lazy = true,
     .applyTheme = OutlinePaneApplyTheme,
     .setting = &Settings::showOutline,
     .hasTitle = true,
     .command = IDM_VIEW_OUTLINE,
     .onShown = OutlinePaneFocus},
};

constexpr bool PanesAreInOrder() {
    for (std::size_t i = 0; i < std::size(kPanes); ++i)
        if (PaneIndex(kPanes[i].id) != i) return false;
    return std::size(kPanes) == kPaneCount;
}
static_assert(PanesAreInOrder(), "one row for each PaneId, in its order");

void CreatePane(const PaneSpec& pane) {
    *pane.window = pane.create(g_app.hMainWnd, pane.controlId);
    if (*pane.window == nullptr) AppLogMsg(L"FAIL: pane %s error=%lu", pane.title, GetLastError());
    AccessibleNameSet(*pane.window, Text(pane.title));
}

}  // namespace

void ConnectPanes() { PanesConnect(kPanes); }

void CreatePaneOf(PaneId id) { CreatePane(kPanes[PaneIndex(id)]); }

void CreateWantedPanes() {
    for (const PaneSpec& pane : Panes())
        if (*pane.window == nullptr && pane.lazy && PaneIsShown(pane.id)) CreatePane(pane);
}

void ThemePanes() {
    for (const PaneSpec& pane : Panes())
        if (*pane.window != nullptr && pane.applyTheme != nullptr) pane.applyTheme();
}

std::array<PaneWish, kPaneCount> PaneWishes() {
    std::array<PaneWish, kPaneCount> wishes;
    const int line = UiScaled(kLineHeight) + PaneTitleHeight();
    for (const PaneSpec& pane : Panes())
        wishes[PaneIndex(pane.id)] = {.area = pane.area,
                                      .shown = *pane.window != nullptr && PaneIsShown(pane.id),
                                      .height = pane.height != nullptr ? UiScaled(g_app.settings.*pane.height) : line,
                                      .hasTitle = pane.hasTitle,
                                      .hasBar = pane.height != nullptr};
    return wishes;
}

std::vector<PanePart> PaneParts(const PaneLayout& layout) {
    std::vector<PanePart> parts;
    for (const PaneSpec& pane : Panes()) {
        const PaneRect& area = layout.pane(pane.id);
        const std::vector<PanePart> own =
            pane.parts != nullptr ? pane.parts(area) : std::vector<PanePart>{{*pane.window, area}};
        parts.insert(parts.end(), own.begin(), own.end());
    }
    return parts;
}

bool NotifyPanes(const NMHDR& header, LRESULT* result) {
    for (const PaneSpec& pane : Panes())
        if (pane.handleNotify != nullptr && pane.handleNotify(header, result)) return true;
    return false;
}
