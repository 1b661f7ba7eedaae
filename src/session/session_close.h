// Clearing the row of tabs before a session is loaded. UI thread only.
#pragma once

// Closes every tab; each modified document is asked about. One that the user will not close goes too, because a session
// starts from no tabs, but its text is put into a recovery copy first and the user is told where. False when even that
// was impossible: then that tab is still there, and nothing may be loaded.
bool CloseEveryTab();
