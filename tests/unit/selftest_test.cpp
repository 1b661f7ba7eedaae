// What the self-test says, and that its modules and options belong together.
#include "app/command_line.h"
#include "selftest/modules.h"
#include "selftest/report.h"
#include "selftest/samples.h"

#include <gtest/gtest.h>

TEST(SelfTest, CountsWhatACopyTells) {
    SelfTestTally tally;
    const auto take = [&](std::string_view text) {
        const auto line = ParseCheckLine(text);
        return line ? SelfTestTake(tally, "tabs", *line) : "not a line";
    };
    EXPECT_EQ(take(CheckLineText({.end = CheckEnd::Begun, .name = "one"})), "");
    EXPECT_EQ(tally.running, "one");
    EXPECT_EQ(take("passed\tone\t\r\n"), "ok    tabs: one\n");
    EXPECT_EQ(take(CheckLineText({.end = CheckEnd::Failed, .name = "a\tb", .why = "x\ny"})), "FAIL  tabs: a b (x y)\n");
    EXPECT_EQ(take("skipped\tthree\tno compiler\n"), "skip  tabs: three (no compiler)\n");
    for (const char* text : {"", "\n", "passed", "passed\tone", "warning\tx\t\n", "fixme:ole:something\n"})
        EXPECT_EQ(take(text), "not a line") << text;
    EXPECT_EQ(SelfTestClose(tally, "tabs", ""), "") << "it ended as it should";
    EXPECT_EQ(SelfTestSummary(tally), "1 passed, 1 failed, 1 skipped\n");
}

TEST(SelfTest, AFailureTellsWhatTheEditorSaid) {
    SelfTestTally tally;
    const auto say = [&](const char* text) {
        SelfTestTake(tally, "x", {.end = CheckEnd::Said, .name = text, .why = {}});
    };
    say("before");
    EXPECT_EQ(SelfTestTake(tally, "x", {.end = CheckEnd::Passed, .name = "one", .why = {}}), "ok    x: one\n");
    say("the cause");
    say("what followed");
    EXPECT_EQ(SelfTestTake(tally, "x", {.end = CheckEnd::Failed, .name = "two", .why = {}}),
              "FAIL  x: two (the cause)\n");
    say("no library");
    EXPECT_EQ(SelfTestClose(tally, "x", "no answer"), "FAIL  x: the editor (no answer; no library)\n");
}

TEST(SelfTest, SeveralModulesMayBeNamed) {
    const auto take = [](std::string_view names) {
        std::optional<std::string> unknown;
        const auto modules = SelfTestModulesOf(names, &unknown);
        std::string text;
        for (const SelfTestModule* module : modules) text += std::string(module->name) + " ";
        return unknown ? "? " + *unknown : text;
    };
    EXPECT_EQ(take("exit,mouse"), "exit mouse ");
    for (const char* names : {"", "tabs,", "tabs,exit,"}) EXPECT_EQ(take(names), "? ") << names;
    EXPECT_EQ(take("tabs,none"), "? none");
    std::optional<std::string> unknown;
    EXPECT_EQ(SelfTestModulesOf("all", &unknown).size(), SelfTestModules().size());
}

TEST(SelfTest, ACopyThatEndsEarlyIsAFailure) {
    SelfTestTally silent;
    EXPECT_EQ(SelfTestClose(silent, "exit", ""), "FAIL  exit: the editor (the editor ended)\n");
    SelfTestTally stuck{.passed = 3, .running = "a build"};
    EXPECT_EQ(SelfTestClose(stuck, "compilers", "no answer for 90 seconds"),
              "FAIL  compilers: a build (no answer for 90 seconds)\n");
    EXPECT_EQ(stuck.failed, 1);
}

TEST(SelfTest, EachOptionHasItsModuleAndEachModuleItsSamples) {
    const std::wstring help = CommandLineHelp();
    int options = 0;
    for (const SelfTestModule& module : SelfTestModules()) {
        EXPECT_EQ(SelfTestModuleOf(module.name), &module);
        EXPECT_NE(SelfTestList().find(module.name), std::string::npos);
        if (!module.option.empty()) ++options;
        const std::vector<std::wstring> words{std::wstring(module.option)};
        EXPECT_EQ(ParseCommandLineSteps(words).size(), module.option.empty() ? 0U : 1U) << module.name;
        std::string_view names = module.documents;
        for (std::size_t blank = 0; !names.empty(); names = blank < names.size() ? names.substr(blank + 1) : "") {
            blank = std::min(names.find(' '), names.size());
            EXPECT_FALSE(SelfTestSample(names.substr(0, blank)).empty()) << names;
        }
    }
    for (std::size_t at = 0; (at = help.find(L"\n  --selftest", at)) != std::wstring::npos; ++at) --options;
    EXPECT_EQ(options, 0) << "as many modules as options in the help";
    EXPECT_EQ(SelfTestModuleOfOption(L""), nullptr);
}
