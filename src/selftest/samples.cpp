#include "selftest/samples.h"

namespace {

constexpr std::string_view kHello =
    "' hello.bas - written by the self-test\r\n"
    "FUNCTION PBMAIN () AS LONG\r\n"
    "    PRINT \"hello\"\r\n"
    "    FUNCTION = 3\r\n"
    "END FUNCTION\r\n";

constexpr std::string_view kSteps =
    "FUNCTION PBMAIN () AS LONG\r\n"   // 1
    "    LOCAL half AS DOUBLE\r\n"     // 2
    "    LOCAL found AS LONG\r\n"      // 3
    "    half = 1.5\r\n"               // 4
    "    half = half / 3\r\n"          // 5
    "    found = 1\r\n"                // 6
    "    IF half = 0.5 THEN\r\n"       // 7
    "        found = found + 1\r\n"    // 8
    "    ELSE\r\n"                     // 9
    "        found = found + 100\r\n"  // 10
    "    END IF\r\n"                   // 11
    "    FUNCTION = found\r\n"         // 12
    "END FUNCTION\r\n";                // 13

std::string LongText() {
    std::string text;
    for (int line = 1; line <= 400; ++line) text += "line" + std::to_string(line) + " = first + second\r\n";
    return text;
}

}  // namespace

std::string SelfTestSample(std::string_view name) {
    if (name.starts_with("hello.")) return std::string(kHello);
    if (name.starts_with("steps.")) return std::string(kSteps);
    if (name == "long.bas") return LongText();
    if (name == "colours.c") return "int main(void) {\r\n    return 0;\r\n}\r\n";
    if (name == "one.bas") return "' the first\r\none = 1\r\n";
    if (name == "two.bas") return "' the second\r\ntwo = 2\r\n";
    if (name == "three.bas") return "' the third\r\nthree = 3\r\n";
    if (name == "utf8.bas") return "' gr\xC3\xBC\xC3\x9F\x65\r\n";
    if (name == "marked.bas") return "\xEF\xBB\xBF' gr\xC3\xBC\xC3\x9F\x65\r\n";
    if (name == "lines.bas") return "' one\n' two\n";
    if (name == "ansi.bas") return "' plain\r\n";
    return {};
}
