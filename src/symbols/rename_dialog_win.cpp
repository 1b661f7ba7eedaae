// The dialog that renames, and the change of the documents. UI thread.
#include "symbols/rename_dialog.h"

#include "base/log.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "base/wide_format.h"
#include "debugui/kept_names.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "ui/chrome.h"
#include "ui/dialog_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

namespace {

constexpr int kLongestName = 128;         // characters
constexpr std::size_t kMostShown = 2000;  // places in the list

struct Renaming {
    References references;
    std::string newName;
};

std::wstring FileLabel(const FoundFile& file) {
    const int tab = TabBarFindDocument(file.document);
    return tab >= 0 ? std::wstring(TabAt(tab).label) : std::wstring(FileNameOf(file.path));
}

std::wstring CountOf(std::size_t count, const wchar_t* one, const wchar_t* many) {
    return FormatW(L"%zu %s", count, count == 1 ? one : many);
}

std::wstring PlacesText(const References& references) {
    return TextWith(L"{1} in {2}", {CountOf(references.places, Text(L"place"), Text(L"places")),
                                    CountOf(references.found.size(), Text(L"file"), Text(L"files"))});
}

// --- Whether the new name may be taken

// What else the new name means where the old one is used; empty: nothing.
std::wstring ClashIn(const References& references, const ReachedText& text, std::string_view newName) {
    const SymbolTable& table = *text.table;
    const bool own = text.document == references.word.document;
    for (const std::uint32_t index : SymbolsNamed(table, newName)) {
        const Symbol& symbol = table.symbols[index];
        bool clashes = symbol.kind != SymbolKind::Include;
        if (references.target.scope == ReferenceScope::Procedure) {
            const bool local = IsVariable(symbol.kind) && symbol.kind != SymbolKind::Global;
            const bool inside =
                own && symbol.line >= references.target.firstLine && symbol.line <= references.target.lastLine;
            clashes = clashes &&
                      (inside || (!local && symbol.kind != SymbolKind::Label && symbol.kind != SymbolKind::Member));
        }
        if (!clashes) continue;
        const FoundFile named{text.path, text.document, {}};
        return FormatW(Text(L"%s is already a %s in %s, line %u"), Utf8ToWideText(newName).c_str(),
                       SymbolKindText(symbol.kind), FileLabel(named).c_str(), symbol.line + 1);
    }
    return {};
}

std::wstring ProblemOf(const Renaming& renaming, const std::string& newName) {
    const References& references = renaming.references;
    if (newName == references.name) return L" ";  // nothing to do, and nothing to say
    if (!IsNewName(newName, references.name, DialectOf(references.word.compilerId)))
        return references.name.starts_with('%') || references.name.starts_with('$')
                   ? Text(L"A name with the mark of the old one, of letters, digits and underscores")
                   : Text(L"A name of letters, digits and underscores that is no keyword");
    if (CompareNames(newName, references.name) == 0) return {};  // other capitals
    for (const std::vector<ReachedText>& texts : {SymbolsInReach(references.word.document), SymbolsInProject()})
        for (const ReachedText& text : texts)
            if (std::wstring clash = ClashIn(references, text, newName); !clash.empty()) return clash;
    return {};
}

// --- The change

LRESULT Ask(HWND editor, UINT message, LRESULT wParam = 0, LRESULT lParam = 0) {
    return SciSend(editor, message, static_cast<WPARAM>(wParam), lParam);
}

bool HoldsName(HWND editor, const FileHit& hit, std::string_view name) {
    std::string text(name.size() + 1, '\0');
    const auto start = static_cast<LRESULT>(hit.start), end = start + static_cast<LRESULT>(name.size());
    if (end > Ask(editor, SCI_GETLENGTH)) return false;
    Sci_TextRangeFull range = {{start, end}, text.data()};
    SciSend(editor, SCI_GETTEXTRANGEFULL, 0, reinterpret_cast<LPARAM>(&range));
    text.pop_back();
    return CompareNames(text, name) == 0;
}

// Opens what is not open. Returns a sentence when a document cannot be changed as it is wanted; nothing has been changed
// then.
std::wstring OpenAll(References& references) {
    for (FoundFile& file : references.found) {
        int tab = TabBarFindDocument(file.document);
        if (tab < 0 && !file.path.empty()) tab = FileAdd(file.path.c_str());
        if (tab < 0) return FormatW(Text(L"%s could not be opened."), FileLabel(file).c_str());
        file.document = TabAt(tab).id;
        if (!TabBarRead(tab)) return FormatW(Text(L"%s could not be opened."), FileLabel(file).c_str());
        tab = TabBarFindDocument(file.document);  // reading a large file handles messages
        const HWND editor = TabAt(tab).editor;
        const bool whole =
            std::ranges::all_of(file.hits, [&](const FileHit& hit) { return HoldsName(editor, hit, references.name); });
        if (!whole) return FormatW(Text(L"%s has changed meanwhile."), TabAt(tab).label);
        if (Ask(editor, SCI_GETREADONLY) != 0) return FormatW(Text(L"%s cannot be changed."), TabAt(tab).label);
    }
    return {};
}

void RenameIn(HWND editor, const std::vector<FileHit>& hits, const std::string& newName) {
    Ask(editor, SCI_BEGINUNDOACTION);
    for (auto hit = hits.rbegin(); hit != hits.rend(); ++hit) {
        Ask(editor, SCI_SETTARGETRANGE, hit->start, static_cast<LRESULT>(hit->start) + hit->length);
        SciSend(editor, SCI_REPLACETARGET, newName.size(), reinterpret_cast<LPARAM>(newName.data()));
    }
    Ask(editor, SCI_ENDUNDOACTION);
}

void RenameAll(Renaming& renaming) {
    References& references = renaming.references;
    const std::wstring problem = OpenAll(references);
    if (!problem.empty()) {
        InfoMessage(Text(L"Nothing was renamed: %s"), problem.c_str());
        return;
    }
    for (const FoundFile& file : references.found)
        RenameIn(TabAt(TabBarFindDocument(file.document)).editor, file.hits, renaming.newName);
    const bool local = references.target.scope == ReferenceScope::Procedure;
    for (const FoundFile& file : references.found)
        NamesFollowSymbol(file.document, references.name, renaming.newName,
                          local ? references.target.firstLine + 1 : 0);
    TellSymbolStatus(FormatW(Text(L"Renamed %s to %s: %s"), Utf8ToWideText(references.name).c_str(),
                             Utf8ToWideText(renaming.newName).c_str(), PlacesText(references).c_str()));
}

// --- Whether the new name is used without a declaration

// Renames, but asks when the new name already stands where the renamed one would be meant.
void RenameOrAsk(Renaming& renaming, const References& used) {
    const References& old = renaming.references;
    std::wstring first;
    std::size_t places = 0;
    for (const FoundFile& file : used.found)
        for (const FileHit& hit : file.hits) {
            const bool inside = file.document == old.word.document && hit.line >= old.target.firstLine &&
                                hit.line <= old.target.lastLine;
            if (old.target.scope == ReferenceScope::Procedure && !inside) continue;
            if (places++ == 0) first = FormatW(Text(L"%s, line %u"), FileLabel(file).c_str(), hit.line + 1);
        }
    const std::wstring text = FormatW(Text(L"%s is declared nowhere, but it is used at %s, the first in %s. Afterwards "
                                           L"nothing would tell these from what "
                                           L"is renamed.\n\nRename nevertheless?"),
                                      Utf8ToWideText(renaming.newName).c_str(),
                                      CountOf(places, Text(L"place"), Text(L"places")).c_str(), first.c_str());
    TellSymbolStatus(L"");
    if (places == 0 || AskUser({.caption = Text(L"Name in Use"),
                                .text = text.c_str(),
                                .buttons = AskButtons::OkCancel,
                                .icon = AskIcon::Warning,
                                .inSelftest = Answer::No,
                                .enterIsNo = true,
                                .yes = Text(L"&Rename")}) == Answer::Yes)
        RenameAll(renaming);
}

// A member is meant by its type, whatever else has the name.
void RenameOnceLookedUp(Renaming renaming) {
    const bool capitals = CompareNames(renaming.newName, renaming.references.name) == 0;
    if (capitals || renaming.references.target.scope == ReferenceScope::Member) return RenameAll(renaming);
    WordInDocument word = renaming.references.word;
    word.word = {};
    word.word.name = renaming.newName;
    const auto shared = std::make_shared<Renaming>(std::move(renaming));
    FindReferences(word, [shared](const References& used) { RenameOrAsk(*shared, used); });
}

// --- The dialog

Renaming& RenamingOf(HWND dialog) { return *reinterpret_cast<Renaming*>(GetWindowLongPtrW(dialog, DWLP_USER)); }

void FillPlaces(HWND list, const References& references) {
    std::size_t shown = 0;
    int widest = 0;  // pixels
    for (const FoundFile& file : references.found)
        for (const FileHit& hit : file.hits) {
            if (++shown > kMostShown) continue;
            const std::wstring text =
                FormatW(L"%s (%u): ", FileLabel(file).c_str(), hit.line + 1) + Utf8ToWideText(hit.shown);
            SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
            widest = std::max(widest, UiTextWidth(text.c_str(), static_cast<int>(text.size())));
        }
    if (shown > kMostShown) {
        const std::wstring text = FormatW(Text(L"... and %zu more"), shown - kMostShown);
        SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
    widest += UiScaled(8);
    SendMessageW(list, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(widest), 0);
}

std::string NewName(HWND dialog) {
    wchar_t text[kLongestName + 1] = {};
    GetDlgItemTextW(dialog, IDC_RENAME_NAME, text, static_cast<int>(std::size(text)));
    return ToUtf8(text);
}

bool ShowRenameProblem(HWND dialog) {
    const std::wstring problem = ProblemOf(RenamingOf(dialog), NewName(dialog));
    SetDlgItemTextW(dialog, IDC_RENAME_PROBLEM, problem.c_str());
    EnableWindow(GetDlgItem(dialog, IDOK), problem.empty());
    return !problem.empty();
}

void FillRenameDialog(HWND dialog, const Renaming& renaming) {
    const References& references = renaming.references;
    const std::wstring name = Utf8ToWideText(references.name);
    SetDlgItemTextW(
        dialog, IDC_RENAME_WHAT,
        FormatW(L"%s %s, %s:", SymbolKindText(references.kind), name.c_str(), PlacesText(references).c_str()).c_str());
    FillPlaces(GetDlgItem(dialog, IDC_RENAME_PLACES), references);
    const HWND field = GetDlgItem(dialog, IDC_RENAME_NAME);
    SendMessageW(field, EM_SETLIMITTEXT, kLongestName, 0);
    SetWindowTextW(field, name.c_str());
    SendMessageW(field, EM_SETSEL, 0, -1);
    ShowRenameProblem(dialog);
    SetFocus(field);
}

void OnRenameCommand(HWND dialog, int control, int notification) {
    if (control == IDC_RENAME_NAME && notification == EN_CHANGE) {
        ShowRenameProblem(dialog);
    } else if (control == IDOK && !ShowRenameProblem(dialog)) {
        RenamingOf(dialog).newName = NewName(dialog);
        EndDialog(dialog, IDOK);
    } else if (control == IDCANCEL) {
        EndDialog(dialog, IDCANCEL);
    }
}

void TellUndeclared(const References& references) {
    const std::wstring name = Utf8ToWideText(references.name);
    TellSymbolStatus(L"");
    const WordClass kind = LookUpWord(references.name, DialectOf(references.word.compilerId)).kind;
    if (kind != WordClass::None && kind != WordClass::Preprocessor)
        return InfoMessage(Text(L"%s belongs to the language and cannot be renamed."), name.c_str());
    InfoMessage(Text(L"%s cannot be renamed, because it is declared nowhere: not in this document, not in what it "
                     L"includes, not in "
                     L"the project. Nothing tells which of its %s mean the same.\n\n"
                     L"Declare it first, or replace it as a whole word."),
                name.c_str(), PlacesText(references).c_str());
}

INT_PTR CALLBACK RenameDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            SetWindowLongPtrW(dialog, DWLP_USER, lParam);
            FillRenameDialog(dialog, *reinterpret_cast<const Renaming*>(lParam));
            DialogApplyTheme(dialog);
            return FALSE;  // the focus is set already
        case WM_CTLCOLORSTATIC:
            return DialogColourOfProblem(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam),
                                         IDC_RENAME_PROBLEM);
        case WM_COMMAND: OnRenameCommand(dialog, LOWORD(wParam), HIWORD(wParam)); return TRUE;
        default: return FALSE;
    }
}

}  // namespace

