// The View menu: what is shown, how big, in which colours and font. UI thread only.
#include "app/view_commands.h"

#include "app/app_state.h"
#include "app/main_window.h"
#include "app/shell.h"
#include "build/output_pane.h"
#include "files/file_io.h"
#include "language/theme.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "toolbar/toolbar.h"

#include <commdlg.h>

namespace {

void Toggle(std::int32_t& setting) { setting = setting != 0 ? 0 : 1; }

// A pane that goes away while it has the keyboard would keep it.
void LeaveHiddenPane() {
    HWND focus = GetFocus();
    if (focus != nullptr && !IsWindowVisible(focus) && IsChild(g_app.hMainWnd, focus)) FocusCurrentEditor();
}

// The pane holds what it showed last; when it opens after a build that wrote a listing or a program, it shows that.
void ShowAsmPane(bool show) {
    g_app.showAsmPane = show;
    MainWindow_Layout();
    LeaveHiddenPane();
    if (!show) return;
    EnterCriticalSection(&g_buildCs);
    const std::wstring source = g_app.build.sourcePath;
    const std::wstring listing = g_app.build.listingPath;
    const std::wstring program = g_app.build.outputPath;
    LeaveCriticalSection(&g_buildCs);
    if (!source.empty() && (FileExists(listing.c_str()) || FileExists(program.c_str())))
        AsmPaneLoad(source.c_str(), listing.c_str());
}

void SetTheme(int theme) {
    if (g_app.settings.theme == theme) return;
    g_app.settings.theme = theme;
    SyntaxThemeApplyAll();
    MainWnd_ApplyTheme();
    SettingsSave(nullptr);
}

void SetStyle(int preset) {
    g_app.settings.editorStylePreset = preset;
    SyntaxThemeApplyAll();
    MainWnd_ApplyTheme();
    SettingsSave(nullptr);
}

void ChooseEditorFont() {
    LOGFONTW font = {};
    SafeCopyW(font.lfFaceName, g_app.settings.fontName);
    font.lfHeight = -MulDiv(g_app.settings.fontSize, g_app.dpi, 72);
    font.lfCharSet = DEFAULT_CHARSET;
    CHOOSEFONTW dialog = {};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = g_app.hMainWnd;
    dialog.lpLogFont = &font;
    dialog.nSizeMin = 6;
    dialog.nSizeMax = 72;
    dialog.Flags = CF_SCREENFONTS | CF_INITTOLOGFONTSTRUCT | CF_LIMITSIZE | CF_FORCEFONTEXIST | CF_NOSCRIPTSEL;
    if (!ChooseFontW(&dialog)) return;
    SafeCopyW(g_app.settings.fontName, font.lfFaceName);
    g_app.settings.fontSize = dialog.iPointSize / 10;
    SettingsApplyToEditor();
    SettingsSave(nullptr);
}

void ApplyToAllEditors(UINT message, WPARAM wParam) {
    for (const DocumentTab& tab : g_app.tabs) SciSend(tab.editor, message, wParam);
}

bool HandleText(int command) {
    Settings& settings = g_app.settings;
    switch (command) {
        case IDM_VIEW_WHITESPACE:
            Toggle(settings.showWhitespace);
            ApplyToAllEditors(SCI_SETVIEWWS, settings.showWhitespace != 0 ? SCWS_VISIBLEALWAYS : SCWS_INVISIBLE);
            return true;
        case IDM_VIEW_WORD_WRAP:
            Toggle(settings.wordWrap);
            ApplyToAllEditors(SCI_SETWRAPMODE, settings.wordWrap != 0 ? SC_WRAP_WORD : SC_WRAP_NONE);
            return true;
        // One editor zooms; its notification brings the others and the setting along.
        case IDM_VIEW_ZOOM_IN: SciSend(g_app.hEditor, SCI_ZOOMIN); return true;
        case IDM_VIEW_ZOOM_OUT: SciSend(g_app.hEditor, SCI_ZOOMOUT); return true;
        case IDM_VIEW_ZOOM_RESET: SciSend(g_app.hEditor, SCI_SETZOOM, 0); return true;
        default: return false;
    }
}

bool HandlePanes(int command) {
    Settings& settings = g_app.settings;
    switch (command) {
        case IDM_VIEW_TOOLBAR: Toggle(settings.showToolbar); break;
        case IDM_VIEW_STATUS_BAR: Toggle(settings.showStatusbar); break;
        case IDM_VIEW_OUTPUT: g_app.showOutput = !g_app.showOutput; break;
        case IDM_VIEW_ASM: ShowAsmPane(!g_app.showAsmPane); return true;
        case IDM_VIEW_AI:
            Toggle(settings.showAiSidebar);
            ToolbarUpdateAi();
            break;
        default: return false;
    }
    MainWindow_Layout();
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
