#include "settings/settings_state.h"

#include "base/events.h"

#include <cstring>

static int g_edits = 0;  // objects that exist now

SettingsEdit::SettingsEdit() {
    if (g_edits++ == 0) before_ = std::make_unique<Settings>(g_settings);
}

SettingsEdit::~SettingsEdit() {
    --g_edits;
    if (before_ == nullptr || std::memcmp(before_.get(), &g_settings, sizeof(Settings)) == 0) return;
    EndChangedOverrides(g_overrides, g_settings);
    g_events.settingsChanged(*before_);
}
