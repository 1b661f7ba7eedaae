// The chat's text: lines of the program and of the user, and replies with their code in a ground of its own. It follows
// its end only while that can be seen, is bounded, and is shown anew after a change of theme or font. UI thread only.
#pragma once

#include "base/texts.h"

#include <windows.h>

#include <string>
#include <string_view>

// The text of a chat in which nothing was said yet.
inline constexpr const wchar_t* kChatGreeting =
    English(L"AI Chat\r\n========\r\nType a message below and click Send, or use Tools > OpenAI / LM-Studio.\r\n");

void ChatViewApplyLook();
void ChatViewClear();  // only the greeting is left

// These return false when there is no chat. Each begins on a line of its own.
bool ChatViewLine(std::wstring_view text);
bool ChatViewReply(std::string_view reply);
void ChatViewScrollToEnd();

// --- A reply that is coming
// Adds to the reply of the request; the first piece opens it.
bool ChatViewPiece(int request, std::string_view piece);
// Nothing more comes for the request. Returns what has come; empty: no piece of it.
std::string ChatViewPiecesEnd(int request);
// The request whose reply has come piece by piece and is exactly that; 0: none.
int ChatViewRequestOf(std::string_view reply);

// --- Code
bool ChatViewHasCode();
// The block at the caret when the chat has the keyboard, else the last one; UTF-8, empty when there is none.
std::string ChatViewCode();
