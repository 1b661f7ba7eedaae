// What becomes of an index into the row of documents when the row changes. Pure.
#pragma once

// Where index `index` is after the document `from` moved to `to`.
int TabIndexAfterMove(int index, int from, int to);

// The document to show once `removed` of `count` is gone: the same one, or the neighbour that takes its place, or -1.
int TabIndexAfterRemoval(int active, int removed, int count);
