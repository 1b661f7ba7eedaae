// The dialog that records an instruction and has it transcribed. Modal, UI thread only.
#pragma once

#include <windows.h>

#include <string>

// The spoken text; kTranscriptionFailed or kTranscriptionEmpty (ai/wav.h) when the service gave none and the user did not
// try again with success; empty when the user cancelled or has no microphone, which is told in a box.
std::wstring RecordingDialogShow(HWND owner);
