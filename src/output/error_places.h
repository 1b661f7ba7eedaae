// Finds the files that a printed name may mean, the record of a diagnostic line, and the next or previous record. Pure.
#pragma once

#include "output/diagnostics.h"
#include "output/last_build.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Returns the absolute path of a name, without "." and "..".
using PathWhole = std::function<std::wstring(const std::wstring& path)>;

// The paths that a printed name may mean, likeliest first. A compiler prints names relative to the source, to the
// output, to an include folder or to its working directory, which comes last because it is often the compiler's own
// folder. It prints the
// name of the staged copy for the source, and that copy has been deleted.
std::vector<std::wstring> ErrorPlaces(std::wstring_view printed, const BuildRecord& build, const PathWhole& whole);
// The same for a record: the paths of its own build. The record of no known build gets those of all builds, the latest
// build first, and without any build the printed name. None for a name of blanks.
std::vector<std::wstring> PlacesOfDiagnostic(const CompilerErrors& errors, const CompilerError& error,
                                             const PathWhole& whole);

// The same file, line, column, severity and message.
bool SameDiagnostic(const CompilerError& a, const CompilerError& b);
// The index of a record with the same file, line, column, severity and message, or -1. Two builds of a batch may print
// the same line: `before` equal lines stand above the wanted one.
int FindDiagnostic(const CompilerErrors& errors, const CompilerError& wanted, int before);
// The number of equal records above that of an index.
int EqualDiagnosticsBefore(const CompilerErrors& errors, int index);
// The number of such records.
int CountDiagnostic(const CompilerErrors& errors, const CompilerError& wanted);

// The index after or before `current`, wrapping at the ends of the list; -1 when the list is empty.
int NextErrorIndex(const CompilerErrors& errors);
// The same for the command: as long as none has been visited it is the current one, so that the first comes first.
int NextErrorToVisit(const CompilerErrors& errors);
int PreviousErrorIndex(const CompilerErrors& errors);
