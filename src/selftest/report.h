// What a self-test tells: the lines between the tested copy of the editor and the process that started it, and what the
// user reads. Pure.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// "Said" is what the editor would have shown in a message box.
enum class CheckEnd { Begun, Passed, Failed, Skipped, Said };

struct CheckLine {
    CheckEnd end = CheckEnd::Begun;
    std::string name;  // of what was said, the text
    std::string why;   // of a failure or a skipped check
};

// A line of the tested copy, with its line break, and back. Nothing for a line that is none of ours.
std::string CheckLineText(const CheckLine& line);
std::optional<CheckLine> ParseCheckLine(std::string_view text);

// What a module has come to.
struct SelfTestTally {
    int passed = 0, failed = 0, skipped = 0;
    std::string running;  // the check that was begun and has not ended
    std::string said;     // by the editor, first since a check ended
};

// Counts the line. Returns what the user reads of it, with a line break; empty for a check that begins.
std::string SelfTestTake(SelfTestTally& tally, std::string_view module, const CheckLine& line);

// The tested copy has ended or was ended. `why` is empty when it ended as it should. Returns a line when a check was
// running or nothing was checked.
std::string SelfTestClose(SelfTestTally& tally, std::string_view module, std::string_view why);

std::string SelfTestSummary(const SelfTestTally& all);
