// One editing pane: a Scintilla window hosted for a tab. UI thread only.
#pragma once

#include "scintilla/sci.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

// A new hidden pane (Rich Edit when Scintilla refuses), or null. The parent owns it.
HWND EditorPaneCreate(HINSTANCE instance, HWND parent, int controlId);

// Theme and lexer of the compiler's dialect, then a visible caret.
void EditorPaneInit(HWND editor, std::uint32_t compilerId);

// Applies the [Editor] settings: tabs, margins, edge line, change margin, virtual space, zoom, wrap, whitespace.
void EditorPaneApplySettings(HWND editor);

// A new NUL-terminated UTF-8 copy of the document that the caller frees with free(); null when memory runs out.
// `length` (may be null) gets the bytes without the terminator; the text may hold NUL bytes.
char* EditorPaneGetText(HWND editor, std::size_t* length);

// Replaces the document; nothing to undo and unmodified afterwards. NUL-terminated, or any bytes with a length.
void EditorPaneSetText(HWND editor, const char* utf8);
void EditorPaneSetBytes(HWND editor, std::string_view utf8);
// The same in pieces, for texts too large to hold twice: begin, any number of appends, end.
void EditorPaneBeginLoad(HWND editor, std::size_t expectedLength);
void EditorPaneAppendLoad(HWND editor, std::string_view utf8);
void EditorPaneEndLoad(HWND editor);

void EditorPaneEnsureCaretVisible(HWND editor);

// Change marks, edge line, virtual space.
void ApplyEdgeLine(HWND editor, bool on);
void ApplyChangeMargin(HWND editor, bool on);
void MarkModifiedLine(HWND editor, int line);
void ApplyVirtualSpace(HWND editor, bool on);
void EditorPaneClearChangeMarks(HWND editor);

// The nearest enclosing procedure line above the caret into the label window.
void UpdateStickyHeader(HWND editor, HWND label);
// WM_DRAWITEM of the label. True when the item is the label.
bool StickyHeaderDraw(const DRAWITEMSTRUCT& item);
// That line's text, cut to fit; empty without one. Returns its length.
std::size_t EditorPaneProcedureLine(HWND editor, wchar_t* out, std::size_t capacity);

// Shows the bracket that belongs to the one at the caret; after every move of the caret.
void EditorPaneUpdateBraces(HWND editor);

// A notification of an editor that the pane itself answers (marks, recolouring, sticky-header cache). Called by the
// main window for SCN_MODIFIED of every tab's editor.
void EditorPaneOnModified(HWND editor, const SCNotification& change);

// History across documents.
void NavHistoryAdd(int position, int tab);
void NavHistoryMaybeAdd();
void NavHistoryBack();
void NavHistoryForward();

// Applies every editor setting (font, zoom, margins, wrap, theme) to every open document.
void SettingsApplyToEditor();
