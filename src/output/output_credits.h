// Limits how much output of a process is on its way to the output pane. The poster of a chunk takes a credit; the feed
// returns it when the chunk was shown or dropped. A process that prints faster than the pane can show is therefore
// slowed down, and neither memory nor the message queue grows. Any thread.
#pragma once

#include <windows.h>

inline constexpr LONG kMaxPostedChunks = 64;  // posted, or waiting in the feed

// Called once, before any other function here. False: the semaphore could not be created.
bool OutputCreditsInit();
// A semaphore. A wait for it takes one credit. The caller must not close it.
HANDLE OutputCreditsHandle();
void OutputCreditsReturn(int count);
