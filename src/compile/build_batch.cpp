#include "compile/build_batch.h"

#include "settings/file_type_table.h"

#include <utility>

bool IsBatchBuildSource(std::wstring_view path) {
    const FileType* type = FileTypeOfPath(path);
    return type != nullptr && type->inBatchBuild;
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
