// Applies a change of settings to windows, timers and file types. UI thread.
#include "app/main_window.h"

#include "ai/ai_replace.h"
#include "app/app_state.h"
#include "commands/toolbar.h"
#include "completion/completion.h"
#include "documents/document_themes.h"
#include "editor/editor_pane.h"
#include "output/mark_view.h"
#include "project/project.h"
#include "project/project_tree.h"
#include "resources/ids.h"
#include "settings/compiler_presence.h"
#include "settings/compiler_table.h"
#include "settings/file_types.h"
#include "settings/settings_effects.h"
#include "symbols/peek_window.h"

static void SetTimerOrStop(HWND window, UINT_PTR timer, UINT interval) {
    if (interval > 0)
        SetTimer(window, timer, interval, nullptr);
    else
        KillTimer(window, timer);
}

static void SetSessionTimer(HWND window, UINT interval) {
    SetTimerOrStop(window, TIMER_SESSION, g_app.settings.autoSaveEnabled != 0 ? interval : 0);
}

void MainWnd_ApplyTimers(HWND window) {
    SetTimerOrStop(window, TIMER_AUTO_SAVE, AutoSaveInterval(g_app.settings.autoSaveInterval));
    MainWnd_WaitForSession(window);
}

void MainWnd_WaitForSession(HWND window) {
    constexpr UINT kSessionInterval = 300000;  // ms
    SetSessionTimer(window, kSessionInterval);
}

void MainWnd_SaveSessionSoon() {
    constexpr UINT kPause = 3000;  // ms without another change
    SetSessionTimer(g_app.hMainWnd, kPause);
}

static void ApplyFileTypes(const Settings& before) {
    for (const CompilerProfile& compiler : g_compilers)
        if (before.compilers[compiler.id].registerExtension != 0 &&
            g_app.settings.compilers[compiler.id].registerExtension == 0)
            UnregisterFileExtensions(compiler.id);
    RegisterFileExtensions();
    FileExtNotifyShell();
}

void MainWnd_OnSettingsChanged(const Settings& before) {
    const std::uint32_t effects = SettingsEffectsOf(before, g_app.settings);
    if (effects != 0) CompletionClose();  // its colours and its rows are those of the settings before
    // A new theme makes Scintilla style all text again, so a change of zoom or wrapping must not set it.
    if ((effects & kEffectEditors) != 0)
        SettingsApplyToEditor();
    else if ((effects & kEffectView) != 0)
        for (const DocumentTab& tab : g_app.tabs)
            if (tab.editor != nullptr) EditorPaneApplySettings(tab.editor);
    if ((effects & (kEffectEditors | kEffectView)) != 0) SourceMarksRenew();
    if ((effects & (kEffectEditors | kEffectView)) != 0) AiRenewMarks();
    if ((effects & (kEffectEditors | kEffectView)) != 0) PeekApplySettings();
    if ((effects & kEffectFrame) != 0) MainWnd_ApplyTheme();
    if ((effects & kEffectCompiler) != 0) {
        MainWindow_UpdateCompilerSelection();
        CompilersLook(g_app.hMainWnd, MSG_COMPILERS_SEEN);
    }
    if ((effects & kEffectTimers) != 0) MainWnd_ApplyTimers(g_app.hMainWnd);
    if ((effects & kEffectShell) != 0) ApplyFileTypes(before);
    if ((effects & kEffectLayout) != 0) {
        ToolbarUpdateAi();
        // The next resize puts the bars where the ratios say, so they follow a bar that a session or an import has moved.
        if (before.splitter != g_app.settings.splitter || before.aiSidebarWidth != g_app.settings.aiSidebarWidth)
            CaptureSplitterRatio();
        MainWindow_Layout();
    }
    if ((effects & kEffectProject) != 0) ProjectTreePopulate();
    ProjectOnSettings();
    MainWindow_RequestStateRefresh();
}
