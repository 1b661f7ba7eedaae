// Reads one folder for the project tree in a worker: a share that went away may keep a read for a minute, and the window
// must not wait with it.
#pragma once

#include "session/tree_rules.h"

#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>

using TreeListingPtr = std::unique_ptr<TreeListing>;

// Starts reading. The listing comes to `window` as `message`, to be taken by WorkerTake<TreeListingPtr>. False: no thread
// could be started.
bool TreeReaderStart(HWND window, UINT message, std::uint64_t request, const std::wstring& folder);
