// What one statement of BASIC declares. Used by the scan for symbols (symbols.cpp). Pure.
#pragma once

#include "language/symbol_parts.h"

// Whether a statement that begins with this word may declare something, or ends a block that does.
bool WordDeclares(BasicWord word);
// Whether the statements of the innermost open block are names without a word before them.
bool BlockListsNames(std::uint64_t blocks);

// Adds what the statement declares to the piece, and opens and closes its blocks. The statement is not empty.
void ReadDeclaration(DeclarationReader& reader, Parts statement);
