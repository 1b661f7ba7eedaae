// Where the main window stands at its start. Pixels on the screen unless said otherwise. Pure.
#pragma once

#include "settings/settings.h"
#include "ui/pane_id.h"

// Moves a window's rectangle so that its left top corner is in the work area; keeps its size.
PaneRect FitToWorkArea(const PaneRect& window, const PaneRect& work);

// Where a window comes back to on the monitor with this work area: where it was, when the middle of its caption is
// there, because then the user can move it. Otherwise it is made small enough for the work area and put wholly inside.
PaneRect PlaceForReturn(const PaneRect& window, const PaneRect& work, int captionHeight);
// The same for a window of the settings at another DPI: what has grown is made to fit into the work area, too.
PaneRect PlaceForReturnAt(const StoredPlace& stored, int dpi, const PaneRect& work, int captionHeight);
bool LiesInside(const PaneRect& window, const PaneRect& work);

// The rectangle of the settings, at the DPI at which it was stored, without numbers that overflow a sum.
PaneRect StoredRect(const StoredPlace& stored);
PaneRect FarRect(int left, int top, int width, int height);
// The same with its size at another DPI, and at least the least size of the window: it would not become smaller, and
// would then not be where it was fitted in.
PaneRect StoredRectAt(const StoredPlace& stored, int dpi);
// A window whose place is not known and that now is at `is`.
PaneRect FirstPlace(const PaneRect& is, const PaneRect& work, int dpi);
