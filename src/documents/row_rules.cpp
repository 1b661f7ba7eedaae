// Index arithmetic of the row of documents. Pure.
#include "documents/row_rules.h"

#include <algorithm>

int TabIndexAfterMove(int index, int from, int to) {
    if (index == from) return to;
    if (from < index && index <= to) return index - 1;
    if (to <= index && index < from) return index + 1;
    return index;
}

int TabIndexAfterRemoval(int index, int removed) {
    if (index == removed) return -1;
    return index > removed ? index - 1 : index;
}

int TabToShowAfterRemoval(int active, int removed, int count, int wanted) {
    if (count <= 1 || active < 0) return -1;
    if (active != removed) return TabIndexAfterRemoval(active, removed);
    if (wanted >= 0 && wanted != removed) return TabIndexAfterRemoval(wanted, removed);
    return std::min(active, count - 2);
}

std::vector<DocumentId> DocumentsToClose(std::span<const RowEntry> row, CloseRange range, DocumentId kept) {
    std::vector<DocumentId> ids;
    const auto at = std::ranges::find(row, kept, &RowEntry::id);
    if (range != CloseRange::All && at == row.end()) return ids;
    const auto first = range == CloseRange::Right ? at : row.begin();
    for (auto entry = row.end(); entry != first;) {
        --entry;
        if (range == CloseRange::All || entry->id != kept) ids.push_back(entry->id);
    }
    return ids;
}

DocumentId NextToAskAbout(std::span<const RowEntry> row, std::span<const DocumentId> candidates,
                          std::span<const DocumentId> asked) {
    const auto isNext = [&](const RowEntry& entry) {
        return entry.modified && std::ranges::find(asked, entry.id) == asked.end();
    };
    for (const DocumentId candidate : candidates) {
        const auto entry = std::ranges::find(row, candidate, &RowEntry::id);
        if (entry != row.end() && isNext(*entry)) return candidate;
    }
    const auto next = candidates.empty() ? std::ranges::find_if(row, isNext) : row.end();
    return next != row.end() ? next->id : 0;
}

static bool IsInRow(std::span<const RowEntry> row, DocumentId document) {
    return std::ranges::find(row, document, &RowEntry::id) != row.end();
}

bool ConfirmClosing(std::span<const DocumentId> candidates, const std::function<std::vector<RowEntry>()>& row,
                    const std::function<bool(DocumentId)>& confirm, std::vector<DocumentId>* refused) {
    std::vector<DocumentId> asked;
    bool all = true;
    while (const DocumentId document = NextToAskAbout(row(), candidates, asked)) {
        asked.push_back(document);
        if (confirm(document) || !IsInRow(row(), document)) continue;
        all = false;
        if (refused == nullptr) break;
        refused->push_back(document);
    }
    return all;
}

std::vector<DocumentId> DocumentsToSave(std::span<const RowEntry> row, bool withFile) {
    std::vector<DocumentId> ids;
    for (const RowEntry& entry : row)
        if (entry.modified && entry.hasFile == withFile) ids.push_back(entry.id);
    return ids;
}
