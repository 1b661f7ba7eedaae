// What was asked and answered in the chat of this run, for the next message to go with it. UI thread only.
#pragma once

#include "ai/chat_protocol.h"

#include <string>
#include <vector>

void ChatHistoryAdd(const std::string& question, const std::string& answer);  // nothing when one of them is empty
void ChatHistoryClear();
// The newest turns, as many as the setting allows, oldest first.
std::vector<ChatTurn> ChatHistoryToSend();
