#include "selftest/selftest.h"

#include "base/log.h"
#include "base/utf8.h"
#include "selftest/checks.h"
#include "selftest/console.h"
#include "selftest/modules.h"
#include "selftest/report.h"
#include "selftest/tested_copy.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <windows.h>

#include <optional>
#include <utility>

namespace {

constexpr int kPassed = 0, kFailed = 1, kUnknown = 2;
constexpr DWORD kLastMs = 10'000;

void RunModule(const SelfTestModule& module, SelfTestTally* all) {
    SelfTestTally tally;
    std::string why;
    const std::wstring folder = TestedCopyMake(&why);
    if (!folder.empty()) {
        why = TestedCopyRun(folder, module,
                            [&](const CheckLine& line) { SelfTestPrint(SelfTestTake(tally, module.name, line)); });
        TestedCopyRemove(folder);
    }
    SelfTestPrint(SelfTestClose(tally, module.name, why));
    all->passed += tally.passed;
    all->failed += tally.failed;
    all->skipped += tally.skipped;
}

int RunModules(const std::vector<const SelfTestModule*>& modules) {
    SelfTestTally all;
    for (const SelfTestModule* module : modules) RunModule(*module, &all);
    SelfTestPrint(SelfTestSummary(all));
    return all.failed == 0 ? kPassed : kFailed;
}

// The module of this process; null when it is not a tested copy.
const SelfTestModule* OwnModule() {
    wchar_t name[64] = {};
    const DWORD length = GetEnvironmentVariableW(kSelfTestVariable, name, 64);
    return length > 0 && length < 64 ? SelfTestModuleOf(ToUtf8(name)) : nullptr;
}

struct SelfTestThread {
    HANDLE handle = nullptr;
    bool failed = false;  // written by the thread, read after its end
};
SelfTestThread g_selfTestThread;

DWORD WINAPI ThreadMain(void*) {
    const HWND frame = g_ui.hMainWnd;
    g_selfTestThread.failed = !selftest::RunChecks(*OwnModule(), frame);
    if (IsWindow(frame)) PostMessageW(frame, WM_CLOSE, 0, 0);
    return 0;
}

}  // namespace

int RunTestMode(const char* module) {
    const std::string_view name = module != nullptr ? module : "";
    SelfTestOpenConsole();
    if (name == "list") {
        SelfTestPrint(SelfTestList());
        return kPassed;
    }
    std::optional<std::string> unknown;
    const std::vector<const SelfTestModule*> modules = SelfTestModulesOf(name, &unknown);
    if (!unknown) return RunModules(modules);
    SelfTestPrint("There is no module \"" + *unknown + "\". The modules are:\n" + SelfTestList());
    return kUnknown;
}

int RunSelfTestOptions(const std::vector<std::wstring>& options) {
    SelfTestOpenConsole();
    std::vector<const SelfTestModule*> modules;
    for (const std::wstring& option : options)
        if (const SelfTestModule* module = SelfTestModuleOfOption(option); module != nullptr) modules.push_back(module);
    return RunModules(modules);
}

void SelfTestTellMessages() {
    g_toldInSelftest = [](const wchar_t* text) {
        selftest::SendCheckLine({.end = CheckEnd::Said, .name = ToUtf8(text), .why = {}});
    };
}

bool SelfTestIsChild() { return OwnModule() != nullptr; }

void SelfTestStart() {
    if (OwnModule() == nullptr || g_selfTestThread.handle != nullptr) return;
    selftest::ChecksAttach(g_ui.hMainWnd);
    g_selfTestThread.handle = CreateThread(nullptr, 0, ThreadMain, nullptr, 0, nullptr);
    if (g_selfTestThread.handle == nullptr) AppLogMsg(L"FAIL: SelfTestStart error=%lu", GetLastError());
}

int SelfTestEnd(int code) {
    const HANDLE thread = std::exchange(g_selfTestThread.handle, nullptr);
    if (thread == nullptr) return code;
    const bool ended = WaitForSingleObject(thread, kLastMs) == WAIT_OBJECT_0;
    CloseHandle(thread);
    return ended && !g_selfTestThread.failed ? kPassed : kFailed;
}
