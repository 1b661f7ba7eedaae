// Ctrl and the mouse: the word under it is underlined when its definition is known, and a click goes there. UI thread.
#include "symbols/symbol_commands.h"

#include "documents/document_row.h"
#include "scintilla/sci.h"
#include "symbols/symbol_index.h"
#include "ui/chrome.h"
#include "ui/subclass.h"

#include <windowsx.h>

namespace {

constexpr int kIndicator = 24;  // of Scintilla; those from 8 on are free for the program

struct Link {
    HWND editor = nullptr;
    LRESULT start = 0, end = 0;  // empty: nothing is underlined
    LRESULT asked = -1;          // the position that was looked at last
};
Link g_link;

void ClearLink() {
    if (g_link.editor != nullptr && g_link.end > g_link.start) {
        SciSend(g_link.editor, SCI_SETINDICATORCURRENT, kIndicator);
        SciSend(g_link.editor, SCI_INDICATORCLEARRANGE, 0, SciSend(g_link.editor, SCI_GETLENGTH));
    }
    g_link = {};
}

LRESULT PositionAt(HWND editor, LPARAM point) {
    return SciSend(editor, SCI_CHARPOSITIONFROMPOINTCLOSE, static_cast<WPARAM>(GET_X_LPARAM(point)),
                   GET_Y_LPARAM(point));
}

// Looks once for each position, however often the mouse moves on it.
void FollowMouse(HWND editor, LPARAM point) {
    const LRESULT position = PositionAt(editor, point);
    if (g_link.editor == editor && g_link.asked == position) return;
    const bool same = g_link.editor == editor && position >= g_link.start && position < g_link.end;
    if (same) return;
    ClearLink();
    g_link.editor = editor;
    g_link.asked = position;
    LRESULT start = 0, end = 0;
    if (position < 0 || editor != g_documents.hEditor || !HasDefinition(position, &start, &end)) return;
    g_link.start = start;
    g_link.end = end;
    SciSend(editor, SCI_INDICSETSTYLE, kIndicator, INDIC_PLAIN);
    SciSend(editor, SCI_INDICSETFORE, kIndicator, static_cast<LPARAM>(ThemeCurrentChrome().accent));
    SciSend(editor, SCI_SETINDICATORCURRENT, kIndicator);
    SciSend(editor, SCI_INDICATORFILLRANGE, static_cast<WPARAM>(start), end - start);
}

bool OnlyControl(WPARAM keys) {
    return (keys & MK_CONTROL) != 0 && (keys & MK_SHIFT) == 0 && GetKeyState(VK_MENU) >= 0;
}

LRESULT CALLBACK LinksProc(HWND editor, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    switch (message) {
        case WM_MOUSEMOVE:
            if (OnlyControl(wParam) && (wParam & MK_LBUTTON) == 0)
                FollowMouse(editor, lParam);
            else if (g_link.editor != nullptr)
                ClearLink();
            break;
        case WM_LBUTTONDOWN:
            if (OnlyControl(wParam)) {
                FollowMouse(editor, lParam);
                const LRESULT start = g_link.start;
                const bool link = g_link.end > g_link.start;
                ClearLink();
                if (link) {
                    SetFocus(editor);
                    GoToDefinition(start);
                    return 0;
                }
            }
            break;
        case WM_CHAR:
        case WM_KEYUP:
        case WM_KILLFOCUS:
            if (g_link.editor != nullptr) ClearLink();
            break;
        case WM_NCDESTROY:
            if (g_link.editor == editor) g_link = {};
            break;
        default: break;
    }
    return SubclassNext(editor, message, wParam, lParam);
}

}  // namespace

void DefinitionLinksAttach(HWND editor) { SubclassAdd(editor, LinksProc); }
