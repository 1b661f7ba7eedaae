// The requests that run: their progress in the status bar, cancelling them, and the end of the program. UI thread only.
#pragma once

#include "ai/ai_jobs.h"
#include "ai/ai_state.h"

#include <windows.h>

#include <functional>

// For a new job.
AiLink AiLinkNew();
// Notes a job whose worker was started. `target` is the text that its message was made of.
void AiRequestStarted(AiService service, const Worker& worker, const AiLink& link, AiTarget target);
bool AiRequestsRun();
void AiRequestsForTargets(const std::function<void(AiTarget&)>& use);
void AiRequestsDrop();                       // all of them, without a word: their chat is gone
void AiRequestsCancel();                     // all of them; each says so when its worker has ended
void AiOnRequestEnded(AiRequestEndPtr end);  // MSG_AI_ENDED
void AiOnTimer();                            // TIMER_AI
void AiOnPieces();                           // MSG_AI_PIECES
void AiOnPiecesTimer();                      // TIMER_AI_PIECES
void AiTakePieces();                         // shows what has come of streamed replies
// Before the main window is destroyed: cancels everything, waits a moment and frees the replies that wait.
void AiShutdown();
