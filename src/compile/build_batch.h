// The build of all open documents, one after another until one fails. They are remembered by their ids, because tabs may be
// moved or closed meanwhile. Pure.
#pragma once

#include "base/events.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

struct BuildBatch {
    std::vector<DocumentId> documents;
    std::size_t taken = 0;  // of `documents`
    int succeeded = 0;
    int failed = 0;
    bool running = false;
};

// One of the extensions that a batch takes.
bool IsBatchBuildSource(std::wstring_view path);

BuildBatch BatchOf(std::vector<DocumentId> documents);
// The next document, or 0: that was the last one.
DocumentId BatchTakeNext(BuildBatch& batch);
void BatchDropRest(BuildBatch& batch);  // no further document is built
void BatchCount(BuildBatch& batch, bool success);

std::wstring BatchProgressText(const BuildBatch& batch, std::wstring_view label);  // of the document taken last
std::wstring BatchReportText(const BuildBatch& batch);
