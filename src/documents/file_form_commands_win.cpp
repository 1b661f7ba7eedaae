#include "documents/file_form_commands.h"

#include "base/events.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "documents/file_form.h"
#include "resources/ids.h"
#include "scintilla/sci.h"

namespace {

// Bytes. In a longer text only the save converts the line breaks, because here it would take seconds.
constexpr LRESULT kConvertedAtOnce = 4 << 20;

// The file is another one than the document now says, until it is saved.
void MarkForSave(int tab) {
    if (TabAt(tab).hasFile) TabAt(tab).mustSave = TabAt(tab).modified = true;
    TabBarUpdateTitle(tab);
    g_events.refreshWanted();
}

void TellNextSave(int tab, const wchar_t* form) {
    g_events.documentStatus(TabAt(tab).id, FormatW(Text(L"%s will be saved as %s"), TabAt(tab).label, form).c_str());
}

}  // namespace

void DocumentEncode(int command) {
    const int tab = g_documents.activeTab;
    if (!IsTabIndex(tab)) return;
    DocumentTab& document = TabAt(tab);
    if (!ChooseFileForm(document, static_cast<FileForm>(command - IDM_ENCODE_UTF8))) return;
    TellNextSave(tab, EncodingName(document.encoding, document.form));
    MarkForSave(tab);
}

void DocumentReopen(int command) {
    const int tab = g_documents.activeTab;
    if (!IsTabIndex(tab) || !TabAt(tab).hasFile) return;
    const DocumentId id = TabAt(tab).id;
    const SourceCode before = TabAt(tab).readAs;
    TabAt(tab).readAs = SourceCodeOf(static_cast<FileForm>(command - IDM_REOPEN_UTF8));
    const bool read = FileReload(tab) != 0;
    const int now = TabBarFindDocument(id);
    if (now < 0) return;
    if (!read) TabAt(now).readAs = before;
    if (read) TabAt(now).formConfirmed = true;
    if (read)
        g_events.documentStatus(
            id, FormatW(Text(L"Read as %s"), EncodingName(TabAt(now).encoding, TabAt(now).form)).c_str());
    g_events.refreshWanted();
}

void DocumentSetEnding(int command) {
    const int tab = g_documents.activeTab;
    if (!IsTabIndex(tab)) return;
    DocumentTab& document = TabAt(tab);
    const EndingChange change = ChooseLineEnding(document, static_cast<LineEnding>(command - IDM_ENDING_CRLF));
    if (change == EndingChange::Refused)
        g_events.documentStatus(document.id,
                                Text(L"The file holds NUL bytes: its line breaks are data and stay as they are"));
    if (change != EndingChange::Changed) return;
    const HWND editor = document.editor;
    TabBarUpdateLineEnding(tab);
    if (SciSend(editor, SCI_GETLENGTH) <= kConvertedAtOnce && SciSend(editor, SCI_GETREADONLY) == 0)
        SciSend(editor, SCI_CONVERTEOLS, static_cast<WPARAM>(SciSend(editor, SCI_GETEOLMODE)));
    constexpr const wchar_t* kNames[] = {L"CRLF", L"LF", L"CR"};
    TellNextSave(tab, kNames[command - IDM_ENDING_CRLF]);
    MarkForSave(tab);
}
