// Any bytes as a condition, an address or a value that the user types.
#include "debugger/expressions.h"
#include "debugui/breakpoint_rules.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

void Require(bool holds) {
    if (!holds) std::abort();
}

bool Inside(std::string_view part, std::string_view whole) {
    return part.empty() || (part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size());
}

// Compares ParseCondition with the simplest reading: each sign, in its order, over the whole text.
void CheckCondition(std::string_view text) {
    using Operator = Condition::Operator;
    constexpr Operator kOrder[] = {Operator::GreaterEqual, Operator::LessEqual, Operator::NotEqual,
                                   Operator::Equal,        Operator::Greater,   Operator::Less};
    constexpr std::string_view kSigns[] = {">=", "<=", "!=", "==", ">", "<"};
    const Condition condition = ParseCondition(text);
    Operator expected = Operator::None;
    std::size_t at = std::string_view::npos;
    std::size_t sign = 0;
    for (; sign < std::size(kSigns) && expected == Operator::None; ++sign) {
        at = text.find(kSigns[sign]);
        if (at != std::string_view::npos) expected = kOrder[sign];
    }
    Require(condition.op == expected);
    Require(Inside(condition.left, text) && Inside(condition.right, text));
    if (expected == Operator::None) return;
    const std::string_view left = text.substr(0, at);
    const std::string_view right = text.substr(at + kSigns[sign - 1].size());
    Require(left.ends_with(condition.left) && right.ends_with(condition.right));
    Require(condition.right.empty() || (condition.right.front() != ' ' && condition.right.front() != '\t'));
}

void CheckValues(std::string_view text) {
    RegisterSet registers;
    registers.general.fill(0x1122334455667788);
    registers.ip = 0x140001000;
    for (const bool x64 : {true, false}) {
        registers.x64 = x64;
        const std::uint64_t plain = EvaluateExpression(registers, text);
        const Evaluation pane = EvaluatePaneExpression(registers, text);
        Require(pane.value.has_value() == pane.problem.empty());
        if (!x64 && pane.value) Require(*pane.value <= 0xFFFFFFFF);
        // A register's name alone has the same value for both readers.
        if (x64 && FullRegisterByName(registers, text)) Require(pane.value && *pane.value == plain);
        if (const auto named = RegisterByName(registers, text)) Require(pane.value && *pane.value == *named);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    CheckCondition(text);
    CheckValues(text);
    if (!ConditionProblem(text).empty()) Require(text.size() > 63);
    (void)ConditionNotice(text);
    return 0;
}
