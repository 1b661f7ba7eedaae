#include "compile/build_batch.h"

#include "base/path.h"

#include <algorithm>
#include <array>
#include <utility>

bool IsBatchBuildSource(std::wstring_view path) {
    constexpr std::array<std::wstring_view, 4> extensions = {L".bas", L".kxa", L".ka32", L".b64"};
    return std::any_of(extensions.begin(), extensions.end(), [path](std::wstring_view extension) {
        return PathEqualsIgnoreCase(FileExtension(path), extension);
    });
}

BuildBatch BatchOf(std::vector<DocumentId> documents) { return {.documents = std::move(documents), .running = true}; }

DocumentId BatchTakeNext(BuildBatch& batch) {
    return batch.taken < batch.documents.size() ? batch.documents[batch.taken++] : 0;
}

void BatchDropRest(BuildBatch& batch) { batch.documents.resize(batch.taken); }

void BatchCount(BuildBatch& batch, bool success) { ++(success ? batch.succeeded : batch.failed); }

std::wstring BatchProgressText(const BuildBatch& batch, std::wstring_view label) {
    return L"[" + std::to_wstring(batch.taken) + L"/" + std::to_wstring(batch.documents.size()) + L"] Building " +
           std::wstring(label) + L"...";
}

std::wstring BatchReportText(const BuildBatch& batch) {
    return L"Batch build: " + std::to_wstring(batch.succeeded) + L" succeeded, " + std::to_wstring(batch.failed) +
           L" failed.";
}
