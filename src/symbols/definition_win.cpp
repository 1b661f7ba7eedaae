// Go to definition: the word at a place, its declarations in the document, in what that includes, else in the project,
// and a menu when there are several. UI thread.
#include "symbols/symbol_commands.h"

#include "base/path.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "base/wide_format.h"
#include "compile/include_paths.h"
#include "documents/document_row.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "project/project.h"
#include "scintilla/sci.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"
#include "symbols/definition_search.h"
#include "symbols/symbol_place.h"
#include "ui/menu.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kMostCandidates = 24;  // that a menu has room for

std::vector<SymbolTablePtr> TablesOf(const std::vector<ReachedText>& texts) {
    std::vector<SymbolTablePtr> tables;
    for (const ReachedText& text : texts) tables.push_back(text.table);
    return tables;
}

bool IsThePlaceItself(const WordInDocument& word, const Candidates& found, const SymbolPlace& place) {
    const Symbol& symbol = found.texts[place.text].table->symbols[place.symbol];
    return place.text == 0 && symbol.line == word.line && symbol.column == word.word.start;
}

// The document first, then the project.
std::vector<ReachedText> ProjectFrom(DocumentId document) {
    std::vector<ReachedText> texts = SymbolsInProject();
    const auto own = std::ranges::find(texts, document, &ReachedText::document);
    if (own != texts.end()) std::rotate(texts.begin(), own, own + 1);
    return texts;
}

POINT BelowWord(const WordInDocument& word) {
    const auto x = SciSend(word.editor, SCI_POINTXFROMPOSITION, 0, word.position);
    const auto y = SciSend(word.editor, SCI_POINTYFROMPOSITION, 0, word.position);
    const auto height = SciSend(word.editor, SCI_TEXTHEIGHT, word.line);
    POINT point = {static_cast<LONG>(x), static_cast<LONG>(y + height)};
    ClientToScreen(word.editor, &point);
    return point;
}

std::wstring PlaceText(const ReachedText& text, const Symbol& symbol) {
    return L"\t" + FormatW(Text(L"%s, line %u"), NameOfText(text).c_str(), symbol.line + 1);
}

// "&" would underline the next letter of a menu's text.
std::wstring ForMenu(std::wstring text) {
    constexpr std::size_t kLongest = 80;
    if (text.size() > kLongest) text = text.substr(0, kLongest - 1) + L"\u2026";
    for (std::size_t at = text.find(L'&'); at != std::wstring::npos; at = text.find(L'&', at + 2))
        text.insert(at, L"&");
    return text;
}

void ChooseCandidate(const WordInDocument& word, const Candidates& found) {
    std::vector<std::wstring> texts;
    for (const SymbolPlace& place : found.places) {
        if (texts.size() == kMostCandidates) break;
        const ReachedText& text = found.texts[place.text];
        const Symbol& symbol = text.table->symbols[place.symbol];
        texts.push_back(ForMenu(SymbolDeclaration(*text.table, symbol)) + PlaceText(text, symbol));
    }
    std::vector<MenuItem> items;
    for (const std::wstring& text : texts)
        items.push_back({.id = static_cast<UINT>(items.size()) + 1, .text = text.c_str()});
    const UINT chosen = ShowPopupMenu(g_ui.hMainWnd, items, BelowWord(word));
    if (chosen == 0) return;
    const SymbolPlace& place = found.places[chosen - 1];
    SymbolGoTo(SpotOf(found.texts[place.text], place.symbol));
}

void ShowCandidates(const WordInDocument& word, Candidates found) {
    if (ActiveDocumentId() != word.document) return;  // the user has gone elsewhere meanwhile
    const std::wstring name = Utf8ToWideText(word.word.name);
    std::erase_if(found.places, [&](const SymbolPlace& place) { return IsThePlaceItself(word, found, place); });
    if (found.places.empty())
        TellSymbolStatus(FormatW(Text(L"This is the definition of %s"), name.c_str()));
    else if (found.places.size() == 1)
        SymbolGoTo(SpotOf(found.texts[found.places[0].text], found.places[0].symbol));
    else
        ChooseCandidate(word, found);
}

void GoToInclude(const WordInDocument& word) {
    const DocumentTab& document = TabAt(TabBarFindDocument(word.document));
    std::vector<std::wstring> folders = IncludeFolders(CompilerIncludePath(document.compilerId));
    const std::vector<std::wstring> all = IncludeFolders(g_settings.includePath);
    folders.insert(folders.end(), all.begin(), all.end());
    ProjectAddIncludeFolders(document.path, &folders);
    const std::wstring name = Utf8ToWideText(word.word.name);
    const std::wstring folder = document.hasFile ? FolderOf(document.path) : L"";
    for (const std::wstring& place : IncludePlaces(name, folder, folders)) {
        wchar_t whole[kPathCapacity] = {};
        if (PathNormalizeInput(place.c_str(), whole, kPathCapacity) && PathAnswers(whole) && FileExists(whole))
            return SymbolGoTo({.path = whole});
    }
    TellSymbolStatus(FormatW(Text(L"The included file %s was not found"), name.c_str()));
}

}  // namespace

Candidates CandidatesIn(std::vector<ReachedText> texts, const WordInDocument& word) {
    Candidates found{std::move(texts), {}};
    if (!found.texts.empty()) found.places = DefinitionsOf(word.word, word.line, TablesOf(found.texts));
    return found;
}

void FindDefinitions(const WordInDocument& word, std::function<void(Candidates)> ready) {
    SymbolsWhenReached(
        word.document,
        [word, ready = std::move(ready)] {
            Candidates found = CandidatesIn(SymbolsInReach(word.document), word);
            if (!found.places.empty()) return ready(std::move(found));
            SymbolsWhenProjectKnown([word, ready] {
                if (TabBarFindDocument(word.document) >= 0) ready(CandidatesIn(ProjectFrom(word.document), word));
            });
        });
}

std::wstring NameOfText(const ReachedText& text) {
    const int tab = TabBarFindDocument(text.document);
    return tab >= 0 ? TabAt(tab).label : std::wstring(FileNameOf(text.path));
}

void GoToDefinition(LRESULT position) {
    const std::optional<WordInDocument> word = WordAtPlace(position);
    if (!word) return TellSymbolStatus(Text(L"There is no name at the caret"));
    if (word->word.isInclude) return GoToInclude(*word);
    FindDefinitions(*word, [word = *word](Candidates found) {
        if (!found.places.empty()) return ShowCandidates(word, std::move(found));
        TellSymbolStatus(FormatW(Text(L"No definition of %s was found"), Utf8ToWideText(word.word.name).c_str()));
    });
}

bool HasDefinition(LRESULT position, LRESULT* start, LRESULT* end) {
    const std::optional<WordInDocument> word = WordAtPlace(position);
    if (!word) return false;
    *start = word->position;
    *end = word->position + static_cast<LRESULT>(word->word.name.size());
    const bool declared = !CandidatesIn(SymbolsInReach(word->document), *word).places.empty();
    return declared || word->word.isInclude || !SymbolsReachIsKnown(word->document);
}
