// The editing pane: creating the Scintilla window, applying the settings to it, keeping its caret visible. Colours and
// lexer are set in theme_win.cpp. UI thread.
#include "editor/editor_pane.h"

#include "base/log.h"
#include "editor/margins.h"
#include "editor/pane_rules.h"
#include "editor/pane_settings.h"
#include "editor/pane_state.h"
#include "editor/theme.h"
#include "language/caret_colour.h"
#include "scintilla/sci.h"
#include "settings/settings_state.h"
#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/late_size.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <functional>
#include <string_view>

namespace {

constexpr DWORD kPaneStyle = WS_CHILD | WS_CLIPSIBLINGS | WS_CLIPCHILDREN | WS_TABSTOP;
constexpr DWORD kFallbackStyle = 0x44300144;  // child, clip siblings, scroll bars, multi-line, ES_NOHIDESEL
static_assert(kPaneStyle == 0x46010000);

constexpr int kInitialSize = 100;             // pixels, until the layout places the pane
constexpr COLORREF kChangeColour = 0x00C8FF;  // 0xBBGGRR; not in the high-contrast mode
constexpr int kLineMarginWidth = 50;          // pixels at 96 dpi
constexpr int kLineMarginPadding = 8;         // pixels at 96 dpi

// Sent by its number. Scintilla's header names it SCI_MOVECARETINSIDEVIEW.
constexpr UINT kMoveCaretMessage = 2401;

void ApplyPaneSettings(HWND editor, const PaneSettings& settings) {
    for (const PaneSetting& setting : settings)
        if (SciSend(editor, setting.get) != setting.value)
            SciSend(editor, setting.set, static_cast<WPARAM>(setting.value));
}

bool CaretIsInView(HWND editor) {
    const LRESULT caret = SciSend(editor, SCI_GETCURRENTPOS);
    const LRESULT line =
        SciSend(editor, SCI_VISIBLEFROMDOCLINE,
                static_cast<WPARAM>(SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(caret))));
    const LRESULT first = SciSend(editor, SCI_GETFIRSTVISIBLELINE);
    return line >= first && line < first + SciSend(editor, SCI_LINESONSCREEN);
}

// A caret that the user has scrolled out of sight stays there, and so does the view: what is typed next belongs to the
// caret's place, and nobody expects another one because a window was closed by Esc.
bool CaretMayMove(HWND editor) {
    const PaneState* state = PaneStateOf(editor);
    return (state == nullptr || !state->pressing) && SciSend(editor, SCI_GETSELECTIONEMPTY) != 0 &&
           CaretIsInView(editor);
}

}  // namespace

void EditorPaneSetUp(HWND editor) {
    for (const EditorMessage& message : PaneSetUpMessages())
        PaneSend(editor, message.message, message.wParam, message.lParam);
}

HWND EditorPaneCreate(HINSTANCE instance, HWND parent, int controlId) {
    const HMENU id = reinterpret_cast<HMENU>(static_cast<INT_PTR>(controlId));
    HWND editor = CreateWindowExW(0, L"Scintilla", L"", kPaneStyle, 0, 0, kInitialSize, kInitialSize, parent, id,
                                  instance, nullptr);
    if (editor != nullptr) {
        if (LogIsOpen())
            AppLogMsg(L"DBG EditorPaneCreate: Scintilla HWND=%p parent=%p id=%d", editor, parent, controlId);
        if (!EditorPaneInstallSubclass(editor)) AppLogMsg(L"FAIL: EditorPaneCreate: no subclass for %p", editor);
        EditorPaneSetUp(editor);
        SizeLate(editor, SizeWaits::Never);
        UpdateWindow(editor);
        return editor;
    }
    AppLogMsg(L"DBG EditorPaneCreate: Scintilla failed, fallback to RichEdit");
    return CreateWindowExW(0, L"RICHEDIT50W", L"", kFallbackStyle, 0, 0, kInitialSize, kInitialSize, parent, id,
                           instance, nullptr);
}

void EditorPaneInit(HWND editor, std::uint32_t compilerId) {
    if (editor == nullptr) return;
    SyntaxThemeApplyDefault(editor, compilerId);
    EditorColourRestart(editor);
    EditorPaneEnsureCaretVisible(editor);
}

StickyCache* EditorPaneStickyCache(HWND editor) {
    PaneState* const state = PaneStateOf(editor);
    return state != nullptr ? &state->sticky : nullptr;
}

void EditorPaneUpdateLineMargin(HWND editor) {
    int width = 0;
    if (g_settings.showLineNumbers) {
        width = UiScaled(kLineMarginWidth);
        const int digits = DecimalDigits(SciSend(editor, SCI_GETLINECOUNT, 0, 0));
        // The margin gets wider only when the number would not fit: more digits, a large font, a zoomed view.
        char sample[32] = {};
        std::fill_n(sample, digits, '9');
        const LRESULT needed = SciSend(editor, SCI_TEXTWIDTH, STYLE_LINENUMBER, reinterpret_cast<LPARAM>(sample));
        width = std::max(width, static_cast<int>(needed) + UiScaled(kLineMarginPadding));
    }
    if (SciSend(editor, SCI_GETMARGINWIDTHN, 0, 0) != width) SciSend(editor, SCI_SETMARGINWIDTHN, 0, width);
}

