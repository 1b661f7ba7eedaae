// Rules of the row of documents: the new value of an index after a change, and the order in which a command takes
// several documents. Pure.
#pragma once

#include "base/events.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

// The new value of `index` after the document at `from` has moved to `to`.
int TabIndexAfterMove(int index, int from, int to);

// The new value of `index` after `removed` is gone; -1 for the removed document.
int TabIndexAfterRemoval(int index, int removed);

// The document to show after `removed` of `count` documents is gone, as an index after the removal; -1 when none is
// left. An active document that is not removed stays shown. For a removed one, `wanted` is shown (an index before the
// removal, -1: none), else its neighbour.
int TabToShowAfterRemoval(int active, int removed, int count, int wanted);

// The part of a document that these rules need.
struct RowEntry {
    DocumentId id;
    bool modified;
    bool hasFile;
    bool pinned = false;
};

// The place nearest to `to` where the document at `from` may stand: pinned ones stand before all others.
int TabPlaceAllowed(std::span<const RowEntry> row, int from, int to);

// `wanted` when no document without a file has that label; else what it is without its number, with the lowest number
// that is free: "Untitled", "Untitled 2". `labels`: of those documents.
std::wstring FreeLabel(std::wstring wanted, std::span<const std::wstring> labels);

enum class CloseRange : std::uint8_t { All, Others, Right, Saved };

// The documents to close, from right to left. Others: all except `kept`. Right: those to the right of `kept`. Both are
// empty when `kept` is not in the row. Saved: those without changes. Only All takes pinned ones.
std::vector<DocumentId> DocumentsToClose(std::span<const RowEntry> row, CloseRange range, DocumentId kept);

// The next document to ask about before several are given up: the first of `candidates` (empty: of the row) that has
// changes and is not among those asked already. 0: none is left. A question may close, save or change other documents, so the row
// is read again after each.
DocumentId NextToAskAbout(std::span<const RowEntry> row, std::span<const DocumentId> candidates,
                          std::span<const DocumentId> asked);

// Who asks before documents are closed.
struct ClosingQuestions {
    std::function<std::vector<RowEntry>()> row;  // of this moment
    // One question about all of them; returns those that stay open.
    std::function<std::vector<DocumentId>(const std::vector<DocumentId>&)> ask;
};
// Asks about those of `candidates` (empty: of the row) that have changes: once about all of them, and again about those
// that have got changes meanwhile. Returns false at the first that stays open; with `refused` (may be null) it goes on,
// and that gets all of them. A document that is gone after its question counts as closed.
bool ConfirmClosing(std::span<const DocumentId> candidates, const ClosingQuestions& questions,
                    std::vector<DocumentId>* refused);

// The modified documents with a file (`withFile`) or without one, from left to right.
std::vector<DocumentId> DocumentsToSave(std::span<const RowEntry> row, bool withFile);
