// The settings in force. UI thread only.
#pragma once

#include "settings/run_overrides.h"
#include "settings/settings.h"

#include <memory>

struct SettingsState {
    Settings settings;       // what Editor.ini holds
    RunOverrides overrides;  // of them, what the command line set for this run only
    WindowPlace windowPlace;
};
// Parts of `g_app` (app/app_state.h).
extern Settings& g_settings;
extern RunOverrides& g_overrides;
extern WindowPlace& g_windowPlace;

// While one lives, code may change `g_settings`; at its end it tells what they were before (base/events.h) when one of them
// is another now. Every change that a user can cause is made in one: menus, dialogs, dragging, recent files, a session, an
// import. Saves nothing. One in another tells nothing of its own.
class SettingsEdit {
public:
    SettingsEdit();
    ~SettingsEdit();
    SettingsEdit(const SettingsEdit&) = delete;
    SettingsEdit& operator=(const SettingsEdit&) = delete;

private:
    std::unique_ptr<Settings> before_;  // 150 kB: too much for the stack
};

// One such change.
template <typename Change>
void SettingsChange(Change change) {
    const SettingsEdit edit;
    change(g_settings);
}
