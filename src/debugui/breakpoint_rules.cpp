// Conditions, matching of markers, and scrolling. Must not know an editor.
#include "debugui/breakpoint_rules.h"

#include "base/scan_text.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "debugger/expressions.h"
#include "debugger/registers.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t kLongestCondition = 63;  // bytes that the engine keeps

// Reads the condition with all places readable, which finds what no stop can make good.
std::wstring NoticeOfNames(std::string_view condition, std::span<const NamedPlace> names) {
    const ProgramMemory zeros = {
        .read = [](std::uint64_t, void*, std::size_t) { return true; },
        .readSome = [](std::uint64_t, void* out, std::size_t count) { return std::memset(out, 0, count), count; }};
    std::wstring told;  // of the kind of program that the places belong to
    for (const bool x64 : {true, false}) {
        RegisterSet ones;
        ones.x64 = x64;
        ones.general.fill(1);
        const std::wstring problem =
            NamedConditionProblem(condition, {.names = names, .registers = ones, .memory = zeros});
        if (problem.empty()) return {};
        const auto fits = [x64](const NamedPlace& each) { return PlaceProblem(each.place, x64).empty(); };
        if (told.empty() || std::ranges::all_of(names, fits)) told = problem;
    }
    return TextWith(L"It stops wherever this decides: {1}.", {told});
}

bool CouldBeVariable(std::string_view text) {
    return PlaceNameProblem(text).empty() && !RegisterByName({.x64 = true}, text);
}

std::string_view WithoutBlanksBehind(std::string_view text) { return text.substr(0, text.find_last_not_of(" \t") + 1); }

// A condition without a comparison.
std::wstring NoticeOfNoComparison(std::string_view condition) {
    const std::size_t equals = condition.find('=');
    if (equals == std::string_view::npos) return Text(L"There is no comparison in it: it always stops.");
    const std::string_view left = WithoutBlanksBehind(WithoutLeadingBlanks(condition.substr(0, equals)));
    if (CouldBeVariable(left))
        return TextWith(L"{1} has no place here, so it always stops. Name it: Debug > Name a Place.",
                        {Utf8ToWideText(left)});
    return Text(L"A comparison of registers has ==, not =: it always stops.");
}

// What stands behind the number that the side begins with; empty: nothing.
std::string_view BehindNumber(std::string_view side) {
    TakeNumber(&side, TakePrefix(&side, "0X") ? 16 : 10);
    return WithoutBlanksBehind(WithoutLeadingBlanks(side));
}

}  // namespace

std::wstring ConditionProblem(std::string_view condition) {
    if (condition.size() <= kLongestCondition) return L"";
    return TextWith(L"Too long: {1} bytes as UTF-8, at most {2} are possible.",
                    {std::to_wstring(condition.size()), std::to_wstring(kLongestCondition)});
}

std::wstring StopFromProblem(std::string_view text, std::uint32_t* count) {
    constexpr std::uint64_t kMost = 1000000000;
    text = WithoutLeadingBlanks(text);
    text = text.substr(0, text.find_last_not_of(" \t") + 1);
    *count = 0;
    if (text.empty()) return L"";
    const std::optional<std::uint64_t> number = TakeNumber(&text, 10);
    if (!number || !text.empty() || *number > kMost) return Text(L"A number is wanted: it stops from that hit on.");
    *count = static_cast<std::uint32_t>(*number);
    return L"";
}

std::wstring ConditionNotice(std::string_view condition, std::span<const NamedPlace> names) {
    if (condition.empty()) return L"";
    if (MentionsName(condition, names)) return NoticeOfNames(condition, names);
    const Condition parsed = ParseCondition(condition);
    if (parsed.op == Condition::Operator::None) return NoticeOfNoComparison(condition);
    // With all registers set to 1, a side that is not a number and evaluates to 0 names no register.
    RegisterSet ones;
    ones.general.fill(1);
    ones.ip = 1;
    for (const std::string_view side : {parsed.left, parsed.right}) {
        if (!side.empty() && IsDigit(side.front())) {
            if (const std::string_view behind = BehindNumber(side); !behind.empty())
                return TextWith(L"Behind the number nothing is read: {1}. AND and OR need a named place.",
                                {Utf8ToWideText(behind)});
            continue;
        }
        if (EvaluateExpression(ones, side) != 0) continue;
        const std::string_view bare = WithoutBlanksBehind(side);
        if (bare.size() != side.size() && EvaluateExpression(ones, bare) != 0)
            return Text(L"A blank before the comparison makes the register count as 0.");
        if (CouldBeVariable(bare))
            return TextWith(L"{1} has no place here and counts as 0. Name it: Debug > Name a Place.",
                            {Utf8ToWideText(bare)});
        return Text(L"A side that is no number and no 64-bit register counts as 0.");
    }
    return L"";
}

MarkerMatch MatchMarkers(std::span<const KnownBreakpoint> known, std::span<const MarkerPlace> markers) {
    MarkerMatch match;
    match.lines.resize(known.size(), 0);
    match.handles.resize(known.size(), -1);
    std::vector<int> taken;  // lines that have their breakpoint
    const auto take = [&](std::size_t index, const MarkerPlace& marker) {
        match.lines[index] = marker.line;
        match.handles[index] = marker.handle;
        taken.push_back(marker.line);
    };
    const auto isTaken = [&](int line) { return std::ranges::find(taken, line) != taken.end(); };
    std::vector<MarkerPlace> strangers;
    for (const MarkerPlace& marker : markers) {
        const auto it = std::ranges::find(known, marker.handle, &KnownBreakpoint::handle);
        if (it == known.end())
            strangers.push_back(marker);
        else if (isTaken(marker.line))
            match.surplus.push_back(marker.handle);
        else
            take(static_cast<std::size_t>(it - known.begin()), marker);
    }
    for (const MarkerPlace& marker : strangers) {
        if (isTaken(marker.line)) {
            match.surplus.push_back(marker.handle);
            continue;
        }
        std::size_t index = 0;
        while (index < known.size() && (known[index].handle >= 0 || known[index].line != marker.line)) ++index;
        if (index < known.size()) {
            take(index, marker);
        } else {
            match.news.push_back(marker);
            taken.push_back(marker.line);
        }
    }
    return match;
}

int MovedLine(int line, int first, int added) { return line < first ? line : std::max(line + added, first - 1); }

int ScrollForStop(int firstVisible, int count, int stop, int context) {
    const int around = std::min(context, std::max(0, (count - 1) / 2));
    if (stop >= firstVisible + around && stop < firstVisible + count - around) return firstVisible;
    return std::max(0, stop - count / 3);
}
