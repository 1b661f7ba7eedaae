// Option "--detect": searches for the compilers, logs and shows the result.
#pragma once

#include "settings/settings.h"

#include <functional>
#include <string>

// Number of compilers with a valid path, and the text of the message box. Pure (detect_report.cpp).
int DetectCount(const Settings& settings, const std::function<bool(const wchar_t* path)>& isValid);
std::wstring DetectReportText(const Settings& settings, int found);

// Searches, writes the log, and returns how many of the compilers exist. UI thread only.
int RunCompilerDetect();

// RunCompilerDetect, closes the log, and shows the result in a message box.
void ShowDetectReport();
