// The commands about symbols. UI thread.
#include "symbols/symbol_commands.h"

#include "base/count_text.h"
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
    const std::wstring files = CountText(references.found.size(), English(L"{1} file"), English(L"{1} files"));
    std::wstring note = TextWith(
        references.places == 1 ? English(L"{1} reference to {2} in {3}") : English(L"{1} references to {2} in {3}"),
        {std::to_wstring(references.places), name, files});
    if (references.limited) note = TextWith(L"The first {1}", {note});
    if (!references.unreadable.empty())
        note = TextWith(L"{1}; {2} could not be read", {note, std::to_wstring(references.unreadable.size())});
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
