// The View menu: what is shown, how big, in which colours and font. UI thread only.
#include "commands/view_commands.h"

#include "commands/toolbar.h"
#include "documents/document_row.h"
#include "files/file_io.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "settings/settings_state.h"
#include "ui/dpi.h"
#include "ui/panes.h"

#include <commdlg.h>

namespace {

void ToggleSetting(std::int32_t Settings::*setting) {
    SettingsChange([setting](Settings& settings) { settings.*setting = settings.*setting != 0 ? 0 : 1; });
}

void ChooseTheme(int theme) {
    if (g_settings.theme == theme) return;
    SettingsChange([theme](Settings& settings) { settings.theme = theme; });
    SettingsSave(nullptr);
}

void ChooseStyle(int preset) {
    SettingsChange([preset](Settings& settings) { settings.editorStylePreset = preset; });
    SettingsSave(nullptr);
}

void ChooseEditorFont() {
    LOGFONTW font = {};
    SafeCopyW(font.lfFaceName, g_settings.fontName);
    font.lfHeight = UiFontHeight(g_settings.fontSize);
    font.lfCharSet = DEFAULT_CHARSET;
    CHOOSEFONTW dialog = {};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = g_ui.hMainWnd;
    dialog.lpLogFont = &font;
    dialog.nSizeMin = 6;
    dialog.nSizeMax = 72;
    dialog.Flags = CF_SCREENFONTS | CF_INITTOLOGFONTSTRUCT | CF_LIMITSIZE | CF_FORCEFONTEXIST | CF_NOSCRIPTSEL;
    if (!ChooseFontW(&dialog)) return;
    SettingsChange([&](Settings& settings) {
        SafeCopyW(settings.fontName, font.lfFaceName);
        settings.fontSize = dialog.iPointSize / 10;
    });
    SettingsSave(nullptr);
}

bool HandleTextView(int command) {
    switch (command) {
        case IDM_VIEW_WHITESPACE: ToggleSetting(&Settings::showWhitespace); return true;
        case IDM_VIEW_WORD_WRAP: ToggleSetting(&Settings::wordWrap); return true;
        // One editor zooms; its notification brings the others and the setting along.
        case IDM_VIEW_ZOOM_IN: SciSend(g_documents.hEditor, SCI_ZOOMIN); return true;
        case IDM_VIEW_ZOOM_OUT: SciSend(g_documents.hEditor, SCI_ZOOMOUT); return true;
        case IDM_VIEW_ZOOM_RESET: SciSend(g_documents.hEditor, SCI_SETZOOM, 0); return true;
        default: return false;
    }
}

bool HandlePaneView(int command) {
    if (const PaneSpec* pane = PaneOfCommand(command)) {
        PaneShow(pane->id, !PaneIsShown(pane->id));
        return true;
    }
    switch (command) {
        case IDM_VIEW_TOOLBAR: ToggleSetting(&Settings::showToolbar); return true;
        case IDM_VIEW_STATUS_BAR: ToggleSetting(&Settings::showStatusbar); return true;
        default: return false;
    }
}

}  // namespace

bool HandleView(int command) {
    if (HandleTextView(command) || HandlePaneView(command)) return true;
    if (command == IDM_VIEW_LIGHT_THEME || command == IDM_VIEW_DARK_THEME) {
        ChooseTheme(command == IDM_VIEW_DARK_THEME ? 1 : 0);
        return true;
    }
    if (command >= IDM_STYLE_CODE && command <= IDM_STYLE_CLASSIC) {
        ChooseStyle(command - IDM_STYLE_FIRST + 1);
        return true;
    }
    if (command == IDM_TOOLBAR_MORE) {
        ToolbarShowMore();
        return true;
    }
    if (command == IDM_STYLE_FONT) {
        ChooseEditorFont();
        return true;
    }
    return false;
}
