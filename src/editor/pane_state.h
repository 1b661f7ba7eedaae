// The state of one Scintilla pane, and the functions that the pane's files share. Private to this folder. UI thread.
#pragma once

#include "editor/caret_set.h"
#include "editor/caret_steps.h"
#include "editor/colour_marks.h"
#include "editor/editor_pane.h"
#include "editor/line_marks.h"
#include "editor/pane_rules.h"
#include "editor/sticky_header.h"
#include "editor/typing_rules.h"
#include "language/blocks.h"
#include "language/inline_regions.h"
#include "scintilla/sci.h"
#include "ui/wheel.h"

#include <windows.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// The values on which the width of the line-number margin depends.
struct LineMarginBasis {
    int digits = 0;
    int zoom = 0;
    int fontSize = 0;
    std::size_t font = 0;  // hash of the font's name
    int dpi = 0;
    bool operator==(const LineMarginBasis&) const = default;
};

struct PaneState {
    DocumentId document = 0;                  // EditorPaneSetFile
    std::wstring path;                        // of its file
    std::optional<std::uint32_t> compilerId;  // whose dialect the text is in
    bool emptyPaint = false;                  // a paint of an empty area runs, which needs no preparation
    bool pressing = false;                    // a mouse button that goes down on the pane is being handled
    std::vector<CaretSpan> beforePress;       // the selections before Alt and a press of the left button; empty: none
    LRESULT typedAt = -1;                     // the caret behind the last typed character, when that is of a word
    WheelRest zoomWheel;                      // movements with Ctrl that do not make a notch yet
    LineMarkMoves lineMarks;                  // what commands for lines did to bookmarks and breakpoints
    CaretSteps caretSteps;                    // whose selections undo and redo bring back
    bool bracesShown = false;                 // a bracket and its partner are marked
    std::vector<PaneSpan> blockWords;         // the words of a block that are marked
    AssemblyAbove assembly;                   // knowledge about blocks of inline assembly above the view
    StickyCache sticky;                       // knowledge about the procedure lines above the caret
    LineMarginBasis lineMargin;               // the values for which the margin was last measured
    ColourMarks colours;                      // which part has its colours
    bool plain = false;                       // EditorPaneSetPlain
    std::size_t longLine = 0;                 // bytes of a line of kLongLine that a change has brought; 0: none
    bool colouring = false;                   // the timer for idle colouring runs
    ULONGLONG changedAt = 0;                  // tick count of the last change of the text
    std::size_t colourChunk = 0;              // bytes that one idle slice colours
};

// The state of a pane; null for a window that is no Scintilla pane (the Rich Edit fallback). The pane owns it.
PaneState* PaneStateOf(HWND editor);

// Sends PaneSetUpMessages(). Called once, at creation.
void EditorPaneSetUp(HWND editor);

// Subclasses a new Scintilla pane and makes its state. False when the subclass could not be set.
bool EditorPaneInstallSubclass(HWND editor);

// Called after a change of the text near `line` (0-based): a line of kLongLine makes the pane plain, wherever it came from,
// and the pane gets its looks back when the last such line is gone.
void EditorPaneCheckLongLine(HWND editor, const SCNotification& change, LRESULT line);
// Gives the pane the lexer, the styles and the settings of a plain one or of another. Neither caret nor view move.
void EditorPaneShowPlainness(HWND editor);

// The whole text is coloured again: what is visible before the next paint, the rest in idle time.
void EditorColourRestart(HWND editor);
// The same after `inserted` or `deleted` bytes at `position`, as far down as colours may have become others.
void EditorColourOnChange(HWND editor, LRESULT position, LRESULT inserted, LRESULT deleted);
// Called before and after a paint. The first colours the text that is about to be visible, also when text above it is
// not coloured yet, or lets the paint itself do it. The second takes what the first returned.
PaintColours EditorColourBeforePaint(HWND editor);
void EditorColourAfterPaint(HWND editor, PaintColours before);
// Colours what is missing before `position` when that is little. False when it is too much.
bool EditorColourUpTo(HWND editor, LRESULT position);
// Colours all that is missing, for a command that needs the levels of every line. `goesOn` is asked with the share that is
// done (0 to 1). False when it stopped it. True also for a text without colours.
bool EditorColourAll(HWND editor, const std::function<bool(double)>& goesOn);
// Stops idle colouring, before the window is destroyed.
void EditorColourStop(HWND editor);

// Sets the width of the line-number margin by the settings, the font and the number of lines.
void EditorPaneUpdateLineMargin(HWND editor);
// The same, but only when one of these has changed since the last time. Called before every paint.
void EditorPaneCheckLineMargin(HWND editor);

// Called after a line break was typed at the caret. Indents the new line by the blocks above it, or like the line above.
void EditorPaneAfterNewLine(HWND editor);
// Called after "}" was typed: in C, a line of nothing else goes to the indentation of the line with its partner.
void EditorPaneAfterClosingBrace(HWND editor);
// Called when the caret is about to leave the line in which a word was just typed: does what Return would do to it.
void EditorPaneAfterLeaving(HWND editor);
// Puts the BASIC keyword that ends at `position` (bytes) into capitals, unless it is in a string, a comment or assembly.
void EditorPaneUpperKeywordBefore(HWND editor, LRESULT position);
// Tells the lexer, before it colours from `position` (bytes, start of a line) on without the lines above, whether that is
// inside a block of inline assembly.
void EditorPaneFindAssembly(HWND editor, LRESULT position);
// Called after a change of the text on `line` (0-based).
void EditorPaneForgetAssembly(HWND editor, LRESULT line);
// The sets of blocks that the LineStates of a BASIC document refer to; null for other languages.
BlockTable* EditorPaneBlockTable(HWND editor);
// Marks the words of the block to which the word at the caret belongs.
void EditorPaneUpdateBlockWords(HWND editor);
// The bracket at the caret and its partner.
BracePair EditorPaneBracesAtCaret(HWND editor);
