// The list of recent files at the program's button of the taskbar. UI thread only.
#pragma once

// The program is no longer in front: renews the list when the recent files have changed, on a worker. Nothing is loaded
// and nothing happens before.
void JumpListOnInactive();
// The program ends. Waits half a second at most.
void JumpListEnd();
