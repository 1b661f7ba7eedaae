// Any bytes as a BASIC source. The classifiers and the walk over PBMAIN are compared with patterns, and the index with
// the functions that answer one question at a time.
#include "program/basic_lines.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

std::string Trimmed(const std::string& line) {
    std::string text = line;
    while (!text.empty() && (text[0] == ' ' || text[0] == '\t')) text.erase(0, 1);
    for (char& c : text)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c & ~0x20);
    return text;
}

// True when `text` begins with `word` and ends there or goes on with a character of `next`.
bool IsWord(const std::string& text, const std::string& word, std::string_view next) {
    return text.rfind(word, 0) == 0 && (text == word || next.find(text[word.size()]) != std::string_view::npos);
}

bool WantedComment(const std::string& line) {
    const std::string text = Trimmed(line);
    return IsWord(text, "", "\r\n'") || IsWord(text, "REM", " \t\r\n");
}

bool WantedControl(const std::string& line) {
    const std::string text = Trimmed(line);
    return IsWord(text, "ELSE", " \t\r\n'") || IsWord(text, "END IF", " \t\r\n'");
}

std::vector<std::string> Split(std::string_view source) {
    std::vector<std::string> lines(1);
    for (const char c : source)
        if (c == '\n')
            lines.emplace_back();
        else
            lines.back() += c;
    return lines;
}

std::vector<std::uint32_t> WantedStatements(const std::vector<std::string>& lines) {
    std::vector<std::uint32_t> found;
    bool inside = false;
    for (std::size_t i = 0; i < lines.size() && found.size() < 512; ++i) {
        const std::string text = Trimmed(lines[i]);
        if (!inside) {
            inside = text.rfind("SUB PBMAIN", 0) == 0 || text.rfind("FUNCTION PBMAIN", 0) == 0;
        } else if (!WantedComment(lines[i]) && !WantedControl(lines[i]) && lines[i][0] != '#') {
            found.push_back(static_cast<std::uint32_t>(i + 1));
            if (text.rfind("END SUB", 0) == 0 || text.rfind("END FUNCTION", 0) == 0) inside = false;
        }
    }
    return found;
}

// Replaces each byte above 0x7F by a word of the rules, so that a short input reaches them.
std::string Expanded(std::string_view bytes) {
    constexpr std::string_view kWords[] = {"SUB PBMAIN\n", "Function PbMain",
                                           "END SUB",      "end function\r\n",
                                           "ELSE",         "End If",
                                           "ELSE IF",      "REM",
                                           "\n#",          "x = 1\n",
                                           "\n",           "\n  ",
                                           "END",          "\r\n",
                                           "else'\n",      "REM\t"};
    std::string text;
    for (const char c : bytes)
        if (static_cast<std::uint8_t>(c) < 0x80)
            text += c;
        else
            text += kWords[static_cast<std::uint8_t>(c) % 16];
    return text;
}

void Check(std::string_view source) {
    const std::vector<std::string> lines = Split(source);
    const std::vector<std::uint32_t> wanted = WantedStatements(lines);
    std::vector<std::uint32_t> found(kMaxPbmainLines);
    for (const int capacity : {kMaxPbmainLines, 3, 1, 0}) {
        const int count = CollectPbmainLines(source, found.data(), capacity);
        Require(count == std::min(capacity, static_cast<int>(wanted.size())));
        for (int i = 0; i < count; ++i)
            Require(found[static_cast<std::size_t>(i)] == wanted[static_cast<std::size_t>(i)]);
    }
    const BasicLineIndex index = BuildBasicLineIndex(source);
    Require(index.pbmain == wanted);
    std::uint32_t previous = 0;
    std::size_t passed = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const auto line = static_cast<std::int64_t>(i + 1);
        Require(IsBasicCommentOrBlank(lines[i]) == WantedComment(lines[i]));
        Require(IsBasicControlOnlyLine(lines[i]) == WantedControl(lines[i]));
        Require(IsControlOnly(index, line) == WantedControl(lines[i]));
        Require(PreviousPbmainLine(index, line) == previous);
        if (passed < wanted.size() && wanted[passed] == i + 1) previous = wanted[passed++];
    }
    const auto beyond = static_cast<std::int64_t>(lines.size()) + 1;
    Require(!IsControlOnly(index, 0) && !IsControlOnly(index, beyond) && !IsControlOnly(index, -1));
    Require(PreviousPbmainLine(index, 0) == 0 && PreviousPbmainLine(index, beyond + 9) == previous);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes{reinterpret_cast<const char*>(data), size};
    Check(bytes);
    Check(Expanded(bytes));
    return 0;
}
