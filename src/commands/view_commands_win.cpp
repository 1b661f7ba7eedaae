// The commands of the View menu: panes, bars, zoom, theme, style and font. UI thread.
#include "commands/view_commands.h"

#include "base/texts.h"
#include "commands/commands_state.h"
#include "commands/toolbar.h"
#include "documents/document_row.h"
#include "editor/caret_place.h"
#include "files/file_io.h"
#include "output/output_pane.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "settings/settings_state.h"
#include "tabs/tabs_state.h"
#include "ui/dialog_theme.h"
#include "ui/dpi.h"
#include "ui/panes.h"
#include "ui/theme_table.h"

#include <commdlg.h>

#include <vector>

namespace {

template <std::int32_t Settings::*setting>
void ToggleSetting(int) {
    SettingsChange([](Settings& settings) { settings.*setting = settings.*setting != 0 ? 0 : 1; });
}

void ChooseTheme(int command) {
    const int theme = command == IDM_VIEW_DARK_THEME ? 1 : 0;
    if (g_settings.theme == theme) return;
    SettingsChange([theme](Settings& settings) { settings.theme = theme; });
    SettingsSave(nullptr);
}

void ChooseStyle(int command) {
    const int preset = command == IDM_STYLE_OWN ? 0 : command - IDM_STYLE_FIRST + 1;
    SettingsChange([preset](Settings& settings) {
        const auto font = FontWithStyle(settings.editorStylePreset, preset, settings.fontName, settings.fontSize);
        settings.editorStylePreset = preset;
        if (!font) return;
        SafeCopyW(settings.fontName, font->face);
        settings.fontSize = font->points;
    });
    SettingsSave(nullptr);
}

void ChooseEditorFont(int) {
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
    dialog.Flags =
        CF_SCREENFONTS | CF_INITTOLOGFONTSTRUCT | CF_LIMITSIZE | CF_FORCEFONTEXIST | CF_NOSCRIPTSEL | CF_ENABLEHOOK;
    dialog.lpfnHook = ChooserThemeHook;
    if (!ChooseFontW(&dialog)) return;
    SettingsChange([&](Settings& settings) {
        SafeCopyW(settings.fontName, font.lfFaceName);
        settings.fontSize = dialog.iPointSize / 10;
    });
    SettingsSave(nullptr);
}

void TogglePane(int command) {
    const PaneSpec& pane = *PaneOfCommand(command);
    // A pane below the bottom is seen only together with the output.
    const bool below = pane.area == PaneArea::BelowBottom;
    const bool seen = PaneIsShown(pane.id) && (!below || PaneIsShown(PaneId::Output));
    if (below && !seen) {
        PaneSetShown(PaneId::Output, true);
        PaneSetShown(pane.id, false);  // so that it counts as opened now
    }
    PaneShow(pane.id, !seen);
}

// The panes in sight, one area after the other, as the eye goes: below the editor, right and left of it.
std::vector<const PaneSpec*> PanesInOrder() {
    std::vector<const PaneSpec*> panes;
    for (const PaneArea area :
         {PaneArea::Bottom, PaneArea::BottomRight, PaneArea::BelowBottom, PaneArea::Right, PaneArea::Left})
        for (const PaneSpec& pane : Panes())
            if (pane.area == area && IsWindowVisible(*pane.window)) panes.push_back(&pane);
    return panes;
}

// Gives the keyboard to the next pane that is shown, or to the one before; the editor is the first of them, the two bars and
// the tabs are the last.
void FocusPaneBeside(int command) {
    std::vector<HWND> stops = {g_documents.hEditor};
    if (g_ui.hStartPage != nullptr) stops.push_back(g_ui.hStartPage);
    std::size_t at = 0;
    const HWND focus = GetFocus();
    const PaneSpec* current = PaneOfWindow(focus);
    if (IsChild(g_ui.hStartPage, focus)) at = 1;
    for (const PaneSpec* pane : PanesInOrder()) {
        if (pane == current) at = stops.size();
        stops.push_back(*pane->window);
    }
    for (const HWND bar : {g_commands.hStatusBar, g_commands.hToolbar}) {
        if (!IsWindowVisible(bar)) continue;
        if (bar == focus) at = stops.size();
        stops.push_back(bar);
    }
    if (focus == g_tabs.hTabCtrl) at = stops.size();
    if (TabCount() > 0) stops.push_back(g_tabs.hTabCtrl);
    const std::size_t step = command == IDM_NEXT_PANE ? 1 : stops.size() - 1;
    const HWND next = stops[(at + step) % stops.size()];
    if (next == g_documents.hEditor)
        FocusEditorFromPane();
    else
        SetFocus(next);
}

void ToggleFold() {
    if (!CaretToggleFold(g_documents.hEditor))
        g_events.documentStatus(ActiveDocumentId(), Text(L"No block to fold here"));
}

constexpr CommandHandler kViewHandlers[] = {
    {IDM_VIEW_TOOLBAR, ToggleSetting<&Settings::showToolbar>},
    {IDM_VIEW_STATUS_BAR, ToggleSetting<&Settings::showStatusbar>},
    {IDM_VIEW_OUTPUT, TogglePane},
    {IDM_VIEW_ASM, TogglePane},
    {IDM_VIEW_AI, TogglePane},
    {IDM_VIEW_DEBUG_PANE, TogglePane},
    {IDM_VIEW_TREE, TogglePane},
    {IDM_VIEW_TERMINAL, TogglePane},
    {IDM_VIEW_ERROR_LIST, TogglePane},
    {IDM_VIEW_FILES_RESULTS, TogglePane},
    {IDM_VIEW_OUTLINE, TogglePane},
    {IDM_NEXT_PANE, FocusPaneBeside},
    {IDM_PREVIOUS_PANE, FocusPaneBeside},
    {IDM_VIEW_WHITESPACE, ToggleSetting<&Settings::showWhitespace>},
    {IDM_VIEW_WORD_WRAP, ToggleSetting<&Settings::wordWrap>},
    {IDM_VIEW_ERROR_TEXTS, ToggleSetting<&Settings::showErrorTexts>},
    {IDM_VIEW_FOLD, [](int) { ToggleFold(); }},
    {IDM_ERROR_SOURCE, [](int) { OutputGoToSource(); }},
    {IDM_OUTPUT_COPY_ALL, [](int) { OutputCopyAll(); }},
    {IDM_OUTPUT_CLEAR, [](int) { OutputPaneClear(); }},
    // Only the active editor zooms here. Its SCN_ZOOM changes the setting, which zooms the other editors.
    {IDM_VIEW_ZOOM_IN, [](int) { SciSend(g_documents.hEditor, SCI_ZOOMIN); }},
    {IDM_VIEW_ZOOM_OUT, [](int) { SciSend(g_documents.hEditor, SCI_ZOOMOUT); }},
    {IDM_VIEW_ZOOM_RESET, [](int) { SciSend(g_documents.hEditor, SCI_SETZOOM, 0); }},
    {IDM_STYLE_CODE, ChooseStyle},
    {IDM_STYLE_STUDIO, ChooseStyle},
    {IDM_STYLE_PLUS, ChooseStyle},
    {IDM_STYLE_SUBLIME, ChooseStyle},
    {IDM_STYLE_CLASSIC, ChooseStyle},
    {IDM_STYLE_OWN, ChooseStyle},
    {IDM_STYLE_FONT, ChooseEditorFont},
    {IDM_VIEW_LIGHT_THEME, ChooseTheme},
    {IDM_VIEW_DARK_THEME, ChooseTheme},
    {IDM_TOOLBAR_MORE, [](int) { ToolbarShowMore(); }},
};

}  // namespace

std::span<const CommandHandler> ViewCommandHandlers() { return kViewHandlers; }
