#include "editor/text_change.h"

#include "base/line_edits.h"
#include "scintilla/sci.h"

#include <vector>

int EditorChangeLines(HWND editor, std::string_view utf8) {
    if (SciSend(editor, SCI_GETREADONLY) != 0) return 0;
    const std::string_view now{reinterpret_cast<const char*>(SciSend(editor, SCI_GETCHARACTERPOINTER)),
                               static_cast<std::size_t>(SciSend(editor, SCI_GETLENGTH))};
    const std::vector<LineEdit> edits = LineEdits(now, utf8);  // `now` is gone with the first change
    if (edits.empty()) return 0;
    SciSend(editor, SCI_BEGINUNDOACTION);
    for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit) {
        SciSend(editor, SCI_SETTARGETRANGE, edit->start, static_cast<LPARAM>(edit->end));
        SciSend(editor, SCI_REPLACETARGET, edit->text.size(), reinterpret_cast<LPARAM>(edit->text.data()));
    }
    SciSend(editor, SCI_ENDUNDOACTION);
    return static_cast<int>(edits.size());
}
