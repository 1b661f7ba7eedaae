// The fields of the snippet that was inserted last. Fields of one number are selected together, so that Scintilla writes
// into all of them; an edit anywhere else ends the walk. UI thread.
#include "completion/snippet_fields.h"

#include "editor/editor_pane.h"
#include "ui/chrome.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

constexpr int kIndicator = 26;  // of Scintilla

struct Field {
    int number = 0;  // 0: where the caret is left
    LRESULT start = 0, end = 0;
};
struct FieldWalk {
    HWND editor = nullptr;  // null: no snippet is being filled in
    std::vector<Field> fields;
    int number = 0;      // of the fields with the caret
    bool going = false;  // the walk itself changes text or selection
    bool over = false;   // ends when the editor has settled
};
FieldWalk g_walk;

LRESULT Ask(HWND editor, UINT message, LRESULT wParam = 0, LRESULT lParam = 0) {
    return SciSend(editor, message, static_cast<WPARAM>(wParam), lParam);
}

bool IsActive(const Field& field) { return field.number == g_walk.number && field.number != 0; }

void EndWalk() {
    if (g_walk.editor != nullptr) {
        Ask(g_walk.editor, SCI_SETINDICATORCURRENT, kIndicator);
        Ask(g_walk.editor, SCI_INDICATORCLEARRANGE, 0, Ask(g_walk.editor, SCI_GETLENGTH));
    }
    g_walk = {};
}

// An empty field has no length to be marked in.
void MarkFields() {
    const HWND editor = g_walk.editor;
    Ask(editor, SCI_INDICSETSTYLE, kIndicator, INDIC_ROUNDBOX);
    Ask(editor, SCI_INDICSETFORE, kIndicator, static_cast<LRESULT>(ThemeCurrentChrome().accent));
    Ask(editor, SCI_INDICSETALPHA, kIndicator, 40);
    Ask(editor, SCI_INDICSETOUTLINEALPHA, kIndicator, 130);
    Ask(editor, SCI_INDICSETUNDER, kIndicator, TRUE);
    Ask(editor, SCI_SETINDICATORCURRENT, kIndicator);
    for (const Field& field : g_walk.fields)
        if (field.end > field.start) Ask(editor, SCI_INDICATORFILLRANGE, field.start, field.end - field.start);
}

void GoToFields(int number) {
    g_walk.going = true;
    g_walk.number = number;
    bool first = true;
    for (const Field& field : g_walk.fields) {
        if (field.number != number) continue;
        if (first)
            Ask(g_walk.editor, SCI_SETSELECTION, field.end, field.start);
        else
            Ask(g_walk.editor, SCI_ADDSELECTION, field.end, field.start);
        first = false;
    }
    Ask(g_walk.editor, SCI_SETMAINSELECTION, 0);
    Ask(g_walk.editor, SCI_SCROLLCARET);
    g_walk.going = false;
    if (number == 0) EndWalk();
}

// The number after that of the caret, or before it; 0 is the last.
int NumberBeside(bool forward) {
    int found = forward ? 0 : g_walk.number;
    for (const Field& field : g_walk.fields) {
        if (field.number == 0) continue;
        if (forward && field.number > g_walk.number && (found == 0 || field.number < found)) found = field.number;
        if (!forward && field.number < g_walk.number && (found == g_walk.number || field.number > found))
            found = field.number;
    }
    return found;
}

void OnInserted(LRESULT position, LRESULT length) {
    bool inside = false;
    for (Field& field : g_walk.fields) {
        if (IsActive(field) && position >= field.start && position <= field.end) {
            field.end += length;
            inside = true;
        } else if (position <= field.start) {
            field.start += length;
            field.end += length;
        }
    }
    g_walk.over = g_walk.over || !inside;
}

void OnDeleted(LRESULT position, LRESULT length) {
    bool inside = false;
    const LRESULT end = position + length;
    for (Field& field : g_walk.fields) {
        if (IsActive(field) && position >= field.start && end <= field.end) {
            field.end -= length;
            inside = true;
        } else if (end <= field.start) {
            field.start -= length;
            field.end -= length;
        } else if (position < field.end) {
            g_walk.over = true;  // a part of it is gone
        }
    }
    g_walk.over = g_walk.over || !inside;
}

