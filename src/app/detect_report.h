// "--detect": the search for compilers, logged and shown.
#pragma once

#include "settings/settings.h"

#include <functional>
#include <string>

// How many of the compilers' paths name a file, and what the box says. Pure.
int DetectCount(const Settings& settings, const std::function<bool(const wchar_t* path)>& isValid);
std::wstring DetectReportText(const Settings& settings, int found);

// Searches, writes the log, and returns how many of the five compilers exist. UI thread only.
int RunCompilerDetect();

// RunCompilerDetect with its result in a message box.
void ShowDetectReport();
