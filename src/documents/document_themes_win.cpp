#include "documents/document_themes.h"

#include "documents/documents_state.h"
#include "editor/editor_pane.h"
#include "editor/theme.h"

void SyntaxThemeApplyAll() {
    for (const DocumentTab& tab : g_documents.tabs)
        if (tab.editor != nullptr) SyntaxThemeApply(tab.editor, tab.compilerId, tab.path);
}

void SettingsApplyToEditor() {
    SyntaxThemeApplyAll();
    for (const DocumentTab& tab : g_documents.tabs)
        if (tab.editor != nullptr) EditorPaneApplySettings(tab.editor);
}
