// The editing pane: creating the Scintilla window, applying the settings to it, keeping its caret visible. Which
// colours and which lexer it gets is the language area's business. UI thread.
#include "documents/editor_pane.h"

#include "base/log.h"
#include "documents/margins.h"
#include "documents/pane_state.h"
#include "documents/theme.h"
#include "language/caret_colour.h"
#include "scintilla/sci.h"
#include "settings/settings_state.h"
#include "ui/dpi.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <functional>
#include <string_view>

namespace {

constexpr int kDwellTime = 500;  // ms that the mouse rests before a tip comes
constexpr DWORD kPaneStyle = WS_CHILD | WS_CLIPSIBLINGS | WS_CLIPCHILDREN | WS_TABSTOP;
constexpr DWORD kFallbackStyle = 0x44300144;  // child, clip siblings, scroll bars, multi-line, ES_NOHIDESEL
static_assert(kPaneStyle == 0x46010000);

constexpr int kInitialSize = 100;
constexpr int kEdgeColumn = 80;
constexpr COLORREF kEdgeColour = 0x808080;
constexpr COLORREF kChangeColour = 0x00C8FF;
constexpr int kVirtualSpace = 7;      // rectangular selection, user accessible, no wrap at the line start
constexpr int kLineMarginWidth = 50;  // pixels at 96 dpi
constexpr int kLineMarginPadding = 8;

// Sent by number: what it does is up to the version of Scintilla, which calls it SCI_MOVECARETINSIDEVIEW.
constexpr UINT kMoveCaretMessage = 2401;

int DigitsOf(LRESULT number) {
    int digits = 1;
    for (; number >= 10; number /= 10) ++digits;
    return digits;
}

// Sets a value only when it differs: most setters make Scintilla lay out and wrap the whole document again.
void SetIfDifferent(HWND editor, UINT get, UINT set, LRESULT value) {
    if (SciSend(editor, get, 0, 0) != value) SciSend(editor, set, static_cast<WPARAM>(value), 0);
}

}  // namespace

void EditorPaneSetUp(HWND editor) {
    SciSend(editor, SCI_SETCODEPAGE, SC_CP_UTF8, 0);
    // Only what the main window acts on is reported: a notification for each restyled or folded line would cost
    // more than the styling.
    SciSend(editor, SCI_SETMODEVENTMASK, SC_MOD_INSERTTEXT | SC_MOD_DELETETEXT, 0);
    SciSend(editor, SCI_SETCOMMANDEVENTS, FALSE, 0);
    SciSend(editor, SCI_SETLAYOUTCACHE, SC_CACHE_PAGE, 0);
    // What a paint needs is coloured by the pane before the paint, the rest by a timer in small slices.
    SciSend(editor, SCI_SETIDLESTYLING, SC_IDLESTYLING_NONE, 0);
    SciSend(editor, SCI_SETSCROLLWIDTH, 1, 0);
    SciSend(editor, SCI_SETSCROLLWIDTHTRACKING, TRUE, 0);
    SciSend(editor, SCI_SETFONTQUALITY, SC_EFF_QUALITY_LCD_OPTIMIZED, 0);
    SciSend(editor, SCI_SETMULTIPLESELECTION, TRUE, 0);
    SciSend(editor, SCI_SETADDITIONALSELECTIONTYPING, TRUE, 0);
    SciSend(editor, SCI_SETMULTIPASTE, SC_MULTIPASTE_EACH, 0);
    SciSend(editor, SCI_SETTABINDENTS, TRUE, 0);
    SciSend(editor, SCI_USEPOPUP, SC_POPUP_TEXT, 0);
    SciSend(editor, SCI_SETMOUSEDWELLTIME, kDwellTime, 0);
}

HWND EditorPaneCreate(HINSTANCE instance, HWND parent, int controlId) {
    const HMENU id = reinterpret_cast<HMENU>(static_cast<INT_PTR>(controlId));
    HWND editor = CreateWindowExW(0, L"Scintilla", L"", kPaneStyle, 0, 0, kInitialSize, kInitialSize, parent, id,
                                  instance, nullptr);
    if (editor) {
        if (LogIsOpen())
            AppLogMsg(L"DBG EditorPaneCreate: Scintilla HWND=%p parent=%p id=%d", editor, parent, controlId);
        if (!EditorPaneInstallSubclass(editor)) AppLogMsg(L"FAIL: EditorPaneCreate: no subclass for %p", editor);
        EditorPaneSetUp(editor);
        UpdateWindow(editor);
        return editor;
    }
    AppLogMsg(L"DBG EditorPaneCreate: Scintilla failed, fallback to RichEdit");
    return CreateWindowExW(0, L"RICHEDIT50W", L"", kFallbackStyle, 0, 0, kInitialSize, kInitialSize, parent, id,
                           instance, nullptr);
}

