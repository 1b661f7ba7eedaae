// The editing pane of a document: a Scintilla window. UI thread only.
#pragma once

#include "base/events.h"
#include "editor/sticky_header.h"
#include "language/blocks.h"
#include "scintilla/sci.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// SciSend with a signed wParam, because positions and lines are signed.
inline LRESULT PaneSend(HWND editor, UINT message, LRESULT wParam = 0, LRESULT lParam = 0) {
    return SciSend(editor, message, static_cast<WPARAM>(wParam), lParam);
}

// Creates a hidden pane: a Scintilla window, or a Rich Edit when that fails. Null when both fail. The parent destroys
// it with its other children.
HWND EditorPaneCreate(HINSTANCE instance, HWND parent, int controlId);

// Tells the pane which document it shows and the path of its file (may be null), whose extension decides the language.
// Takes effect with the next EditorPaneInit.
void EditorPaneSetFile(HWND editor, DocumentId document, const wchar_t* path);

// Applies the theme and the lexer of the compiler's dialect, colours the text again and scrolls to the caret.
void EditorPaneInit(HWND editor, std::uint32_t compilerId);

// Applies the [Editor] settings: tabs, line numbers, edge line, change margin, virtual space, zoom, wrap, white space
// and indentation guides. Then scrolls to the caret.
void EditorPaneApplySettings(HWND editor);

// A new NUL-terminated UTF-8 copy of the document that the caller frees with free(); null when memory runs out.
// `length` (may be null) gets the number of bytes without the terminator. The text may hold NUL bytes.
char* EditorPaneGetText(HWND editor, std::size_t* length);

// The text of a part of the document, by positions in bytes.
std::string EditorPaneTextBetween(HWND editor, LRESULT start, LRESULT end);
// Called after a word was typed or completed at the caret: in BASIC a line such as "END SUB", which can be nothing else,
// goes back to the indentation of its block at once.
void EditorPaneAfterClosingWord(HWND editor);
// What the BASIC of `line` (0-based) must know of the lines above it. Far below what is coloured it says only whether the
// line is inside a block of inline assembly, as far as is known. 0 for other languages.
LineState EditorPaneLineState(HWND editor, LRESULT line);
// The dialect of BASIC in which the pane's document is written: that of its compiler.
const Dialect& EditorPaneDialect(HWND editor);

// Replaces the whole text. Afterwards the document is unmodified and has nothing to undo. EditorPaneSetText takes a
// NUL-terminated text; EditorPaneSetBytes takes any bytes, NULs included.
void EditorPaneSetText(HWND editor, const char* utf8);
void EditorPaneSetBytes(HWND editor, std::string_view utf8);
// The same in pieces, for a text that is too large to be in memory twice: begin, any number of appends, end.
// `expectedLength` is in bytes.
void EditorPaneBeginLoad(HWND editor, std::size_t expectedLength);
void EditorPaneAppendLoad(HWND editor, std::string_view utf8);
void EditorPaneEndLoad(HWND editor);

// Makes the pane show a Scintilla document that SCI_CREATELOADER has made, and takes it over. The pane then needs
// EditorPaneInit and EditorPaneApplySettings, because lexer and tabs belong to the document.
void EditorPaneSetDocument(HWND editor, void* document);

// A plain pane has no lexer, no folding and no word wrap, whatever the file's name and the settings say: a line of
// megabytes or a text of a gigabyte would not answer with them. EditorPaneSetPlain is for a text that is about to be
// loaded, and takes effect with the next EditorPaneInit and EditorPaneApplySettings. A line of megabytes that a change
// brings makes the pane plain at once.
void EditorPaneSetPlain(HWND editor, bool plain);
bool EditorPaneIsPlain(HWND editor);
// The bytes of the line that has made the pane plain since its text was loaded; 0 when none has.
std::size_t EditorPaneLongLine(HWND editor);

// Sets the caret's style and a colour that can be seen on the background, moves the caret into the view and scrolls to
// it. With a selection nothing moves, because the selection would be lost; nor while a mouse button goes down on the
// pane, because the click is meant for what the view shows. When the window has the keyboard focus, Scintilla is told
// so (SCI_SETFOCUS).
void EditorPaneEnsureCaretVisible(HWND editor);

// Switch the edge line, the change margin or the virtual space of the pane on or off.
void ApplyEdgeLine(HWND editor, bool on);
void ApplyChangeMargin(HWND editor, bool on);
void MarkModifiedLine(HWND editor, int line);  // marks a line (0-based) as changed when the change margin is on
void ApplyVirtualSpace(HWND editor, bool on);
void EditorPaneClearChangeMarks(HWND editor);

// Undoes the last step because the user has stopped the work that made it. Redo does not bring it back: half of what was
// wanted is nothing that anyone wants.
void EditorPaneTakeBack(HWND editor);

// What the pane knows of the procedure lines above its caret, kept up to date while the text changes; null for a window
// that is no Scintilla pane. The pane owns it.
StickyCache* EditorPaneStickyCache(HWND editor);

// Marks the bracket at the caret and its partner, and the words of the block at the caret. Called after every move of the
// caret.
void EditorPaneUpdateBraces(HWND editor);
// Moves the caret to the bracket that belongs to the one at the caret, or between the words of a block (IF, END IF).
void EditorPaneGoToMatch(HWND editor);

// Updates the change marks, the colouring and the sticky header after a change of the text. The main window calls it
// for SCN_MODIFIED of every document's editor.
void EditorPaneOnModified(HWND editor, const SCNotification& change);
