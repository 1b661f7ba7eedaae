// From a diagnostic to its place: which files a printed name may mean, which diagnostic a line of the pane is, which one
// comes next. Pure.
#pragma once

#include "output/diagnostics.h"
#include "output/last_build.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

// The whole path of a name, without "." and ".." in it.
using PathWhole = std::function<std::wstring(const std::wstring& path)>;

// The files that a printed name may mean, likeliest first. A compiler prints names relative to where it ran or to the source
// or to the output, and knows the source under the name of its staged copy, which is gone by now.
std::vector<std::wstring> ErrorPlaces(std::wstring_view printed, const BuildRecord& build, const PathWhole& whole);

// The index of the record that says the same, or -1.
int FindDiagnostic(const CompilerErrors& errors, const CompilerError& wanted);

// Round the list in either direction; -1 when it is empty.
int NextErrorIndex(const CompilerErrors& errors);
int PreviousErrorIndex(const CompilerErrors& errors);
