#include "ai/ai_replace.h"

#include "ai/ai_texts.h"
#include "base/utf8.h"
#include "documents/document_row.h"
#include "scintilla/sci.h"
#include "ui/message.h"

#include <cstring>
#include <utility>

namespace {

bool RangeHolds(HWND editor, std::size_t start, std::string_view text) {
    if (start + text.size() > static_cast<std::size_t>(SciSend(editor, SCI_GETLENGTH))) return false;
    const auto* bytes =
        reinterpret_cast<const char*>(SciSend(editor, SCI_GETRANGEPOINTER, start, static_cast<LPARAM>(text.size())));
    return text.empty() || (bytes != nullptr && std::memcmp(bytes, text.data(), text.size()) == 0);
}

bool TargetIsUnchanged(HWND editor, const AiTarget& target) {
    if (SciSend(editor, SCI_GETREADONLY) != 0 || !RangeHolds(editor, target.start, target.sent)) return false;
    return target.start != target.end || static_cast<std::size_t>(SciSend(editor, SCI_GETLENGTH)) == target.sent.size();
}

void ReplaceRange(HWND editor, std::size_t start, std::size_t length, std::string_view text) {
    SciSend(editor, SCI_BEGINUNDOACTION);
    SciSend(editor, SCI_SETTARGETRANGE, start, static_cast<LPARAM>(start + length));
    SciSend(editor, SCI_REPLACETARGET, text.size(), reinterpret_cast<LPARAM>(text.data()));
    SciSend(editor, SCI_ENDUNDOACTION);
    SciSend(editor, SCI_GOTOPOS, start);
}

const char* LineEndOf(HWND editor) {
    switch (SciSend(editor, SCI_GETEOLMODE)) {
        case SC_EOL_LF: return "\n";
        case SC_EOL_CR: return "\r";
        default: return "\r\n";
    }
}

// Line ends as the document has them, and no bytes that are not UTF-8.
std::string ValidText(const char* utf8, HWND editor) {
    return WithLineEnds(ToUtf8(Utf8ToWideText(utf8)), LineEndOf(editor));
}

void SetAiPending(bool pending) {
    if (g_ai.aiDoPending == pending) return;
    g_ai.aiDoPending = pending;
    if (!pending) g_ai.aiReplacement = {};
    g_events.aiReplacementChanged();
}

// Takes the replacement back. False when it was edited and cannot be told from what the user wrote.
bool TakeReplacementBack(HWND editor, const AiReplacement& made) {
    if (!RangeHolds(editor, made.start, made.code)) return false;
    const LRESULT length = SciSend(editor, SCI_GETLENGTH);
    const auto change = static_cast<LRESULT>(made.code.size()) - static_cast<LRESULT>(made.target.sent.size());
    SciSend(editor, SCI_UNDO);
    // The last step may have been another one, elsewhere in the document.
    if (SciSend(editor, SCI_GETLENGTH) == length - change && RangeHolds(editor, made.start, made.target.sent))
        return true;
    SciSend(editor, SCI_REDO);
    if (!RangeHolds(editor, made.start, made.code)) return false;
    ReplaceRange(editor, made.start, made.code.size(), made.target.sent);
    return true;
}

}  // namespace

AiTarget AiTargetNow(bool orAll, const char* sent) {
    const HWND editor = g_documents.hEditor;
    AiTarget target = {.document = DocumentOfEditor(editor), .sent = sent};
    target.start = static_cast<std::size_t>(SciSend(editor, SCI_GETSELECTIONSTART));
    target.end = static_cast<std::size_t>(SciSend(editor, SCI_GETSELECTIONEND));
    if (orAll && target.start == target.end) target.start = target.end = 0;
    return target;
}

void AiReplace(const AiTarget& target, const char* code) {
    const int tab = target.document != 0 ? TabBarFindDocument(target.document) : -1;
    if (!IsTabIndex(tab) || !TargetIsUnchanged(TabAt(tab).editor, target)) {
        if (AiNewDocument(code))
            InfoMessage(
                L"The text is no longer as it was sent, so nothing was replaced. The code is in a new document.");
        return;
    }
    if (ActiveDocumentId() != target.document) TabBarSelect(tab);
    const HWND editor = TabAt(tab).editor;
    AiReplacement made = {
        .target = target, .start = target.start, .code = ValidText(CodeInPlaceOf(target.sent, code).c_str(), editor)};
    ReplaceRange(editor, made.start, target.sent.size(), made.code);
    g_ai.aiReplacement = std::move(made);
    SetAiPending(true);
    InfoMessage(L"AI replacement applied. Click AI Do again to accept, or AI Undo to revert.");
}

void AiReplacementAccept() {
    if (!g_ai.aiDoPending) return;
    SetAiPending(false);
    InfoMessage(L"AI replacement accepted.");
}

void AiReplacementUndo() {
    if (!g_ai.aiDoPending) return;
    const AiReplacement made = g_ai.aiReplacement;
    const int tab = TabBarFindDocument(made.target.document);
    const bool undone = IsTabIndex(tab) && TakeReplacementBack(TabAt(tab).editor, made);
    SetAiPending(false);
    InfoMessage(undone ? L"AI replacement undone."
                       : L"The AI replacement has been edited since, so it was left as it is. Edit > Undo takes back "
                         L"one step at a time.");
}

void AiReplacementForget() {
    g_ai.aiDoPending = false;
    g_ai.aiReplacement = {};
}

bool AiNewDocument(const char* utf8) {
    const int tab = TabBarAdd(nullptr, L"AI reply");
    if (tab < 0) return false;
    const HWND editor = TabAt(tab).editor;
    const std::string text = ValidText(utf8, editor);
    SciSend(editor, SCI_APPENDTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    return true;
}
