// The self-test: checks an installation by driving the editor as a user would. Each module runs in a copy of the program
// in a folder of its own, so that settings, files and registry of the user stay as they are. UI thread.
#pragma once

#include <string>
#include <vector>

// Runs modules (their names, parted by commas), "all" of them, or prints the "list". Results go to the console that started the program, or to its
// standard output, and to "SelfTest.log" in the user's folder. Returns the exit code of the process: 0 when nothing
// failed, 1 after a failure, 2 for an unknown module. Creates no window.
int RunTestMode(const char* module);

// The same for options as --selftest-tabs, one after the other.
int RunSelfTestOptions(const std::vector<std::wstring>& options);

// --- In the tested copy
// Whether this process is one.
bool SelfTestIsChild();
// What would be in message boxes goes to the process that started the copy, as the reason of a failure.
void SelfTestTellMessages();
// Starts the module's checks on a thread of their own. Called once the window is complete.
void SelfTestStart();
// After the message loop: waits for the checks and returns the exit code. `code` is returned when none were started.
int SelfTestEnd(int code);
