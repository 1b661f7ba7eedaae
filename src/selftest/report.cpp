#include "selftest/report.h"

#include <algorithm>
#include <utility>

namespace {

struct Word {
    CheckEnd end;
    std::string_view sent, shown;
};
constexpr Word kWords[] = {{CheckEnd::Begun, "begun", ""},
                           {CheckEnd::Passed, "passed", "ok    "},
                           {CheckEnd::Failed, "failed", "FAIL  "},
                           {CheckEnd::Skipped, "skipped", "skip  "},
                           {CheckEnd::Said, "said", ""}};

const Word& WordOf(CheckEnd end) { return *std::ranges::find(kWords, end, &Word::end); }

// A line break or a tab would end the name.
std::string OneLine(std::string text) {
    std::ranges::replace_if(
        text, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return text;
}

std::string Shown(CheckEnd end, std::string_view module, const std::string& name, const std::string& why) {
    std::string text{WordOf(end).shown};
    text.append(module).append(": ").append(name);
    if (!why.empty()) text += " (" + why + ")";
    return text + "\n";
}

std::string Together(const std::string& why, const std::string& said) {
    if (why.empty() || said.empty()) return why + said;
    return why + "; " + said;
}

}  // namespace

std::string CheckLineText(const CheckLine& line) {
    return std::string(WordOf(line.end).sent) + '\t' + OneLine(line.name) + '\t' + OneLine(line.why) + '\n';
}

std::optional<CheckLine> ParseCheckLine(std::string_view text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.remove_suffix(1);
    const std::size_t first = text.find('\t');
    const std::size_t second = first == std::string_view::npos ? first : text.find('\t', first + 1);
    if (second == std::string_view::npos) return std::nullopt;
    const auto* word = std::ranges::find(kWords, text.substr(0, first), &Word::sent);
    if (word == std::end(kWords)) return std::nullopt;
    return CheckLine{.end = word->end,
                     .name = std::string(text.substr(first + 1, second - first - 1)),
                     .why = std::string(text.substr(second + 1))};
}

std::string SelfTestTake(SelfTestTally& tally, std::string_view module, const CheckLine& line) {
    if (line.end == CheckEnd::Begun) {
        tally.running = line.name;
        return {};
    }
    if (line.end == CheckEnd::Said) {
        if (tally.said.empty()) tally.said = line.name;
        return {};
    }
    tally.running.clear();
    const std::string said = std::exchange(tally.said, {});
    ++(line.end == CheckEnd::Passed ? tally.passed : line.end == CheckEnd::Failed ? tally.failed : tally.skipped);
    return Shown(line.end, module, line.name, line.end == CheckEnd::Failed ? Together(line.why, said) : line.why);
}

std::string SelfTestClose(SelfTestTally& tally, std::string_view module, std::string_view why) {
    const bool nothing = tally.passed + tally.failed + tally.skipped == 0;
    if (tally.running.empty() && why.empty() && !nothing) return {};
    ++tally.failed;
    const std::string name = tally.running.empty() ? std::string("the editor") : std::exchange(tally.running, {});
    return Shown(CheckEnd::Failed, module, name,
                 Together(why.empty() ? "the editor ended" : std::string(why), std::exchange(tally.said, {})));
}

std::string SelfTestSummary(const SelfTestTally& all) {
    return std::to_string(all.passed) + " passed, " + std::to_string(all.failed) + " failed, " +
           std::to_string(all.skipped) + " skipped\n";
}
