// The build of all open documents, one after another until one fails. Documents are remembered by their ids, because
// the user may move or close tabs meanwhile. Pure.
#pragma once

#include "base/events.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

struct BuildBatch {
    std::vector<DocumentId> documents;
    std::size_t taken = 0;  // documents that were already taken
    int succeeded = 0;
    int failed = 0;
    bool running = false;
};

// Whether the path has an extension that a batch builds.
bool IsBatchBuildSource(std::wstring_view path);

BuildBatch BatchOf(std::vector<DocumentId> documents);
// Takes the next document; 0 after the last one.
DocumentId BatchTakeNext(BuildBatch& batch);
void BatchDropRest(BuildBatch& batch);  // BatchTakeNext then returns 0
void BatchCount(BuildBatch& batch, bool success);

std::wstring BatchProgressText(const BuildBatch& batch, std::wstring_view label);  // for the document taken last
std::wstring BatchReportText(const BuildBatch& batch);
