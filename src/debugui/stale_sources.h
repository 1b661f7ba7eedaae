// Warns when sources of the debugged program are not those that it was built from. UI thread only.
#pragma once

#include "output/last_build.h"

// At the start of a session: warns in the output pane of every open file of the program that is newer than it or has
// unsaved changes. Closed files are checked at a stop in them, because a program may have thousands.
void WarnOfStaleSources(const BuildRecord& program);
// At a stop: the same for the file of the stop, whose time is looked at once a second. Each warning comes once a session.
void WarnOfStaleStop();
