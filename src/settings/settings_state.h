// The settings in force. UI thread only.
#pragma once

#include "settings/run_overrides.h"
#include "settings/settings.h"

#include <memory>

struct SettingsState {
    Settings settings;       // what Editor.ini holds
    RunOverrides overrides;  // the settings that the command line changed for this run
    WindowPlace windowPlace;
};
// Parts of `g_app` (app/app_state.h).
extern Settings& g_settings;
extern RunOverrides& g_overrides;
extern WindowPlace& g_windowPlace;

// Code may change `g_settings` while a SettingsEdit exists. When the outermost one ends and a setting differs, it
// raises settingsChanged with the settings from before (base/events.h). Every change that a user can cause is made this
// way: by menus, dialogs, dragging, recent files, a session or an import. It does not save.
class SettingsEdit {
public:
    SettingsEdit();
    ~SettingsEdit();
    SettingsEdit(const SettingsEdit&) = delete;
    SettingsEdit& operator=(const SettingsEdit&) = delete;

private:
    std::unique_ptr<Settings> before_;  // 150 kB, too much for the stack
};

// Runs one change inside a SettingsEdit.
template <typename Change>
void SettingsChange(Change change) {
    const SettingsEdit edit;
    change(g_settings);
}
