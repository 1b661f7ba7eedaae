#include "compile/build_batch.h"

#include "base/texts.h"
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
    return TextWith(L"[{1}/{2}] Building {3}...",
                    {std::to_wstring(batch.taken), std::to_wstring(batch.documents.size()), label});
}

std::wstring BatchReportText(const BuildBatch& batch) {
    return TextWith(L"Batch build: {1} succeeded, {2} failed.",
                    {std::to_wstring(batch.succeeded), std::to_wstring(batch.failed)});
}
