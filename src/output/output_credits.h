// How much of a process's output may be on its way to the output pane: whoever posts a chunk takes a credit, the feed
// returns it when the chunk was shown or dropped. So a process that prints faster than the pane can show is slowed down, and
// neither memory nor the message queue grows. Any thread.
#pragma once

#include <windows.h>

inline constexpr LONG kMaxPostedChunks = 64;  // on their way or waiting to be shown

// Once, before any other call here. False: the system has no semaphore left.
bool OutputCreditsInit();
// A semaphore; a wait for it takes one credit. Owned here.
HANDLE OutputCreditsHandle();
void OutputCreditsReturn(int count);
