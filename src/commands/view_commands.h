// The View menu. UI thread only.
#pragma once

// False: not one of its commands.
bool HandleView(int command);