void RenameDialogShow(References references) {
    const std::wstring name = Utf8ToWideText(references.name);
    if (!references.definition) return TellUndeclared(references);
    const bool ofProcedure = references.target.scope == ReferenceScope::Procedure;
    if (ofProcedure && references.definition->document != references.word.document)
        return InfoMessage(Text(L"%s is a label of another file and cannot be renamed from here."), name.c_str());
    if (references.limited || SymbolsProjectLimited())
        return TellSymbolStatus(FormatW(Text(L"%s has too many places to be renamed"), name.c_str()));
    if (!references.unreadable.empty())
        return TellSymbolStatus(FormatW(Text(L"%s could not be read, so %s cannot be renamed everywhere"),
                                        references.unreadable.front().c_str(), name.c_str()));
    Renaming renaming{std::move(references), {}};
    TellSymbolStatus(L"");
    const INT_PTR answer = DialogBoxParamW(g_ui.hInstance, MAKEINTRESOURCEW(IDD_RENAME), g_ui.hMainWnd, RenameDlgProc,
                                           reinterpret_cast<LPARAM>(&renaming));
    if (answer == -1) AppLogMsg(L"FAIL: RenameDialogShow error=%lu", GetLastError());
    if (answer == IDOK) RenameOnceLookedUp(std::move(renaming));
}
