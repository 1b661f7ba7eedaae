// The View menu: what is shown, how big, in which colours and font. UI thread only.
#include "commands/view_commands.h"

#include "base/events.h"
#include "commands/toolbar.h"
#include "disasm/asm_pane.h"
#include "documents/document_row.h"
#include "files/file_io.h"
#include "output/last_build.h"
#include "output/output_pane.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "settings/settings_state.h"
#include "ui/ui_state.h"

#include <commdlg.h>

namespace {

void Toggle(std::int32_t Settings::*setting) {
    SettingsChange([setting](Settings& settings) { settings.*setting = settings.*setting != 0 ? 0 : 1; });
}

// A pane that goes away while it has the keyboard would keep it.
void LeaveHiddenPane() {
    HWND focus = GetFocus();
    if (focus != nullptr && !IsWindowVisible(focus) && IsChild(g_ui.hMainWnd, focus)) FocusCurrentEditor();
}

// The pane holds what it showed last; when it opens after a build that wrote a listing or a program, it shows that.
void ShowAsmPane(bool show) {
    g_ui.showAsmPane = show;
    g_events.layoutWanted();
    LeaveHiddenPane();
    if (!show) return;
    const BuildRecord& last = LastBuild();
    if (!last.source.empty() && (FileExists(last.listing.c_str()) || FileExists(last.output.c_str())))
        AsmPaneLoad(last.source.c_str(), last.listing.c_str());
}

void SetTheme(int theme) {
    if (g_settings.theme == theme) return;
    SettingsChange([theme](Settings& settings) { settings.theme = theme; });
    SettingsSave(nullptr);
}

void SetStyle(int preset) {
    SettingsChange([preset](Settings& settings) { settings.editorStylePreset = preset; });
    SettingsSave(nullptr);
}

void ChooseEditorFont() {
    LOGFONTW font = {};
    SafeCopyW(font.lfFaceName, g_settings.fontName);
    font.lfHeight = -MulDiv(g_settings.fontSize, g_ui.dpi, 72);
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

bool HandleText(int command) {
    switch (command) {
        case IDM_VIEW_WHITESPACE: Toggle(&Settings::showWhitespace); return true;
        case IDM_VIEW_WORD_WRAP: Toggle(&Settings::wordWrap); return true;
        // One editor zooms; its notification brings the others and the setting along.
        case IDM_VIEW_ZOOM_IN: SciSend(g_documents.hEditor, SCI_ZOOMIN); return true;
        case IDM_VIEW_ZOOM_OUT: SciSend(g_documents.hEditor, SCI_ZOOMOUT); return true;
        case IDM_VIEW_ZOOM_RESET: SciSend(g_documents.hEditor, SCI_SETZOOM, 0); return true;
        default: return false;
    }
}

bool HandlePanes(int command) {
    switch (command) {
        case IDM_VIEW_TOOLBAR: Toggle(&Settings::showToolbar); break;
        case IDM_VIEW_STATUS_BAR: Toggle(&Settings::showStatusbar); break;
        case IDM_VIEW_OUTPUT: g_ui.showOutput = !g_ui.showOutput; break;
        case IDM_VIEW_ASM: ShowAsmPane(!g_ui.showAsmPane); return true;
        case IDM_VIEW_AI: Toggle(&Settings::showAiSidebar); break;
        default: return false;
    }
    g_events.layoutWanted();
    LeaveHiddenPane();
    return true;
}

}  // namespace

bool HandleView(int command) {
    if (HandleText(command) || HandlePanes(command)) return true;
    if (command == IDM_VIEW_LIGHT_THEME || command == IDM_VIEW_DARK_THEME) {
        SetTheme(command == IDM_VIEW_DARK_THEME ? 1 : 0);
        return true;
    }
    if (command >= IDM_STYLE_CODE && command <= IDM_STYLE_CLASSIC) {
        SetStyle(command - IDM_STYLE_FIRST + 1);
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
