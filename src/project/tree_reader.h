// Reads one folder for the project tree in a worker, because a read from a network share that is gone may take a minute
// and the window must not wait for it.
#pragma once

#include "files/ignore_rules.h"
#include "project/tree_rules.h"

#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>

using TreeListingPtr = std::unique_ptr<TreeListing>;

// Starts the read. What the project leaves out is not listed, unless hidden entries are shown. The worker posts the listing to `window` as `message`; take it with WorkerTake<TreeListingPtr>.
// `request` comes back in the listing. A read that takes longer is shown in part first (TreeListing::more). False when
// no thread could be started.
bool TreeReaderStart(HWND window, UINT message, std::uint64_t request, const std::wstring& folder,
                     const TreeFilter& filter, const ExcludedFolders& excluded);
