#include "ai/ai_replace.h"

#include "ai/ai_requests.h"
#include "ai/ai_texts.h"
#include "ai/pending_marks.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "documents/document_row.h"
#include "editor/caret_place.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <cstring>
#include <utility>

namespace {

constexpr UINT kMarksMs = 150;  // from the last edit to marks that are right again

bool RangeHolds(HWND editor, std::size_t start, std::string_view text) {
    if (start + text.size() > static_cast<std::size_t>(SciSend(editor, SCI_GETLENGTH))) return false;
    const auto* bytes =
        reinterpret_cast<const char*>(SciSend(editor, SCI_GETRANGEPOINTER, start, static_cast<LPARAM>(text.size())));
    return text.empty() || (bytes != nullptr && std::memcmp(bytes, text.data(), text.size()) == 0);
}

// Why the code cannot take the place of what was sent; null when it can.
const wchar_t* ReplaceProblem(int tab, const AiTarget& target) {
    if (!IsTabIndex(tab)) return Text(L"The document is closed");
    const HWND editor = TabAt(tab).editor;
    if (SciSend(editor, SCI_GETREADONLY) != 0) return Text(L"The document is read-only");
    if (target.several) return Text(L"Several selections were sent");
    const bool holds = RangeHolds(editor, target.start, target.sent) &&
                       (!target.all || static_cast<std::size_t>(SciSend(editor, SCI_GETLENGTH)) == target.sent.size());
    return holds ? nullptr : Text(L"The text is no longer as it was sent");
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

// From here on nothing waits. The text stays as it is.
void EndPending() {
    if (!g_ai.aiDoPending) return;
    g_ai.aiDoPending = false;
    KillTimer(g_ui.hMainWnd, TIMER_AI_MARKS);
    const AiReplacement made = std::exchange(g_ai.aiReplacement, {});
    g_events.documentStatus(made.target.document, L"");
    if (const int tab = TabBarFindDocument(made.target.document); IsTabIndex(tab))
        PendingMarksHide(TabAt(tab).editor, made.range);
}

void EndPendingAndTell() {
    EndPending();
    g_events.aiReplacementChanged();
}

// The text is as it was before the replacement, and so is the selection.
void SelectAsBefore(HWND editor, const AiReplacement& made) {
    const auto before = [&made](std::size_t place) {
        return static_cast<LRESULT>(place < made.target.start ? place : place - made.target.start + made.range.start);
    };
    CaretSelect(editor, before(made.anchor), before(made.caret));
    SciSend(editor, SCI_SETFIRSTVISIBLELINE, static_cast<WPARAM>(made.topRow));
    SciSend(editor, SCI_SCROLLCARET);
}

void AfterTakingBack(HWND editor, AiReplacement made) {
    SelectAsBefore(editor, made);
    made.range.length = made.code.size();
    made.whole = static_cast<std::size_t>(SciSend(editor, SCI_GETLENGTH)) + made.code.size() - made.target.sent.size();
    g_ai.aiTakenBack = std::move(made);
}

void ShowMarks(HWND editor, bool first) {
    const ReplacementMarks marks =
        PendingMarksShow(editor, g_ai.aiReplacement.range, g_ai.aiReplacement.target.sent, first);
    if (const DocumentId document = g_ai.aiReplacement.target.document; document == ActiveDocumentId())
        g_events.documentStatus(document, MarksSummary(marks).c_str());
}

// Takes the replacement back. False when it was edited and cannot be told from what the user wrote.
bool TakeReplacementBack(HWND editor, const AiReplacement& made) {
    if (!RangeHolds(editor, made.range.start, made.code)) return false;
    const LRESULT length = SciSend(editor, SCI_GETLENGTH);
    const auto change = static_cast<LRESULT>(made.code.size()) - static_cast<LRESULT>(made.target.sent.size());
    SciSend(editor, SCI_UNDO);
    // The last step may have been another one, elsewhere in the document.
    if (SciSend(editor, SCI_GETLENGTH) != length - change || !RangeHolds(editor, made.range.start, made.target.sent)) {
        SciSend(editor, SCI_REDO);
        if (!RangeHolds(editor, made.range.start, made.code)) return false;
        ReplaceRange(editor, made.range.start, made.code.size(), made.target.sent);
    }
    AfterTakingBack(editor, made);
    return true;
}

// A document of that text at the end of the row; its index, or -1.
int AddReplyDocument(const char* utf8) {
    const int tab = TabBarAdd(nullptr, LabelWithoutFile(L"AI reply").c_str());
    if (tab < 0) return -1;
    const HWND editor = TabAt(tab).editor;
    const std::string text = ValidText(utf8, editor);
    SciSend(editor, SCI_APPENDTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    return tab;
}

void OfferNewDocument(const wchar_t* problem, const char* code) {
    const std::wstring text = TextWith(L"{1}, so nothing was replaced. Put the code into a new document?", {problem});
    const UserQuestion question = {.caption = kProgramCaption,
                                   .text = text.c_str(),
                                   .buttons = AskButtons::OkCancel,
                                   .icon = AskIcon::Warning,
                                   .inSelftest = Answer::Yes,
                                   .yes = Text(L"&New Document")};
    if (AskUser(question) == Answer::Yes) TabBarActivate(AddReplyDocument(code));
}

// The user has undone the replacement that waits.
bool IsTakenBack(HWND editor, const AiReplacement& made) {
    return made.code != made.target.sent && made.range.length == made.target.sent.size() &&
           RangeHolds(editor, made.range.start, made.target.sent);
}

void EndTakenBack() {
    const DocumentId document = g_ai.aiReplacement.target.document;
    EndPendingAndTell();
    g_events.documentStatus(document, Text(L"The AI replacement was undone"));
}

// The user has redone a replacement that was undone: it waits again.
void WaitAgain(HWND editor) {
    g_ai.aiReplacement = std::exchange(g_ai.aiTakenBack, {});
    g_ai.aiReplacement.whole += g_ai.aiReplacement.target.sent.size() - g_ai.aiReplacement.code.size();
    g_ai.aiDoPending = true;
    ShowMarks(editor, true);
    g_events.aiReplacementChanged();
}

// A fresh edit leaves nothing to redo.
void ForgetTakenBack() {
    g_events.documentStatus(g_ai.aiTakenBack.target.document, L"");
    g_ai.aiTakenBack = {};
}

// It stays, and nothing waits. When it is undone later, the selection comes back all the same.
void KeepReplacement() {
    g_ai.aiAccepted = g_ai.aiReplacement;
    g_ai.aiAccepted.range.start = g_ai.aiAccepted.target.start;
    EndPending();
}

bool IsAcceptedUndone(HWND editor, const AiReplacement& made) {
    return static_cast<std::size_t>(SciSend(editor, SCI_GETLENGTH)) == made.whole &&
           RangeHolds(editor, made.target.start, made.target.sent);
}

void MoveTarget(AiTarget& target, DocumentId document, const TextEdit& edit) {
    if (target.document != document || target.all) return;
    const ByteRange range = RangeAfterEdit({target.start, target.end - target.start}, edit, target.sent.size());
    target.start = range.start;
    target.end = range.start + range.length;
}

}  // namespace

std::string ValidText(const char* utf8, HWND editor) {
    return WithLineEnds(ToUtf8(Utf8ToWideText(utf8)), LineEndOf(editor));
}

AiTarget AiTargetNow(bool orAll, const char* sent) {
    const HWND editor = g_documents.hEditor;
    AiTarget target = {.document = DocumentOfEditor(editor), .sent = sent};
    target.start = static_cast<std::size_t>(SciSend(editor, SCI_GETSELECTIONSTART));
    target.end = static_cast<std::size_t>(SciSend(editor, SCI_GETSELECTIONEND));
    target.all = orAll && target.start == target.end;
    if (target.all) target.start = target.end = 0;
    target.several = !target.all && SciSend(editor, SCI_GETSELECTIONS) > 1;
    return target;
}

void AiReplace(const AiTarget& target, const char* code) {
    const int tab = target.document != 0 ? TabBarFindDocument(target.document) : -1;
    if (const wchar_t* problem = ReplaceProblem(tab, target); problem != nullptr) {
        OfferNewDocument(problem, code);
        return;
    }
    EndPending();  // an earlier one stays
    if (ActiveDocumentId() != target.document) TabBarSelect(tab);
    const HWND editor = TabAt(tab).editor;
    AiReplacement made = {
        .target = target,
        .code = ValidText(CodeInPlaceOf(target.sent, WithoutLineNumbers(code, target.sent, target.firstLine)).c_str(),
                          editor)};
    made.range = {target.start, made.code.size()};
    made.anchor = static_cast<std::size_t>(SciSend(editor, SCI_GETANCHOR));
    made.caret = static_cast<std::size_t>(SciSend(editor, SCI_GETCURRENTPOS));
    made.topRow = SciSend(editor, SCI_GETFIRSTVISIBLELINE);
    made.whole = static_cast<std::size_t>(SciSend(editor, SCI_GETLENGTH));
    g_ai.aiTakenBack = g_ai.aiAccepted = {};
    ReplaceRange(editor, target.start, target.sent.size(), made.code);
    g_ai.aiReplacement = std::move(made);
    g_ai.aiDoPending = true;
    ShowMarks(editor, true);
    g_events.aiReplacementChanged();
    InfoMessage(Text(L"AI replacement applied. Click AI Do again to accept, or AI Undo to revert."));
}

void AiReplacementAccept() {
    if (!g_ai.aiDoPending) return;
    KeepReplacement();
    g_events.aiReplacementChanged();
    InfoMessage(Text(L"AI replacement accepted."));
}

void AiReplacementUndo() {
    if (!g_ai.aiDoPending) return;
    const AiReplacement made = g_ai.aiReplacement;
    const int tab = TabBarFindDocument(made.target.document);
    EndPending();
    const bool undone = IsTabIndex(tab) && TakeReplacementBack(TabAt(tab).editor, made);
    g_events.aiReplacementChanged();
    InfoMessage(undone
                    ? Text(L"AI replacement undone.")
                    : Text(L"The AI replacement has been edited since, so it was left as it is. Edit > Undo takes back "
                           L"one step at a time."));
}

void AiReplacementForget() {
    if (g_ai.aiDoPending) KeepReplacement();
}

void AiOnTextEdited(DocumentId document, const SCNotification& change) {
    if ((change.modificationType & (SC_MOD_INSERTTEXT | SC_MOD_DELETETEXT)) == 0) return;
    const TextEdit edit = {.position = static_cast<std::size_t>(change.position),
                           .length = static_cast<std::size_t>(change.length),
                           .inserted = (change.modificationType & SC_MOD_INSERTTEXT) != 0,
                           .undone = (change.modificationType & (SC_PERFORMED_UNDO | SC_PERFORMED_REDO)) != 0};
    MoveTarget(g_ai.aiDoTarget, document, edit);
    MoveTarget(g_ai.aiReply.target, document, edit);
    AiRequestsForTargets([&](AiTarget& target) { MoveTarget(target, document, edit); });
    // Scintilla sets its caret after this notification.
    const bool stepEnds = edit.undone && (change.modificationType & SC_LASTSTEPINUNDOREDO) != 0;
    if (g_ai.aiTakenBack.target.document == document) {
        if (!edit.undone)
            ForgetTakenBack();
        else if (stepEnds && (change.modificationType & SC_PERFORMED_REDO) != 0)
            PostMessageW(g_ui.hMainWnd, MSG_AI_TEXT_BACK, 0, 0);
    }
    if (stepEnds && g_ai.aiAccepted.target.document == document && (change.modificationType & SC_PERFORMED_UNDO) != 0)
        PostMessageW(g_ui.hMainWnd, MSG_AI_TEXT_BACK, 1, 0);
    AiReplacement& made = g_ai.aiReplacement;
    if (!g_ai.aiDoPending || made.target.document != document) return;
    if (stepEnds) PostMessageW(g_ui.hMainWnd, MSG_AI_TEXT_BACK, 0, 0);
    if (EditTouches(made.range, edit)) SetTimer(g_ui.hMainWnd, TIMER_AI_MARKS, kMarksMs, nullptr);
    made.range = RangeAfterEdit(made.range, edit, made.code.size());
}

void AiOnTextLeaving(DocumentId document) {
    if (g_ai.aiDoPending && g_ai.aiReplacement.target.document == document) EndPendingAndTell();
    for (AiReplacement* made : {&g_ai.aiTakenBack, &g_ai.aiAccepted})
        if (made->target.document == document) *made = {};
}

void AiRenewMarks() {
    if (g_ai.aiDoPending) SetTimer(g_ui.hMainWnd, TIMER_AI_MARKS, kMarksMs, nullptr);
}

void AiOnMarksTimer() {
    KillTimer(g_ui.hMainWnd, TIMER_AI_MARKS);
    const AiReplacement& made = g_ai.aiReplacement;
    const int tab = g_ai.aiDoPending ? TabBarFindDocument(made.target.document) : -1;
    if (!IsTabIndex(tab)) return;
    const HWND editor = TabAt(tab).editor;
    if (IsTakenBack(editor, made))
        EndTakenBack();
    else
        ShowMarks(editor, false);
}

void AiOnTextBack(bool accepted) {
    if (accepted) {
        const int tab = TabBarFindDocument(g_ai.aiAccepted.target.document);
        if (IsTabIndex(tab) && IsAcceptedUndone(TabAt(tab).editor, g_ai.aiAccepted))
            SelectAsBefore(TabAt(tab).editor, std::exchange(g_ai.aiAccepted, {}));
        return;
    }
    const AiReplacement made = g_ai.aiDoPending ? g_ai.aiReplacement : g_ai.aiTakenBack;
    const int tab = TabBarFindDocument(made.target.document);
    if (!IsTabIndex(tab)) return;
    const HWND editor = TabAt(tab).editor;
    if (g_ai.aiDoPending) {
        if (!IsTakenBack(editor, made)) return;
        EndTakenBack();
        AfterTakingBack(editor, made);
    } else if (static_cast<std::size_t>(SciSend(editor, SCI_GETLENGTH)) == made.whole &&
               RangeHolds(editor, made.range.start, made.code)) {
        WaitAgain(editor);
    }
}

bool AiNewDocument(const char* utf8) { return AddReplyDocument(utf8) >= 0; }