void OnModified(const SCNotification& change) {
    if ((change.modificationType & SC_MOD_INSERTTEXT) != 0) OnInserted(change.position, change.length);
    if ((change.modificationType & SC_MOD_DELETETEXT) != 0) OnDeleted(change.position, change.length);
}

// A click or a key has moved the caret: into another field, or away.
void OnSelection() {
    const LRESULT caret = Ask(g_walk.editor, SCI_GETCURRENTPOS);
    const auto holds = [caret](const Field& field) {
        return field.number != 0 && caret >= field.start && caret <= field.end;
    };
    if (std::ranges::any_of(g_walk.fields, [&](const Field& field) { return IsActive(field) && holds(field); })) return;
    const auto other = std::ranges::find_if(g_walk.fields, holds);
    if (other == g_walk.fields.end()) return EndWalk();
    g_walk.number = other->number;
}

bool IsDown(int key) { return GetKeyState(key) < 0; }

SnippetForm FormAt(HWND editor, LRESULT position, bool lowerCase) {
    const LRESULT line = Ask(editor, SCI_LINEFROMPOSITION, position);
    const LRESULT lineStart = Ask(editor, SCI_POSITIONFROMLINE, line);
    const LRESULT indent = Ask(editor, SCI_GETINDENT);
    const LRESULT step = indent > 0 ? indent : Ask(editor, SCI_GETTABWIDTH);
    const LRESULT mode = Ask(editor, SCI_GETEOLMODE);
    return {.indentation = EditorPaneTextBetween(editor, lineStart,
                                                 std::min(Ask(editor, SCI_GETLINEINDENTPOSITION, line), position)),
            .step = Ask(editor, SCI_GETUSETABS) != 0 ? "\t" : std::string(static_cast<std::size_t>(step), ' '),
            .lineBreak = mode == SC_EOL_LF   ? "\n"
                         : mode == SC_EOL_CR ? "\r"
                                             : "\r\n",
            .lowerCase = lowerCase};
}

}  // namespace

void SnippetInsert(HWND editor, LRESULT start, LRESULT end, const Snippet& snippet, bool lowerCase) {
    EndWalk();
    const SnippetText made = SnippetTextOf(snippet, FormAt(editor, start, lowerCase));
    Ask(editor, SCI_BEGINUNDOACTION);
    Ask(editor, SCI_SETTARGETRANGE, start, end);
    SciSend(editor, SCI_REPLACETARGET, made.text.size(), reinterpret_cast<LPARAM>(made.text.data()));
    Ask(editor, SCI_ENDUNDOACTION);
    g_walk.editor = editor;
    for (const SnippetField& field : made.fields)
        g_walk.fields.push_back(
            {field.number, start + static_cast<LRESULT>(field.start), start + static_cast<LRESULT>(field.end)});
    MarkFields();
    GoToFields(NumberBeside(true));
    // The body comes into sight too, as far as there is room; the caret's field comes first.
    Ask(editor, SCI_SCROLLRANGE, start + static_cast<LRESULT>(made.text.size()), Ask(editor, SCI_GETCURRENTPOS));
}

bool SnippetTakesKey(HWND editor, WPARAM key) {
    if (g_walk.editor != editor || g_walk.over || IsDown(VK_CONTROL) || IsDown(VK_MENU)) return false;
    switch (key) {
        case VK_TAB: GoToFields(NumberBeside(!IsDown(VK_SHIFT))); return true;
        case VK_RETURN:
            if (IsDown(VK_SHIFT)) return false;
            GoToFields(0);
            return true;
        case VK_ESCAPE:
            Ask(editor, SCI_SETEMPTYSELECTION, Ask(editor, SCI_GETCURRENTPOS));
            EndWalk();
            return true;
        default: return false;
    }
}

void SnippetOnNotify(HWND editor, const SCNotification& notification) {
    if (g_walk.editor != editor || g_walk.going) return;
    if (notification.nmhdr.code == SCN_MODIFIED) OnModified(notification);
    if (notification.nmhdr.code != SCN_UPDATEUI) return;
    if (g_walk.over)
        EndWalk();
    else if ((notification.updated & SC_UPDATE_SELECTION) != 0)
        OnSelection();
}

void SnippetForget(HWND editor) {
    if (g_walk.editor == editor) g_walk = {};
}
