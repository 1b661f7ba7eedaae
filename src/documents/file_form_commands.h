// The commands for encoding and line ending, on the active document. UI thread only.
#pragma once

void DocumentEncode(int command);     // IDM_ENCODE_...: the next save writes it so
void DocumentReopen(int command);     // IDM_REOPEN_...: reads its file again as that; asks before edits are lost
void DocumentSetEnding(int command);  // IDM_ENDING_...: converts the text, and the next save writes it so
