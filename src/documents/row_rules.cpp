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

int TabPlaceAllowed(std::span<const RowEntry> row, int from, int to) {
    const auto pinned = static_cast<int>(std::ranges::count(row, true, &RowEntry::pinned));
    const auto count = static_cast<int>(row.size());
    if (from < 0 || from >= count) return to;
    return row[static_cast<std::size_t>(from)].pinned ? std::clamp(to, 0, pinned - 1)
                                                      : std::clamp(to, pinned, count - 1);
}

std::wstring FreeLabel(std::wstring wanted, std::span<const std::wstring> labels) {
    const auto isTaken = [&](const std::wstring& label) { return std::ranges::find(labels, label) != labels.end(); };
    if (!isTaken(wanted)) return wanted;
    const std::size_t end = wanted.find_last_not_of(L"0123456789");
    if (end + 1 < wanted.size() && end > 0 && end != wanted.npos && wanted[end] == L' ') wanted.erase(end);
    std::wstring label = wanted;
    for (int number = 2; isTaken(label); ++number) label = wanted + L' ' + std::to_wstring(number);
    return label;
}

std::vector<DocumentId> DocumentsToClose(std::span<const RowEntry> row, CloseRange range, DocumentId kept) {
    std::vector<DocumentId> ids;
    const auto at = std::ranges::find(row, kept, &RowEntry::id);
    const bool takesAll = range == CloseRange::All, takesSaved = range == CloseRange::Saved;
    if (!takesAll && !takesSaved && at == row.end()) return ids;
    const auto first = range == CloseRange::Right ? at : row.begin();
    for (auto entry = row.end(); entry != first;) {
        --entry;
        const bool taken = takesSaved ? !entry->modified : entry->id != kept;
        if (takesAll || (taken && !entry->pinned)) ids.push_back(entry->id);
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

bool ConfirmClosing(std::span<const DocumentId> candidates, const ClosingQuestions& questions,
                    std::vector<DocumentId>* refused) {
    std::vector<DocumentId> asked;
    for (;;) {
        std::vector<DocumentId> now;
        const std::vector<RowEntry> row = questions.row();
        while (const DocumentId document = NextToAskAbout(row, candidates, asked)) {
            now.push_back(document);
            asked.push_back(document);
        }
        if (now.empty()) return refused == nullptr || refused->empty();
        std::vector<DocumentId> stay = questions.ask(now);
        std::erase_if(stay, [&](DocumentId document) { return !IsInRow(questions.row(), document); });
        if (stay.empty()) continue;
        if (refused == nullptr) return false;
        refused->insert(refused->end(), stay.begin(), stay.end());
    }
}

std::vector<DocumentId> DocumentsToSave(std::span<const RowEntry> row, bool withFile) {
    std::vector<DocumentId> ids;
    for (const RowEntry& entry : row)
        if (entry.modified && entry.hasFile == withFile) ids.push_back(entry.id);
    return ids;
}
