// A build from the request to its report: pre-build command, compiler, post-build command, and what is to follow. What comes
// next is decided in compile/build_sequence.h; here it is done. UI thread only.
#pragma once

#include "compile/build_sequence.h"

#include <string>

BuildSituation BuildSituationNow();
// Says what a step has to say: lines, status, mark of the document.
void BuildApplyStep(const BuildStep& step);

// Builds the active document. 1 when its pre-build command or its compiler was started.
int BuildStart(const BuildOrder& order);

// What follows a build (build_commands_win.cpp).
void RunBuiltProgram(const std::wstring& program);
void BatchOnBuildEnd(bool success);
bool BatchIsRunning();
