// Closes all documents before a session is loaded. UI thread.
#include "session/session_close.h"

#include "base/handles.h"
#include "base/log.h"
#include "base/texts.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "editor/editor_pane.h"
#include "files/recovery.h"
#include "ui/message.h"

#include <string>
#include <vector>

namespace {

// Writes the document's text to a recovery copy and adds its place to `kept`. False when it could not be written.
bool KeepText(const DocumentTab& document, std::wstring& kept) {
    std::size_t length = 0;
    const HeapBlock<char> text{EditorPaneGetText(document.editor, &length)};
    const wchar_t* target = document.hasFile ? document.path : document.label;
    RecoveryCopy copy;
    if (!text || !RecoveryWrite(target, text.get(), length, &copy)) return false;
    // RecoveryKeep is not called, because a later save of a file with the same name would then remove the copy that the
    // user was told about, and several untitled documents have the same label.
    kept += std::wstring{L"\n\n"} + document.label + L":\n" + copy.path;
    return true;
}

}  // namespace

bool CloseEveryTab() {
    std::vector<DocumentId> refused;
    FileConfirmCloseAll({}, &refused);
    std::wstring kept;
    for (const DocumentId id : refused) {
        const int tab = TabBarFindDocument(id);
        if (tab < 0 || !TabAt(tab).modified || KeepText(TabAt(tab), kept)) continue;
        AppLogMsg(L"FAIL: SessionLoad could not keep the text of %s", TabAt(tab).label);
        ErrorMessage(Text(L"The session was not loaded: the unsaved changes of %s could not be kept anywhere."),
                     TabAt(tab).label);
        return false;
    }
    TabBarRemoveAll();
    if (!kept.empty()) {
        InfoMessage(Text(L"The session replaces all open documents. Changes that you did not save are kept here:%s"),
                    kept.c_str());
    }
    return true;
}
