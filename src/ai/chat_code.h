// The commands of the chat: its code to the clipboard and into the document, and a new chat. UI thread only.
#pragma once

void ChatCopyCode();
// Puts the code in place of the selection, as one step of undo. Says so when the document cannot be changed.
void ChatInsertCode();
// Forgets what was said. Requests that run are cancelled.
void ChatBeginNew();
