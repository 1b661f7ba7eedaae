// The checks of the self-test and what they drive the frame with. They run on a thread of their own and reach the window
// only by messages, so a window that does not answer fails a check and hangs nothing.
#pragma once

#include "selftest/modules.h"
#include "selftest/report.h"

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace selftest {

// UI thread, before the checks begin: lets OnUiThread reach it.
void ChecksAttach(HWND frame);

// To the process that has started this one. Any thread.
void SendCheckLine(const CheckLine& line);

// Runs the module's checks and sends a line for each to the standard output. True when none failed. The checks' thread.
bool RunChecks(const SelfTestModule& module, HWND frame);

// --- For the modules, on the checks' thread
// Begins and ends a check. `holds` may wait, at most for a build.
void Check(const std::string& name, const std::function<bool()>& holds);
void SkipCheck(const std::string& name, const std::string& why);
// What the last failing check is to say of its reason.
void CheckSays(const std::string& why);

bool Await(const std::function<bool()>& holds, int milliseconds = 10'000);
inline constexpr int kBuildMs = 60'000;

HWND Frame();
HWND Pane(int id);  // child of the frame by its number
// The message's result; 0 when the window does not answer in time, after which nothing more is sent.
LRESULT Ask(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
void Command(int id);  // and waits until it is done
void OnUiThread(const std::function<void()>& work);

std::wstring TextOf(HWND window);
std::wstring StatusText(int part = 0);
std::wstring OutputText();

int TabCountNow();
int ActiveTabNow();
std::wstring TabTextOf(int tab);
void ClickTab(int tab);

HWND EditorNow();  // of the active tab
LRESULT EditorAsk(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
std::string EditorText();
void TypeText(const std::string& ascii);  // one WM_CHAR after the other

POINT PlaceOf(LRESULT position);  // of the active editor, in its client area
void Click(HWND window, POINT at, WPARAM keys = 0, int times = 1);
void Drag(HWND window, POINT from, POINT to);

// Opens a file as one that is dropped on the frame. False when no tab shows it in time.
bool DropFile(const std::wstring& path);
// The full path of a sample file, which stands beside the tested copy; writes it there.
std::wstring SamplePath(const std::string& name);
std::wstring MakeSample(const std::string& name);

}  // namespace selftest
