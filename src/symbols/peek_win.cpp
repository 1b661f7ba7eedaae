// The commands of the peek: what is declared by the name at the caret, and who uses it. In an open peek they mean the
// name at its own caret. UI thread.
#include "symbols/peek_commands.h"

#include "base/path.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "base/wide_format.h"
#include "documents/document_row.h"
#include "scintilla/sci.h"
#include "symbols/definition_search.h"
#include "symbols/peek_window.h"
#include "symbols/references.h"

#include <algorithm>
#include <string>

namespace {

constexpr std::size_t kMostPlaces = 500;  // of a page
constexpr std::uint32_t kNoLine = 0xFFFFFFFF;

// The texts that a peek's text reaches, that text first; empty when it is not among them.
std::vector<ReachedText> ReachFrom(const PeekCaret& caret) {
    const DocumentId document = TabBarFindDocument(caret.place.document) >= 0 ? caret.place.document : caret.under;
    std::vector<ReachedText> texts = SymbolsInReach(document);
    const auto own = std::ranges::find_if(texts, [&](const ReachedText& text) {
        return text.document != 0 ? text.document == caret.place.document
                                  : PathKey(text.path) == PathKey(caret.place.path);
    });
    if (own == texts.end()) return {};
    std::rotate(texts.begin(), own, own + 1);
    return texts;
}

WordInDocument WordOfPeek(const PeekCaret& caret, SymbolWord word) {
    const bool open = TabBarFindDocument(caret.place.document) >= 0;
    WordInDocument found{.document = open ? caret.place.document : caret.under};
    const int tab = TabBarFindDocument(found.document);
    if (tab >= 0) found.compilerId = TabAt(tab).compilerId;
    found.line = open ? caret.line : kNoLine;
    found.word = std::move(word);
    return found;
}

// The word at the caret of the peek or of the editor.
std::optional<WordInDocument> WordWanted(const std::optional<PeekCaret>& peek) {
    if (!peek) return WordAtPlace(-1);
    return peek->word ? std::optional(WordOfPeek(*peek, *peek->word)) : std::nullopt;
}

PeekPlace PlaceOf(const ReachedText& text, std::uint32_t index) {
    const Symbol& symbol = text.table->symbols[index];
    return {.document = text.document,
            .path = text.path,
            .line = symbol.line,
            .column = symbol.column,
            .length = symbol.nameLength,
            .where = FormatW(L"%s:%u", NameOfText(text).c_str(), symbol.line + 1),
            .text = SymbolDeclaration(*text.table, symbol)};
}

bool IsSamePlace(const PeekPlace& a, const PeekPlace& b) {
    return a.document == b.document && a.path == b.path && a.line == b.line && a.column == b.column;
}

bool ShowDefinitions(const std::wstring& name, const Candidates& found) {
    PeekPage page{.title = name, .places = {}};
    for (const SymbolPlace& place : found.places)
        if (page.places.size() < kMostPlaces) page.places.push_back(PlaceOf(found.texts[place.text], place.symbol));
    if (page.places.empty()) return false;
    const std::optional<PeekCaret> peek = PeekCaretNow();
    if (peek && page.places.size() == 1 && IsSamePlace(page.places.front(), peek->place)) {
        TellSymbolStatus(FormatW(Text(L"This is the definition of %s"), name.c_str()));
        return true;
    }
    if (page.places.size() == 1) page.title = page.places.front().text;
    PeekShowPage(std::move(page));
    return true;
}

// --- Callers

// The procedure around the caret, when there is no name at it.
std::optional<WordInDocument> ProcedureWanted(const std::optional<PeekCaret>& peek) {
    std::vector<ReachedText> texts = peek ? ReachFrom(*peek) : SymbolsInReach(ActiveDocumentId());
    if (texts.empty()) return std::nullopt;
    std::uint32_t line = peek ? peek->line : 0;
    if (!peek) {
        const LRESULT caret = SciSend(g_documents.hEditor, SCI_GETCURRENTPOS);
        line =
            static_cast<std::uint32_t>(SciSend(g_documents.hEditor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(caret)));
    }
    const SymbolTable& table = *texts.front().table;
    const std::uint32_t procedure = ProcedureAtLine(table, line);
    if (procedure == kNoSymbol) return std::nullopt;
    const SymbolWord word{.name = std::string(SymbolName(table, table.symbols[procedure]))};
    if (peek) return WordOfPeek(*peek, word);
    const DocumentTab& tab = TabAt(g_documents.activeTab);
    return WordInDocument{
        .document = tab.id, .editor = tab.editor, .compilerId = tab.compilerId, .line = kNoLine, .word = word};
}

// Only a declaration, and no use.
bool Declares(const References& references, const FoundFile& file, const FileHit& hit) {
    const std::optional<SymbolSpot>& spot = references.definition;
    const bool sameText =
        spot && (spot->document != 0 ? spot->document == file.document : PathKey(spot->path) == PathKey(file.path));
    if (sameText && spot->line == hit.line) return true;
    return hit.shown.size() > 8 && CompareNames(std::string_view(hit.shown).substr(0, 8), "declare ") == 0;
}

void ShowCallers(const References& references) {
    const std::wstring name = Utf8ToWideText(references.name);
    const bool called = IsProcedure(references.kind) || references.kind == SymbolKind::Macro;
    PeekPage page;
    for (const FoundFile& file : references.found)
        for (const FileHit& hit : file.hits) {
            if (page.places.size() == kMostPlaces || Declares(references, file, hit)) continue;
            const std::wstring label = NameOfText({.path = file.path, .document = file.document, .table = nullptr});
            page.places.push_back({.document = file.document,
                                   .path = file.path,
                                   .line = hit.line,
                                   .column = hit.markStart,
                                   .length = hit.length,
                                   .indented = true,
                                   .where = FormatW(L"%s:%u", label.c_str(), hit.line + 1),
                                   .text = Utf8ToWideText(hit.shown)});
        }
    if (page.places.empty()) return TellSymbolStatus(FormatW(Text(L"Nothing uses %s"), name.c_str()));
    page.title =
        FormatW(called ? Text(L"Callers of %s (%zu)") : Text(L"Uses of %s (%zu)"), name.c_str(), page.places.size());
    TellSymbolStatus(page.title);
    PeekShowPage(std::move(page));
}

}  // namespace

