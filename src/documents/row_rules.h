// Arithmetic of the row of documents: what becomes of an index when the row changes, and which documents a command on
// several of them takes in which order. Pure.
#pragma once

#include "base/events.h"

#include <cstdint>
#include <span>
#include <vector>

// Where index `index` is after the document `from` moved to `to`.
int TabIndexAfterMove(int index, int from, int to);

// Where index `index` is once `removed` is gone; -1 for the removed one.
int TabIndexAfterRemoval(int index, int removed);

// The document to show once `removed` of `count` is gone, as an index into what is left: the active one stays; in its
// own place `wanted` comes (an index before the removal, -1: none), else its neighbour. -1 when nothing is left.
int TabToShowAfterRemoval(int active, int removed, int count, int wanted);

// What these rules know of a document.
struct RowEntry {
    DocumentId id;
    bool modified;
    bool hasFile;
};

enum class CloseRange : std::uint8_t { All, Others, Right };

// The documents to close, from the right to the left. `kept` is the one that Others spares and that Right begins after;
// nothing is closed when it is not in the row.
std::vector<DocumentId> DocumentsToClose(std::span<const RowEntry> row, CloseRange range, DocumentId kept);

// The modified documents with a file, or those without one, from the left to the right.
std::vector<DocumentId> DocumentsToSave(std::span<const RowEntry> row, bool withFile);
