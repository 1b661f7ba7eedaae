// The selections of an editor, of which there may be many or one of columns: as places that outlive an edit, and the
// commands that add some. UI thread only.
#pragma once

#include "editor/line_changes.h"
#include "ui/redraw.h"

#include <windows.h>

#include <cstddef>
#include <optional>
#include <vector>

inline constexpr std::size_t kMostCarets = 5000;  // that a command makes

// A place by its line and its column on the screen.
struct KeptEnd {
    LRESULT line = 0, column = 0;
    bool atLineEnd = false;
    bool operator==(const KeptEnd&) const = default;
};
struct KeptCaret {
    KeptEnd anchor, caret;
    bool operator==(const KeptCaret&) const = default;
};
struct KeptCarets {
    std::vector<KeptCaret> carets;  // in the order in which the editor has them
    std::size_t main = 0;
    bool columns = false;  // a selection of columns; `anchor` and `caret` of the first one are its corners
    bool operator==(const KeptCarets&) const = default;
};
KeptCarets CaretsKeep(HWND editor);
// Selects the places again, each `shifts[i]` lines further down (negative: up); no shifts: where they were.
void CaretsRestore(HWND editor, const KeptCarets& kept, const std::vector<LRESULT>& shifts);

struct CaretSpan {
    LRESULT anchor = 0, caret = 0;  // bytes
    LRESULT start() const { return anchor < caret ? anchor : caret; }
    LRESULT end() const { return anchor < caret ? caret : anchor; }
};
std::vector<CaretSpan> CaretSpans(HWND editor);
void CaretsSelect(HWND editor, const std::vector<CaretSpan>& spans, std::size_t main);
bool CaretsAreEmpty(HWND editor);  // nothing is selected

// Keeps a pane with many selections from being drawn while it lives, and draws it once at its end. Scintilla calls
// SetScrollInfo for each line that comes or goes, and Wine then draws the scroll bar, which takes 2 to 4 ms.
class CaretsDrawOnce {
public:
    explicit CaretsDrawOnce(HWND editor);
    ~CaretsDrawOnce();
    CaretsDrawOnce(const CaretsDrawOnce&) = delete;
    CaretsDrawOnce& operator=(const CaretsDrawOnce&) = delete;

private:
    HWND editor_;
    std::optional<FramePause> pause_;
};

// The whole lines of each selection. One that ends at the start of a line does not take that line; a folded block whose
// first line is in it is in it.
std::vector<LineBlock> CaretLines(HWND editor);

// A caret more at the position; one that is there already goes, unless it is the only one.
void CaretToggleAt(HWND editor, std::vector<CaretSpan> spans, LRESULT position);
void CaretAddBeside(HWND editor, bool above);  // a caret on the line above the first one, or below the last one
// Selects the word at the caret, or one place more of what is selected.
void CaretSelectNext(HWND editor);
void CaretSelectEach(HWND editor);
bool CaretsAreColumns(HWND editor);  // a selection of columns
// Makes the main selection one of columns between the same corners, or a selection of columns an ordinary one.
void CaretsToggleColumns(HWND editor);
// Leaves one caret of a selection of columns. False: there is none.
bool CaretsEndColumns(HWND editor);
