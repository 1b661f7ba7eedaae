// The commands about symbols. UI thread.
#include "symbols/symbol_commands.h"

#include "base/texts.h"
#include "base/utf8.h"
#include "base/wide_format.h"
#include "resources/ids.h"
#include "search/files_search.h"
#include "symbols/outline_pane.h"
#include "symbols/peek_commands.h"
#include "symbols/references.h"
#include "symbols/rename_dialog.h"
#include "ui/panes.h"

#include <string>

namespace {

void ShowReferences(References references) {
    const std::wstring name = Utf8ToWideText(references.name);
    if (references.places == 0) return TellSymbolStatus(FormatW(Text(L"No references to %s"), name.c_str()));
    std::wstring note = FormatW(Text(L"%zu %s to %s in %zu %s"), references.places,
                                references.places == 1 ? Text(L"reference") : Text(L"references"), name.c_str(),
                                references.found.size(), references.found.size() == 1 ? Text(L"file") : Text(L"files"));
    if (references.limited) note = TextWith(L"The first {1}", {note});
    if (!references.unreadable.empty()) note += FormatW(Text(L"; %zu could not be read"), references.unreadable.size());
    TellSymbolStatus(note);
    FilesShowFound(note, references.name, std::move(references.found));
}

void FindAllReferences(int) {
    const std::optional<WordInDocument> word = WordAtPlace(-1);
    if (!word || word->word.isInclude) return TellSymbolStatus(Text(L"There is no name at the caret"));
    FindReferences(*word, ShowReferences);
}

void RenameAtCaret(int) {
    const std::optional<WordInDocument> word = WordAtPlace(-1);
    if (!word || word->word.isInclude) return TellSymbolStatus(Text(L"There is no name at the caret"));
    FindReferences(*word, RenameDialogShow);
}

constexpr CommandHandler kHandlers[] = {
    {IDM_SYMBOL_DEFINITION, [](int) { GoToDefinition(-1); }},
    {IDM_SYMBOL_REFERENCES, FindAllReferences},
    {IDM_SYMBOL_RENAME, RenameAtCaret},
    {IDM_PEEK_DEFINITION, [](int) { PeekDefinition(); }},
    {IDM_PEEK_CALLERS, [](int) { PeekCallers(); }},
};

}  // namespace

std::span<const CommandHandler> SymbolCommandHandlers() { return kHandlers; }
