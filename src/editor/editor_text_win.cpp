// Reads and replaces the whole text of a pane as UTF-8 bytes, NULs included. Knows no file and no encoding. UI thread.
#include "editor/editor_pane.h"

#include "editor/pane_rules.h"
#include "editor/pane_settings.h"
#include "editor/pane_state.h"
#include "scintilla/sci.h"

#include <cstdlib>
#include <cstring>

char* EditorPaneGetText(HWND editor, std::size_t* length) {
    if (length != nullptr) *length = 0;
    const LRESULT bytes = SciSend(editor, SCI_GETLENGTH, 0, 0);
    if (bytes < 1) return static_cast<char*>(std::calloc(1, 1));
    const std::size_t size = static_cast<std::size_t>(bytes);
    char* text = static_cast<char*>(std::malloc(size + 1));
    if (text == nullptr) return nullptr;
    SciSend(editor, SCI_GETTEXT, size + 1, reinterpret_cast<LPARAM>(text));
    text[size] = '\0';
    if (length != nullptr) *length = size;
    return text;
}

std::string EditorPaneTextBetween(HWND editor, LRESULT start, LRESULT end) {
    if (end <= start) return {};
    std::string text(static_cast<std::size_t>(end - start) + 1, '\0');  // Scintilla adds a NUL
    Sci_TextRangeFull range = {{start, end}, text.data()};
    SciSend(editor, SCI_GETTEXTRANGEFULL, 0, reinterpret_cast<LPARAM>(&range));
    text.pop_back();
    return text;
}

void EditorPaneTakeBack(HWND editor) {
    PaneSend(editor, SCI_UNDO);
    if (PaneSend(editor, SCI_CANUNDO) == 0 && PaneSend(editor, SCI_GETMODIFY) == 0) {
        PaneSend(editor, SCI_EMPTYUNDOBUFFER);
        return;
    }
    // Scintilla forgets what could be redone when a step is added. This one changes nothing, forwards and backwards.
    PaneSend(editor, SCI_ADDUNDOACTION, 0, UNDO_NONE);
    PaneSend(editor, SCI_UNDO);
}

void EditorPaneSetText(HWND editor, const char* utf8) {
    if (utf8 == nullptr) return;
    EditorPaneSetBytes(editor, {utf8, std::strlen(utf8)});
}

void EditorPaneSetBytes(HWND editor, std::string_view utf8) {
    EditorPaneBeginLoad(editor, utf8.size());
    EditorPaneAppendLoad(editor, utf8);
    EditorPaneEndLoad(editor);
}

void EditorPaneBeginLoad(HWND editor, std::size_t expectedLength) {
    // The undo history is off, because it would hold a second copy of the old text and of the new one.
    SciSend(editor, SCI_SETMODEVENTMASK, SC_MOD_NONE, 0);
    SciSend(editor, SCI_SETUNDOCOLLECTION, FALSE, 0);
    SciSend(editor, SCI_CLEARALL, 0, 0);
    SciSend(editor, SCI_ALLOCATE, expectedLength + RoomBeyondText(expectedLength), 0);
}

void EditorPaneAppendLoad(HWND editor, std::string_view utf8) {
    if (!utf8.empty()) SciSend(editor, SCI_APPENDTEXT, utf8.size(), reinterpret_cast<LPARAM>(utf8.data()));
}

void EditorPaneSetDocument(HWND editor, void* document) {
    SciSend(editor, SCI_SETDOCPOINTER, 0, reinterpret_cast<LPARAM>(document));
    SciSend(editor, SCI_RELEASEDOCUMENT, 0, reinterpret_cast<LPARAM>(document));  // the pane holds it now
    EditorPaneSetUp(editor);  // the code page and others belong to the document
    EditorPaneEndLoad(editor);
}

void EditorPaneSetPlain(HWND editor, bool plain) {
    PaneState* const state = PaneStateOf(editor);
    if (state == nullptr) return;
    state->plain = plain;
    state->longLine = 0;
}

bool EditorPaneIsPlain(HWND editor) {
    const PaneState* state = PaneStateOf(editor);
    return state != nullptr && (state->plain || state->longLine > 0);
}

std::size_t EditorPaneLongLine(HWND editor) {
    const PaneState* state = PaneStateOf(editor);
    return state != nullptr ? state->longLine : 0;
}

void EditorPaneEndLoad(HWND editor) {
    SciSend(editor, SCI_EMPTYUNDOBUFFER, 0, 0);
    if (PaneState* state = PaneStateOf(editor); state != nullptr) {
        state->lineMarks = {};
        state->caretSteps = {};
    }
    SciSend(editor, SCI_SETUNDOCOLLECTION, TRUE, 0);
    SciSend(editor, SCI_SETMODEVENTMASK, kPaneEvents, 0);
    SciSend(editor, SCI_SETSAVEPOINT, 0, 0);
    EditorPaneClearChangeMarks(editor);
    if (PaneState* state = PaneStateOf(editor); state != nullptr) {
        state->sticky = {};
        state->assembly = {};
        EditorPaneUpdateLineMargin(editor);
        EditorColourRestart(editor);
    }
}
