// Whether the sources of the debugged program are still those that it was built from. UI thread only.
#pragma once

#include "output/last_build.h"

// A session begins: warns in the output pane of every open file of the program that is newer than it or has unsaved
// changes. Only of open ones, because a program may have thousands; the others are looked at when a stop is in them.
void WarnOfStaleSources(const BuildRecord& program);
// The program has stopped: the same for the file of the stop. Each warning comes once a session.
void WarnOfStaleStop();
