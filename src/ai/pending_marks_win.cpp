#include "ai/pending_marks.h"

#include "editor/margins.h"
#include "scintilla/sci.h"

#include <algorithm>
#include <string>

namespace {

LRESULT AskAt(HWND editor, UINT message, std::size_t wParam, LPARAM lParam = 0) {
    return SciSend(editor, message, wParam, lParam);
}

struct EditorLines {
    std::size_t first = 0, last = 0;  // of the range
};

EditorLines LinesOfRange(HWND editor, const ByteRange& range) {
    return {static_cast<std::size_t>(AskAt(editor, SCI_LINEFROMPOSITION, range.start)),
            static_cast<std::size_t>(AskAt(editor, SCI_LINEFROMPOSITION, range.start + range.length))};
}

std::string TextBetween(HWND editor, std::size_t start, std::size_t end) {
    if (end <= start) return {};
    const auto* bytes =
        reinterpret_cast<const char*>(AskAt(editor, SCI_GETRANGEPOINTER, start, static_cast<LPARAM>(end - start)));
    return bytes != nullptr ? std::string(bytes, end - start) : std::string();
}

// Scintilla does not wrap annotations, and without a scroll bar their ends could not be seen.
void WrapAsText(HWND editor, ReplacementMarks& marks) {
    if (SciSend(editor, SCI_GETWRAPMODE) == SC_WRAP_NONE) return;
    RECT area = {};
    GetClientRect(editor, &area);
    LRESULT width = area.right;
    for (WPARAM margin = 0; margin < static_cast<WPARAM>(SciSend(editor, SCI_GETMARGINS)); ++margin)
        width -= SciSend(editor, SCI_GETMARGINWIDTHN, margin);
    width -= SciSend(editor, SCI_GETMARGINLEFT) + SciSend(editor, SCI_GETMARGINRIGHT);
    WrapRemoved(marks, [editor, width](const std::string& part) {
        return SciSend(editor, SCI_TEXTWIDTH, kStyleRemovedLine, reinterpret_cast<LPARAM>(part.c_str())) <= width;
    });
}

ReplacementMarks MarksNow(HWND editor, const ByteRange& range, const EditorLines& lines, std::string_view before) {
    const auto lineStart = static_cast<std::size_t>(AskAt(editor, SCI_POSITIONFROMLINE, lines.first));
    const auto lineEnd = static_cast<std::size_t>(AskAt(editor, SCI_GETLINEENDPOSITION, lines.last));
    const std::size_t end = range.start + range.length;
    const std::string now = TextBetween(editor, lineStart, lineEnd);
    // A range can begin and end within a line.
    const std::string old =
        TextBetween(editor, lineStart, range.start).append(before) + TextBetween(editor, end, lineEnd);
    ReplacementMarks marks =
        MarksOfReplacement(old, now, static_cast<int>(lines.first), static_cast<int>(SciSend(editor, SCI_GETTABWIDTH)));
    WrapAsText(editor, marks);
    return marks;
}

std::string AnnotationOf(HWND editor, std::size_t line) {
    if (AskAt(editor, SCI_ANNOTATIONGETLINES, line) == 0) return {};
    std::string text(static_cast<std::size_t>(AskAt(editor, SCI_ANNOTATIONGETTEXT, line)), '\0');
    AskAt(editor, SCI_ANNOTATIONGETTEXT, line, reinterpret_cast<LPARAM>(text.data()));
    return text;
}

// The lines that may have an annotation: deleting a line moves that of its neighbour.
EditorLines LinesAround(HWND editor, const EditorLines& lines) {
    const auto count = static_cast<std::size_t>(SciSend(editor, SCI_GETLINECOUNT));
    return {lines.first - std::min<std::size_t>(lines.first, 2), std::min(lines.last + 2, count - 1)};
}

// Sets what is different only, because each annotation that changes lays the view out again.
void SetAnnotations(HWND editor, const EditorLines& lines, const std::vector<RemovedLines>& removed) {
    auto next = removed.begin();
    const EditorLines around = LinesAround(editor, lines);
    for (std::size_t line = around.first; line <= around.last; ++line) {
        const bool wanted = next != removed.end() && static_cast<std::size_t>(next->below) == line;
        const std::string& text = wanted ? next->text : std::string();
        if (AnnotationOf(editor, line) != text) {
            AskAt(editor, SCI_ANNOTATIONSETTEXT, line, wanted ? reinterpret_cast<LPARAM>(text.c_str()) : 0);
            if (wanted) AskAt(editor, SCI_ANNOTATIONSETSTYLE, line, kStyleRemovedLine);
        }
        if (wanted) ++next;
    }
}

// As above: each marker that changes costs a repaint.
void SetLineMarkers(HWND editor, const EditorLines& lines, const std::vector<AddedLines>& added) {
    auto next = added.begin();
    const EditorLines around = LinesAround(editor, lines);
    for (std::size_t line = around.first; line <= around.last; ++line) {
        while (next != added.end() && static_cast<std::size_t>(next->end) <= line) ++next;
        const bool wanted = next != added.end() && static_cast<std::size_t>(next->first) <= line;
        const bool has = (AskAt(editor, SCI_MARKERGET, line) & 1 << kMarkNewLine) != 0;
        if (wanted != has) AskAt(editor, wanted ? SCI_MARKERADD : SCI_MARKERDELETE, line, kMarkNewLine);
    }
}

// The line in the first row of the view stays there, although rows above it come or go.
template <typename Change>
void KeepingTopLine(HWND editor, Change change) {
    const LRESULT row = SciSend(editor, SCI_GETFIRSTVISIBLELINE);
    const auto line = static_cast<std::size_t>(AskAt(editor, SCI_DOCLINEFROMVISIBLE, static_cast<std::size_t>(row)));
    const LRESULT within = row - AskAt(editor, SCI_VISIBLEFROMDOCLINE, line);
    change();
    const LRESULT wanted = AskAt(editor, SCI_VISIBLEFROMDOCLINE, line) + within;
    if (SciSend(editor, SCI_GETFIRSTVISIBLELINE) != wanted)
        SciSend(editor, SCI_SETFIRSTVISIBLELINE, static_cast<WPARAM>(wanted));
}

// The caret goes to the first line that is different, and the removed lines above it come into the view.
void GoToFirstMark(HWND editor, const ReplacementMarks& marks) {
    if (marks.added.empty() && marks.removed.empty()) return;
    int line = marks.added.empty() ? marks.removed.front().below : marks.added.front().first;
    if (!marks.removed.empty()) line = std::min(line, marks.removed.front().below + 1);
    AskAt(editor, SCI_ENSUREVISIBLE, static_cast<std::size_t>(line));
    AskAt(editor, SCI_GOTOLINE, static_cast<std::size_t>(line));
    const LRESULT above = AskAt(editor, SCI_VISIBLEFROMDOCLINE, static_cast<std::size_t>(std::max(line - 1, 0)));
    if (SciSend(editor, SCI_GETFIRSTVISIBLELINE) > above)
        SciSend(editor, SCI_SETFIRSTVISIBLELINE, static_cast<WPARAM>(above));
}

}  // namespace

ReplacementMarks PendingMarksShow(HWND editor, const ByteRange& range, std::string_view before, bool first) {
    const EditorLines lines = LinesOfRange(editor, range);
    ReplacementMarks marks = MarksNow(editor, range, lines, before);
    KeepingTopLine(editor, [&] {
        SetAnnotations(editor, lines, marks.removed);
        SciSend(editor, SCI_ANNOTATIONSETVISIBLE, ANNOTATION_STANDARD);
    });
    SetLineMarkers(editor, lines, marks.added);
    if (first) GoToFirstMark(editor, marks);
    return marks;
}

void PendingMarksHide(HWND editor, const ByteRange& range) {
    KeepingTopLine(editor, [&] {
        SciSend(editor, SCI_ANNOTATIONSETVISIBLE, ANNOTATION_HIDDEN);  // first, because it makes clearing cheap
        SetAnnotations(editor, LinesOfRange(editor, range), {});
    });
    SciClearMarker(editor, kMarkNewLine);
}
