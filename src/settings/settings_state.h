// The settings in force. UI thread only.
#pragma once

#include "settings/run_overrides.h"
#include "settings/settings.h"

#include <memory>

// The main window's place, as the settings keep it; the frame notes it whenever it changes.
struct WindowPlace {
    bool known = false;
    int left = 0, top = 0, width = 0, height = 0;  // pixels, when neither maximised nor minimised
    bool maximised = false;
};

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
// is another now. Saves nothing. One in another tells nothing of its own.
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
