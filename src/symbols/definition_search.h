// The search for the declarations of a word, in what its document reaches, else in the project. UI thread only.
#pragma once

#include "symbols/definitions.h"
#include "symbols/symbol_place.h"

#include <functional>
#include <string>
#include <vector>

struct Candidates {
    std::vector<ReachedText> texts;
    std::vector<SymbolPlace> places;  // likeliest first
};
// Those in the texts, of which the first is the word's own.
Candidates CandidatesIn(std::vector<ReachedText> texts, const WordInDocument& word);
// Calls `ready` once the symbols that it needs are known; without places when there are none. Not called when the
// document is closed meanwhile.
void FindDefinitions(const WordInDocument& word, std::function<void(Candidates)> ready);

// "types.inc": the document's label, else the file's name.
std::wstring NameOfText(const ReachedText& text);
