// The settings dialog: pages at the left, the settings of one at the right, all made from app/settings_pages.h. Modal,
// UI thread only.
#pragma once

#include <windows.h>

void SettingsDialogShow(HWND owner);