void PeekDefinition() {
    const std::optional<PeekCaret> peek = PeekCaretNow();
    const std::optional<WordInDocument> word = WordWanted(peek);
    if (!word || word->word.isInclude) return TellSymbolStatus(Text(L"There is no name at the caret"));
    const std::wstring name = Utf8ToWideText(word->word.name);
    if (peek) {
        WordInDocument own = *word;
        own.line = peek->line;
        std::vector<ReachedText> texts = ReachFrom(*peek);
        if (!texts.empty() && ShowDefinitions(name, CandidatesIn(std::move(texts), own))) return;
    }
    const DocumentId shown = ActiveDocumentId();
    FindDefinitions(*word, [name, shown](const Candidates& found) {
        if (ActiveDocumentId() != shown) return;  // the user has gone elsewhere meanwhile
        if (!ShowDefinitions(name, found))
            TellSymbolStatus(FormatW(Text(L"No definition of %s was found"), name.c_str()));
    });
}

void PeekCallers() {
    const std::optional<PeekCaret> peek = PeekCaretNow();
    std::optional<WordInDocument> word = WordWanted(peek);
    if (!word || word->word.isInclude) word = ProcedureWanted(peek);
    if (!word) return TellSymbolStatus(Text(L"There is no name at the caret"));
    const DocumentId shown = ActiveDocumentId();
    FindReferences(*word, [shown](const References& references) {
        if (ActiveDocumentId() == shown) ShowCallers(references);
    });
}
