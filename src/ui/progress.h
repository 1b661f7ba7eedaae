// What runs at the moment, for the field of the status bar that all kinds of work share. UI thread only.
#pragma once

#include <cstdint>
#include <string>

enum class ProgressOf : std::uint8_t { Build, Search, Count };
void ProgressShow(ProgressOf work, const std::wstring& text);  // empty: it does not run
bool ProgressRuns(ProgressOf work);
