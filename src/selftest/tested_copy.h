// The copy of the program on which a module of the self-test runs: a folder of its own with the executable, its
// libraries, settings that are the defaults but for the compilers, and the sample files. UI thread.
#pragma once

#include "selftest/modules.h"
#include "selftest/report.h"

#include <functional>
#include <string>

// Its folder with a backslash at the end; empty when it cannot be made, and then `*why` tells the reason.
std::wstring TestedCopyMake(std::string* why);
void TestedCopyRemove(const std::wstring& folder);

// Runs the module in that copy and gives `take` each line. Returns why the run did not end as it should: it crashed, or
// was silent for a minute and a half and was ended. Empty when it did.
std::string TestedCopyRun(const std::wstring& folder, const SelfTestModule& module,
                          const std::function<void(const CheckLine&)>& take);

// The environment variable that holds the module's name in the tested copy.
inline constexpr wchar_t kSelfTestVariable[] = L"KVX_SELFTEST";