void EditorPaneCheckLineMargin(HWND editor) {
    PaneState* state = PaneStateOf(editor);
    if (state == nullptr || !g_settings.showLineNumbers) return;
    const LineMarginBasis basis = {.digits = DecimalDigits(SciSend(editor, SCI_GETLINECOUNT)),
                                   .zoom = static_cast<int>(SciSend(editor, SCI_GETZOOM)),
                                   .fontSize = g_settings.fontSize,
                                   .font = std::hash<std::wstring_view>()(g_settings.fontName),
                                   .dpi = g_ui.dpi};
    if (basis == state->lineMargin) return;
    state->lineMargin = basis;
    EditorPaneUpdateLineMargin(editor);
}

void EditorPaneApplySettings(HWND editor) {
    if (editor == nullptr) return;
    ApplyPaneSettings(editor, PaneSettingsOf(g_settings, EditorPaneIsPlain(editor)));
    EditorPaneUpdateLineMargin(editor);  // after the zoom, because its width depends on it
    ApplyChangeMargin(editor, g_settings.showChangeMargin != 0);
    EditorPaneEnsureCaretVisible(editor);
}

void EditorPaneEnsureCaretVisible(HWND editor) {
    if (editor == nullptr || !IsWindow(editor)) return;
    const LRESULT back = SciSend(editor, SCI_STYLEGETBACK, STYLE_DEFAULT, 0);
    ApplyPaneSettings(editor, CaretSettings(CaretColourOn(static_cast<std::uint32_t>(back))));
    if (CaretMayMove(editor)) {
        SciSend(editor, kMoveCaretMessage, 0, 0);
        SciSend(editor, SCI_SCROLLCARET, 0, 0);
    }
    const HWND focus = GetFocus();
    if (focus == editor) SciSend(editor, SCI_SETFOCUS, TRUE, 0);

    if (!LogIsOpen()) return;
    AppLogMsg(L"DBG CaretVisible: hSci=%p focus=%p width=%ld style=%ld period=%ld fore=0x%06lx back=0x%06lx", editor,
              focus, static_cast<long>(SciSend(editor, SCI_GETCARETWIDTH, 0, 0)),
              static_cast<long>(SciSend(editor, SCI_GETCARETSTYLE, 0, 0)),
              static_cast<long>(SciSend(editor, SCI_GETCARETPERIOD, 0, 0)),
              static_cast<long>(SciSend(editor, SCI_GETCARETFORE, 0, 0)), static_cast<long>(back));
}

void ApplyEdgeLine(HWND editor, bool on) { ApplyPaneSettings(editor, EdgeLineSettings(on)); }

void ApplyChangeMargin(HWND editor, bool on) {
    if (SciSend(editor, SCI_GETMARGINTYPEN, kMarginChanges, 0) != SC_MARGIN_BACK)
        SciSend(editor, SCI_SETMARGINTYPEN, kMarginChanges, SC_MARGIN_BACK);
    const int width = on ? UiScaled(4) : 0;
    if (SciSend(editor, SCI_GETMARGINWIDTHN, kMarginChanges, 0) != width)
        SciSend(editor, SCI_SETMARGINWIDTHN, kMarginChanges, width);
    if (!on) return;
    SciSend(editor, SCI_MARKERDEFINE, kMarkChange, SC_MARK_FULLRECT);
    const COLORREF colour = SystemHighContrast() ? ThemeCurrentChrome().modified : kChangeColour;
    SciSend(editor, SCI_MARKERSETBACK, kMarkChange, static_cast<LPARAM>(colour));
}

void MarkModifiedLine(HWND editor, int line) {
    if (!g_settings.showChangeMargin) return;
    // SCI_MARKERADD on a marked line would add a second marker.
    if (SciSend(editor, SCI_MARKERGET, static_cast<WPARAM>(line), 0) & (1 << kMarkChange)) return;
    SciSend(editor, SCI_MARKERADD, static_cast<WPARAM>(line), kMarkChange);
}

void EditorPaneClearChangeMarks(HWND editor) { SciClearMarker(editor, kMarkChange); }

void ApplyVirtualSpace(HWND editor, bool on) { ApplyPaneSettings(editor, VirtualSpaceSettings(on)); }

void EditorPaneShowPlainness(HWND editor) {
    const PaneState* const state = PaneStateOf(editor);
    if (state == nullptr || !state->compilerId) return;  // EditorPaneInit comes yet
    if (EditorPaneIsPlain(editor)) SciSend(editor, SCI_FOLDALL, SC_FOLDACTION_EXPAND);
    SyntaxThemeApplyDefault(editor, *state->compilerId);
    ApplyPaneSettings(editor, PaneSettingsOf(g_settings, EditorPaneIsPlain(editor)));
    EditorColourRestart(editor);
}

void EditorPaneOnModified(HWND editor, const SCNotification& change) {
    if (editor == nullptr) return;
    CaretStepsOnModified(editor, change);
    if ((change.modificationType & SC_MOD_CONTAINER) != 0)
        LineMarksOnUndo(editor, static_cast<int>(change.token), (change.modificationType & SC_PERFORMED_UNDO) != 0);
    if (!(change.modificationType & (SC_MOD_INSERTTEXT | SC_MOD_DELETETEXT))) return;
    const int line = static_cast<int>(SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(change.position), 0));
    EditorPaneCheckLongLine(editor, change, line);
    if (change.linesAdded != 0 || (change.modificationType & (SC_MOD_INSERTTEXT | SC_PERFORMED_USER)))
        MarkModifiedLine(editor, line);
    if (StickyCache* const cache = EditorPaneStickyCache(editor); cache != nullptr)
        StickyForget(*cache, line, static_cast<int>(change.linesAdded));
    EditorPaneForgetAssembly(editor, line);
    const bool inserts = (change.modificationType & SC_MOD_INSERTTEXT) != 0;
    EditorColourOnChange(editor, change.position, inserts ? change.length : 0, inserts ? 0 : change.length);
}
