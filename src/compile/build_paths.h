// Names of the files around a build, derived from the source's and the output's. Pure.
#pragma once

#include "settings/compiler_table.h"

#include <string>
#include <string_view>

// Where the source is copied to before it is compiled: beside the output as ".bas" for KeldorBasic, beside itself as
// ".pb" for ".kxa" and ".bas" for ".ka32" with the others. Empty: it is compiled in place. `attempt` above 0 gives
// further names ("x.kvx1.pb") for the case that the first belongs to the user; KeldorBasic has only the first, because
// it names its output after the source.
std::wstring StagingTarget(std::wstring_view source, std::wstring_view output, CommandStyle style, int attempt);

// One of the extensions that a build of all open documents takes.
bool IsBatchBuildSource(std::wstring_view path);
