// The tip over a name that the user has given, in the text of the procedure in which the program stands. UI thread only.
#include "base/path.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_state.h"
#include "debugui/pane_internal.h"
#include "documents/document_row.h"
#include "editor/margins.h"
#include "scintilla/sci.h"

namespace {

// The word with its type suffix, if it has one.
std::string WordAround(HWND editor, LRESULT position) {
    const LRESULT start = SciSend(editor, SCI_WORDSTARTPOSITION, static_cast<WPARAM>(position), TRUE);
    std::string text;
    for (LRESULT at = start; at < start + 80; ++at) {
        const auto c = static_cast<char>(SciSend(editor, SCI_GETCHARAT, static_cast<WPARAM>(at)));
        if (c == '\0' || NameAtStart(text + c) != text + c) break;
        text += c;
    }
    return text;
}

// Whether the line (from 1) of the document belongs to the procedure of the frame. The text may have been edited since
// the program was built: the procedure in which the mark of the stop stands counts too, whatever it is called now.
bool IsInFrame(const DocumentTab& document, const PaneFrame& frame, std::uint32_t line) {
    const std::vector<SourceProcedure> now = ProceduresOfDocument(document.id);
    const SourceProcedure* const here = ProcedureOfLine(now, line);
    if (CompareNames(here != nullptr ? here->name : "", frame.scope.Name()) == 0) return true;
    const LRESULT mark = SciSend(document.editor, SCI_MARKERNEXT, 0, LPARAM{1} << kMarkCurrent);
    return frame.index == 0 && mark >= 0 && here == ProcedureOfLine(now, static_cast<std::uint32_t>(mark) + 1);
}

}  // namespace

std::wstring DebugNameTip(DocumentId id, LRESULT position) {
    const int tab = TabBarFindDocument(id);
    if (tab < 0 || g_debugger.active == 0 || g_debugger.run != DebugRun::Stopped) return {};
    PaneProgramRead();  // the pane may be hidden: it reads nothing then
    const DocumentTab& document = TabAt(tab);
    const PaneFrame* const frame = PaneFrameNow();
    if (frame == nullptr || !PathEqualsIgnoreCase(frame->scope.file, document.path)) return {};
    const NameScope names = frame->Names();
    const std::string word = WordAround(document.editor, position);
    const NamedPlace* named = FindNamedPlace(names.names, word);
    if (named == nullptr) named = FindNamedPlace(names.names, WithoutTypeSuffix(word));
    const LRESULT line = SciSend(document.editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(position));
    if (named == nullptr || !IsInFrame(document, *frame, static_cast<std::uint32_t>(line) + 1)) return {};
    const Evaluation address = AddressOfName(*named, names);
    const std::wstring value =
        address.value ? DebugShownValue(&g_debugger, *address.value, named->kind) : address.problem;
    return TextWith(L"{1} = {2}   {3} at {4}",
                    {Utf8ToWideText(named->name), value, WatchKindName(named->kind), Utf8ToWideText(named->place)});
}
