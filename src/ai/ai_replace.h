// Puts the code of a reply into the document that it was asked about, and takes it out again. UI thread only.
#pragma once

#include "ai/ai_state.h"
#include "scintilla/sci.h"

// The text of the editor that a request is about: the selection, or all with `orAll`. `sent` is what was sent of it.
AiTarget AiTargetNow(bool orAll, const char* sent);

// The text as the document takes it: its line ends, and no bytes that are not UTF-8.
std::string ValidText(const char* utf8, HWND editor);

// Replaces what was sent by the code, as one step of undo, shows what is different and tells so. When the document no
// longer holds what was sent, or is closed, nothing is replaced: a new document is offered for the code.
void AiReplace(const AiTarget& target, const char* code);
// The replacement stays, or goes again; both tell so. They do nothing when none waits.
void AiReplacementAccept();
void AiReplacementUndo();
void AiReplacementForget();  // it stays, without a message and without an event
// The text of a document was edited. What was sent of it, and a replacement in it, are found again.
void AiOnTextEdited(DocumentId document, const SCNotification& change);
void AiOnTextLeaving(DocumentId document);  // a replacement in it no longer waits
void AiRenewMarks();                        // the editor has another width, or wraps
void AiOnMarksTimer();                      // TIMER_AI_MARKS
void AiOnTextBack(bool accepted);           // MSG_AI_TEXT_BACK
// A document of that text beside the others, which is not shown. False when there is no memory or window for it.
bool AiNewDocument(const char* utf8);