void EditorPaneInit(HWND editor, std::uint32_t compilerId) {
    if (!editor) return;
    SyntaxThemeApplyDefault(editor, compilerId);
    EditorColourRestart(editor, 0);
    EditorPaneEnsureCaretVisible(editor);
}

void EditorPaneUpdateLineMargin(HWND editor) {
    int width = 0;
    if (g_settings.showLineNumbers) {
        width = UiScaled(kLineMarginWidth);
        const int digits = DigitsOf(SciSend(editor, SCI_GETLINECOUNT, 0, 0));
        // Wider only for what would not fit: more digits, a large font, a zoomed view.
        char sample[32] = {};
        std::fill_n(sample, digits, '9');
        const LRESULT needed = SciSend(editor, SCI_TEXTWIDTH, STYLE_LINENUMBER, reinterpret_cast<LPARAM>(sample));
        width = std::max(width, static_cast<int>(needed) + UiScaled(kLineMarginPadding));
    }
    if (SciSend(editor, SCI_GETMARGINWIDTHN, 0, 0) != width) SciSend(editor, SCI_SETMARGINWIDTHN, 0, width);
}

void EditorPaneCheckLineMargin(HWND editor) {
    PaneState* state = PaneStateOf(editor);
    if (!state || !g_settings.showLineNumbers) return;
    const LineMarginBasis basis = {.digits = DigitsOf(SciSend(editor, SCI_GETLINECOUNT)),
                                   .zoom = static_cast<int>(SciSend(editor, SCI_GETZOOM)),
                                   .fontSize = g_settings.fontSize,
                                   .font = std::hash<std::wstring_view>()(g_settings.fontName)};
    if (basis == state->lineMargin) return;
    state->lineMargin = basis;
    EditorPaneUpdateLineMargin(editor);
}

void EditorPaneApplySettings(HWND editor) {
    if (!editor) return;
    const Settings& settings = g_settings;
    // The setting has no lower limit; Scintilla has.
    if (settings.tabWidth > 0) SetIfDifferent(editor, SCI_GETTABWIDTH, SCI_SETTABWIDTH, settings.tabWidth);
    SetIfDifferent(editor, SCI_GETUSETABS, SCI_SETUSETABS, settings.useTabs ? 1 : 0);
    if (settings.tabWidth > 0) SetIfDifferent(editor, SCI_GETINDENT, SCI_SETINDENT, settings.tabWidth);
    SetIfDifferent(editor, SCI_GETZOOM, SCI_SETZOOM, settings.editorZoom);
    EditorPaneUpdateLineMargin(editor);

    SetIfDifferent(editor, SCI_GETEDGECOLUMN, SCI_SETEDGECOLUMN, settings.edgeColumn);
    SetIfDifferent(editor, SCI_GETEDGEMODE, SCI_SETEDGEMODE, settings.edgeColumn >= 1 ? EDGE_LINE : EDGE_NONE);
    // Overrides the column just set: the line stands at column 80 or not at all.
    ApplyEdgeLine(editor, settings.showEdgeLine != 0);
    ApplyChangeMargin(editor, settings.showChangeMargin != 0);
    ApplyVirtualSpace(editor, settings.enableVirtualSpace != 0);

    SetIfDifferent(editor, SCI_GETWRAPMODE, SCI_SETWRAPMODE, settings.wordWrap ? SC_WRAP_WORD : SC_WRAP_NONE);
    SetIfDifferent(editor, SCI_GETVIEWWS, SCI_SETVIEWWS, settings.showWhitespace ? SCWS_VISIBLEALWAYS : SCWS_INVISIBLE);
    SetIfDifferent(editor, SCI_GETINDENTATIONGUIDES, SCI_SETINDENTATIONGUIDES,
                   settings.showIndentGuides ? SC_IV_LOOKBOTH : SC_IV_NONE);
    EditorPaneEnsureCaretVisible(editor);
}

