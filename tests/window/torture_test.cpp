// Random use of the real window for a while: no crash, no hang, no leak, no text that is not what the edits made of it, and
// settings that the next start reads. KVX_TORTURE_SECONDS and KVX_TORTURE_SEED make a long run of it (scripts/torture).
#include "window/torture_driver.h"

#include "resources/ids.h"
#include "settings/settings_schema.h"

#include <chrono>
#include <filesystem>

namespace {

using torture::Counts;
using torture::Driver;

int Given(const wchar_t* name, int usual) {
    const std::wstring value = Variable(name);
    return value.empty() ? usual : std::stoi(value);
}

// All that a number of settings says is what the program would make of it.
void ExpectReadable(const ProgramFolder& folder) {
    int read = 0;
    const auto reset = std::make_unique<Settings>();
    SettingsReset(*reset);
    for (const SettingRow& row : SettingRows()) {
        if ((row.type != SettingType::Bool && row.type != SettingType::Int) || (row.flags & kSettingLoadOnly) != 0)
            continue;
        const std::wstring value = folder.Ini(row.section, row.key, L"");
        if (value.empty()) continue;
        ++read;
        wchar_t* end = nullptr;
        const long number = std::wcstol(value.c_str(), &end, 10);
        EXPECT_EQ(*end, 0) << Utf8(row.section) << " " << Utf8(row.key) << " = " << Utf8(value);
        // A factory reset empties some settings, which are limited when they are read.
        EXPECT_TRUE(ApplyLimits(row.limits, static_cast<std::int32_t>(number)) == number ||
                    SettingNumber(*reset, row.offset) == number)
            << Utf8(row.section) << " " << Utf8(row.key) << " = " << number;
    }
    EXPECT_GT(read, 40);
}

void ExpectNoCrash(const ProgramFolder& folder) {
    std::error_code fault;
    for (const auto& entry : std::filesystem::directory_iterator(folder.File(L"local\\KVX-Editor\\Crashes"), fault))
        if (entry.path().filename().wstring().starts_with(L"Crash") && entry.path().extension() == L".txt")
            ADD_FAILURE() << ReadBytes(entry.path().wstring()).value_or("");
}

// The values of moments of rest, after a warm start, may go up and down, but not on and on.
void ExpectNoLeak(const std::vector<Counts>& counts) {
    constexpr std::size_t kWarm = 2;
    if (counts.size() <= kWarm) return;
    struct Row {
        const char* name;
        int Counts::*count;
        int slack;
    };
    constexpr Row kRows[] = {{"handles", &Counts::handles, 40},   {"GDI objects", &Counts::gdi, 60},
                             {"user objects", &Counts::user, 60}, {"windows", &Counts::windows, 40},
                             {"threads", &Counts::threads, 8},    {"processes", &Counts::processes, 0}};
    for (const Row& row : kRows) {
        int before = 0;
        for (std::size_t i = 0; i < kWarm; ++i) before = std::max(before, counts[i].*row.count);
        EXPECT_LE(counts.back().*row.count, before + row.slack) << row.name << " leak";
    }
}

// Closes the window, whatever it asks.
void CloseProgram(Driver& driver, Editor& editor) {
    driver.Say("close");
    for (int i = 0; !driver.Ended() && !driver.faulty && i < 60; ++i) {
        if (driver.Box() == nullptr) PostMessageW(editor.main, WM_CLOSE, 0, 0);
        WaitFor([&] { return driver.Ended() || driver.Box() != nullptr; }, 2000);
        if (const HWND box = driver.Box()) driver.CloseBox(box, i);
    }
    EXPECT_EQ(editor.ExitCode(), 0u);
}

// Ends it in the middle of the work, as a power cut does.
void KillProgram(Driver& driver, Editor& editor) {
    constexpr int kActions = 30;
    for (int i = 0; i < kActions && !driver.faulty; ++i) driver.Act();
    driver.Say("kill");
    TerminateProcess(editor.process, 9);
    EXPECT_TRUE(editor.ExitCode());
}

void UseAtRandom(unsigned seed, int seconds) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    ProgramFolder folder(kCompilers);
    folder.FakeCompiler("print ok\n");
    torture::FurnishFiles(folder);
    const std::wstring logPath = folder.File(L"..\\torture-" + std::to_wstring(seed) + L".log");  // it stays
    std::FILE* const log = _wfopen(logPath.c_str(), L"wb");
    ASSERT_NE(log, nullptr);
    std::printf("torture: seed %u, %d s, log %s\n", seed, seconds, Utf8(logPath).c_str());
    {
        std::vector<Counts> counts;
        Editor editor(folder);
        Driver driver{.editor = editor, .folder = folder, .seed = seed, .log = log};
        driver.onlyAction = Given(L"KVX_TORTURE_ACTION", -1);
        const int actions = Given(L"KVX_TORTURE_REST", 150);  // between rests
        const auto rest = [&] {
            driver.Rest();
            if (driver.faulty) return;
            counts.push_back(torture::CountsNow(editor));
            // Wine's file dialog leaks one user object each time, and a handle when a file is chosen.
            counts.back().user -= driver.fileDialogs;
            counts.back().handles -= driver.filesChosen;
            driver.Say("at rest: " + torture::TextOf(counts.back()));
        };
        for (const int command : torture::DrivenCommands()) {  // each once, because much is made at its first use
            if (driver.faulty) break;
            driver.Say("tour " + std::to_string(command));
            driver.Post(command);
            driver.Settle();
            for (int i = 0; !driver.faulty && driver.IsAsking(); ++i) {
                if (driver.InMenu()) driver.LeaveMenu();
                if (const HWND box = driver.Box()) driver.CloseBox(box, i);
                driver.Settle();
            }
        }
        const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(seconds) * 1000;
        rest();
        while (!driver.faulty && GetTickCount64() < end) {
            for (int i = 0; i < actions && !driver.faulty && GetTickCount64() < end; ++i) driver.Act();
            if (!driver.faulty) rest();
        }
        std::printf("torture: %d actions, %s\n", driver.number, counts.empty() ? "" : TextOf(counts.back()).c_str());
        ExpectNoCrash(folder);
        if (!driver.faulty) {
            ExpectNoLeak(counts);
            if (seed % 2 == 0)
                KillProgram(driver, editor);
            else
                CloseProgram(driver, editor);
        }
    }
    std::fclose(log);
    if (testing::Test::HasFailure()) return;
    ExpectNoCrash(folder);
    ExpectReadable(folder);
    // With the settings of the run. It may ask about the last session, and about what a killed run has left.
    Editor again(folder, L"", Until::Started);
    const auto started = [&] {
        again.main = FindWindowW(L"KVXEEditorWnd", nullptr);
        return again.main != nullptr && again.Child(IDC_STATUS_BAR) != nullptr &&
               (again.Log().find(L"DBG WM_USER+200 EXIT") != std::wstring::npos || !IsWindowEnabled(again.main));
    };
    ASSERT_TRUE(WaitFor(started)) << again.Describe();
    std::FILE* const more = _wfopen(logPath.c_str(), L"ab");
    Driver driver{.editor = again, .folder = folder, .seed = seed, .log = more};
    driver.Rest();
    CloseProgram(driver, again);
    std::fclose(more);
}

}  // namespace

TEST(Torture, RandomUseOfTheWindowBreaksNothing) {
    const int seconds = Given(L"KVX_TORTURE_SECONDS", 20);
    const int seed = Given(L"KVX_TORTURE_SEED", 0);
    if (seed != 0) return UseAtRandom(static_cast<unsigned>(seed), seconds);
    const auto now = std::chrono::system_clock::now().time_since_epoch().count();
    for (const unsigned each : {1U, static_cast<unsigned>(now / 1000 % 1000000)})
        if (!HasFailure()) UseAtRandom(each, seconds);
}
