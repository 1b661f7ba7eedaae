// What the user types as a condition, an address or a value: any bytes.
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

void CheckCondition(std::string_view text) {
    const Condition condition = ParseCondition(text);
    Require(Inside(condition.left, text) && Inside(condition.right, text));
    Require((condition.op == Condition::Operator::None) ==
            (text.find_first_of("<>") == std::string_view::npos && text.find("!=") == std::string_view::npos &&
             text.find("==") == std::string_view::npos));
    for (const std::string_view side : {condition.left, condition.right})
        Require(side.empty() || (side.front() != ' ' && side.front() != '\t'));
}

void CheckValues(std::string_view text) {
    RegisterSet registers;
    registers.general.fill(0x1122334455667788);
    registers.ip = 0x140001000;
    for (const bool x64 : {true, false}) {
        registers.x64 = x64;
        const std::uint64_t plain = EvaluateExpression(registers, text);
        const Evaluation pane =
            EvaluatePaneExpression(registers, text, [](std::uint64_t address, void* out, std::size_t count) {
                for (std::size_t i = 0; i < count; ++i)
                    static_cast<std::uint8_t*>(out)[i] = static_cast<std::uint8_t>(address + i);
                return address % 3 != 0;
            });
        Require(pane.value.has_value() == pane.problem.empty());
        if (!x64 && pane.value) Require(*pane.value <= 0xFFFFFFFF);
        // A register's name alone means the same to both.
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