void EditorPaneEnsureCaretVisible(HWND editor) {
    if (!editor || !IsWindow(editor)) return;
    const LRESULT back = SciSend(editor, SCI_STYLEGETBACK, STYLE_DEFAULT, 0);
    SetIfDifferent(editor, SCI_GETCARETSTYLE, SCI_SETCARETSTYLE, CARETSTYLE_BLOCK);
    SetIfDifferent(editor, SCI_GETCARETFORE, SCI_SETCARETFORE,
                   static_cast<LRESULT>(CaretColourOn(static_cast<std::uint32_t>(back))));
    SetIfDifferent(editor, SCI_GETCARETWIDTH, SCI_SETCARETWIDTH, 4);
    SetIfDifferent(editor, SCI_GETCARETPERIOD, SCI_SETCARETPERIOD, 0);
    SetIfDifferent(editor, SCI_GETCARETLINEVISIBLE, SCI_SETCARETLINEVISIBLE, TRUE);
    SciSend(editor, kMoveCaretMessage, 0, 0);
    SciSend(editor, SCI_SCROLLCARET, 0, 0);
    const HWND focus = GetFocus();
    if (focus == editor) SciSend(editor, SCI_SETFOCUS, TRUE, 0);

    if (!LogIsOpen()) return;
    AppLogMsg(L"DBG CaretVisible: hSci=%p focus=%p width=%ld style=%ld period=%ld fore=0x%06lx back=0x%06lx", editor,
              focus, static_cast<long>(SciSend(editor, SCI_GETCARETWIDTH, 0, 0)),
              static_cast<long>(SciSend(editor, SCI_GETCARETSTYLE, 0, 0)),
              static_cast<long>(SciSend(editor, SCI_GETCARETPERIOD, 0, 0)),
              static_cast<long>(SciSend(editor, SCI_GETCARETFORE, 0, 0)), static_cast<long>(back));
}

void ApplyEdgeLine(HWND editor, bool on) {
    if (on) {
        SetIfDifferent(editor, SCI_GETEDGECOLUMN, SCI_SETEDGECOLUMN, kEdgeColumn);
        SetIfDifferent(editor, SCI_GETEDGECOLOUR, SCI_SETEDGECOLOUR, kEdgeColour);
    }
    SetIfDifferent(editor, SCI_GETEDGEMODE, SCI_SETEDGEMODE, on ? EDGE_LINE : EDGE_NONE);
}

void ApplyChangeMargin(HWND editor, bool on) {
    if (SciSend(editor, SCI_GETMARGINTYPEN, kMarginChanges, 0) != SC_MARGIN_BACK)
        SciSend(editor, SCI_SETMARGINTYPEN, kMarginChanges, SC_MARGIN_BACK);
    const int width = on ? UiScaled(4) : 0;
    if (SciSend(editor, SCI_GETMARGINWIDTHN, kMarginChanges, 0) != width)
        SciSend(editor, SCI_SETMARGINWIDTHN, kMarginChanges, width);
    if (!on) return;
    SciSend(editor, SCI_MARKERDEFINE, kMarkChange, SC_MARK_FULLRECT);
    SciSend(editor, SCI_MARKERSETBACK, kMarkChange, kChangeColour);
}

void MarkModifiedLine(HWND editor, int line) {
    if (!g_settings.showChangeMargin) return;
    // Marking a marked line would stack a second marker on it.
    if (SciSend(editor, SCI_MARKERGET, static_cast<WPARAM>(line), 0) & (1 << kMarkChange)) return;
    SciSend(editor, SCI_MARKERADD, static_cast<WPARAM>(line), kMarkChange);
}

void EditorPaneClearChangeMarks(HWND editor) { SciSend(editor, SCI_MARKERDELETEALL, kMarkChange, 0); }

void ApplyVirtualSpace(HWND editor, bool on) {
    SetIfDifferent(editor, SCI_GETVIRTUALSPACEOPTIONS, SCI_SETVIRTUALSPACEOPTIONS, on ? kVirtualSpace : 0);
}

void EditorPaneOnModified(HWND editor, const SCNotification& change) {
    if (!editor || !(change.modificationType & (SC_MOD_INSERTTEXT | SC_MOD_DELETETEXT))) return;
    const int line = static_cast<int>(SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(change.position), 0));
    if (change.linesAdded != 0 || (change.modificationType & (SC_MOD_INSERTTEXT | SC_PERFORMED_USER)))
        MarkModifiedLine(editor, line);
    StickyHeaderForget(editor, line, static_cast<int>(change.linesAdded));
    EditorColourRestart(editor, change.position);
}
