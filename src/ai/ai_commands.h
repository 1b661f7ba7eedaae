// The commands of the assistant: asking a service about the selection, the chat, editing code as told, and what is done
// with a reply. UI thread only.
#pragma once

#include "base/command_handler.h"

#include <windows.h>

#include <span>
#include <string>

std::span<const CommandHandler> AiCommandHandlers();
bool CmdHandle_AI(int command);  // false when it is none of them

// Asks the primary service to edit the selection, or the whole document when nothing is selected. False: nothing was
// sent, and the user was told why.
bool AiDoStart(const std::wstring& instruction);

// MSG_AI_REPLY: takes over the block in wParam. See AiReplyPathOf for what `status` means.
void AiOnReply(WPARAM reply, LPARAM status);
