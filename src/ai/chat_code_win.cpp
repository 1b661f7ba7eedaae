#include "ai/chat_code.h"

#include "ai/ai_pane.h"
#include "ai/ai_replace.h"
#include "ai/ai_requests.h"
#include "ai/ai_texts.h"
#include "ai/chat_history.h"
#include "ai/chat_view.h"
#include "base/events.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "documents/document_row.h"
#include "editor/caret_place.h"
#include "scintilla/sci.h"
#include "ui/clipboard.h"
#include "ui/message.h"
#include "ui/panes.h"
#include "ui/ui_state.h"

namespace {

// What stands around the place where the code comes.
PlaceOfCode CodePlaceIn(HWND editor, LRESULT start, LRESULT end) {
    const LRESULT line = SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(end));
    const LRESULT firstLine = SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(start));
    return {.atLineStart = SciSend(editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(firstLine)) == start,
            .endsAtLineStart = SciSend(editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(line)) == end,
            .restIsEmpty = SciSend(editor, SCI_GETLINEENDPOSITION, static_cast<WPARAM>(line)) == end};
}

}  // namespace

void ChatCopyCode() {
    const std::string code = ChatViewCode();
    if (code.empty()) return g_events.statusText(Text(L"The chat holds no code"));
    ClipboardPutText(g_ui.hMainWnd, Utf8ToWideText(WithLineEnds(code, "\r\n")));
    g_events.statusText(Text(L"The code of the chat was copied"));
}

void ChatInsertCode() {
    const HWND editor = g_documents.hEditor;
    const std::string code = ChatViewCode();
    if (editor == nullptr || code.empty()) return g_events.statusText(Text(L"The chat holds no code"));
    if (SciSend(editor, SCI_GETREADONLY) != 0) {
        InfoMessage(Text(L"The document is read-only, so nothing was inserted."));
        return;
    }
    const LRESULT start = CaretPositionAt(editor, SciSend(editor, SCI_GETSELECTIONSTART));
    const LRESULT end = CaretPositionAt(editor, SciSend(editor, SCI_GETSELECTIONEND));
    const std::string text = ValidText(CodeAtPlace(code, CodePlaceIn(editor, start, end)).c_str(), editor);
    SciSend(editor, SCI_BEGINUNDOACTION);
    SciSend(editor, SCI_SETTARGETRANGE, static_cast<WPARAM>(start), end);
    SciSend(editor, SCI_REPLACETARGET, text.size(), reinterpret_cast<LPARAM>(text.data()));
    SciSend(editor, SCI_ENDUNDOACTION);
    CaretGoTo(editor, start + static_cast<LRESULT>(text.size()));
    FocusCurrentEditor();
    g_events.documentStatus(ActiveDocumentId(), Text(L"The code of the chat was inserted"));
}

void ChatBeginNew() {
    AiRequestsDrop();
    ChatViewClear();
    ChatHistoryClear();
    if (PaneIsShown(PaneId::Ai)) AiPaneFocusInput();
    g_events.statusText(Text(L"A new chat has begun"));
}
