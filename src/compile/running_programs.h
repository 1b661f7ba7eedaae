// Processes that run a program which a build is about to write: the system lets nobody write its file meanwhile. Any
// thread.
#pragma once

#include "base/handles.h"

#include <string>
#include <vector>

// Those that this user may end.
std::vector<UniqueHandle> ProcessesOf(const std::wstring& program);
// Ends them and waits, for a short while at most, until the file can be written. False: it still cannot.
bool EndProcesses(const std::vector<UniqueHandle>& processes, const std::wstring& program);
// Why the file cannot be written, in the words of the system or "the disk is full"; empty: nothing is known.
std::wstring WhyUnwritable(const std::wstring& program);
