// Carries out a build: pre-build command, compiler, post-build command, and the action after them. The decisions are
// made in compile/build_sequence.h. UI thread only.
#pragma once

#include "compile/build_sequence.h"

#include <string>

BuildSituation BuildSituationNow();
// Shows a step's lines, status text and mark of the document.
void BuildApplyStep(const BuildStep& step);

// Builds the active document. Returns 1 when its pre-build command or its compiler was started, else 0.
int BuildStart(const BuildOrder& order);

// Called when a build has ended (build_commands_win.cpp).
void BatchOnBuildEnd(bool success);
bool BatchIsRunning();
