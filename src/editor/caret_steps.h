// Undo and redo with the carets of a step. Scintilla knows one caret for each step, and with several carets it makes a
// step of each typed letter. Here each step of the undo history that changes text for several carets, or by a command for
// lines, gets an action of its own, which Scintilla reports when undo or redo comes to it: the selections come back, and
// what was typed in one go is undone in one go. UI thread.
#pragma once

#include "editor/caret_set.h"
#include "scintilla/sci.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <deque>

enum class CaretEdit : std::uint8_t { Typed, Erased, Other };  // letters in a row and erasures in a row are one step

struct CaretStep {
    int token = 0;  // below 0: those of editor/line_marks.h are above
    CaretEdit edit = CaretEdit::Other;
    bool joins = false;   // undone and done again together with the step before
    bool undone = false;  // and not done again
    KeptCarets before, after;
};
struct CaretSteps {
    std::deque<CaretStep> made;
    int lastToken = 0;
    std::uint64_t changes = 0;     // of the text by the user
    std::uint64_t lastChange = 0;  // `changes` at the end of the last step
    int met = 0;                   // the token that undo or redo has just come to; 0: none
};

// One step of undo for as long as it lives, with the selections at its start. Its end takes the selections as they are
// then; a command that places its carets later calls CaretStepsPlaced.
class CaretUndoStep {
public:
    // `wanted` false: nothing is done.
    explicit CaretUndoStep(HWND editor, CaretEdit edit = CaretEdit::Other, bool wanted = true);
    ~CaretUndoStep();
    CaretUndoStep(const CaretUndoStep&) = delete;
    CaretUndoStep& operator=(const CaretUndoStep&) = delete;

private:
    HWND editor_;
    CaretEdit edit_;
    bool saved_ = false;         // the text was that of the file
    std::uint64_t changes_ = 0;  // CaretSteps::changes at the start
    KeptCarets before_;
};
// The carets that the last step has led to are those of now, unless the text was changed since.
void CaretStepsPlaced(HWND editor);
// SCN_MODIFIED.
void CaretStepsOnModified(HWND editor, const SCNotification& change);

// Undoes or redoes one step of the user's.
void EditorUndo(HWND editor);
void EditorRedo(HWND editor);
