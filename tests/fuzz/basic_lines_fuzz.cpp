// Any bytes as a BASIC source. The index of lines made once answers as the questions asked one by one, and no statement
// of PBMAIN is a comment. Each line scanned alone has the tokens that it has in the whole. Formatting keeps the tokens and
// changes nothing the second time.
#include "program/basic_lines.h"
#include "language/format.h"
#include "settings/compiler_id.h"
#include "support/token_stream.h"

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

std::vector<std::string> Split(std::string_view source) {
    std::vector<std::string> lines(1);
    for (const char c : source)
        if (c == '\n')
            lines.emplace_back();
        else
            lines.back() += c;
    return lines;
}

// So that a short input reaches the rules: a byte above 0x7F stands for a word that they know.
std::string Expanded(std::string_view bytes) {
    constexpr std::string_view kWords[] = {"SUB PBMAIN\n", "Function PbMain",
                                           "END SUB",      "end function\r\n",
                                           "ELSE",         "End If",
                                           "ELSE IF",      "REM",
                                           "\n#",          "x = 1\n",
                                           "\n",           "\n  ",
                                           "END",          "\r\n",
                                           "else'\n",      "REM\t",
                                           " _\n",         "asm",
                                           "If a Then ",   "For ",
                                           "#If ",         "#EndIf",
                                           "Select Case ", "case "};
    std::string text;
    for (const char c : bytes)
        if (static_cast<std::uint8_t>(c) < 0x80)
            text += c;
        else
            text += kWords[static_cast<std::uint8_t>(c) % 24];
    return text;
}

void Check(std::string_view source) {
    const std::vector<std::string> lines = Split(source);
    const BasicLineIndex index = BuildBasicLineIndex(source);
    const std::vector<std::uint32_t>& statements = index.pbmain;
    Require(std::is_sorted(statements.begin(), statements.end()) && statements.size() <= kMaxPbmainLines);
    for (const std::uint32_t line : statements) {
        Require(line >= 2 && line <= lines.size() && lines[line - 1][0] != '#');
        Require(!IsBasicCommentOrBlank(lines[line - 1]) && !IsBasicControlOnlyLine(lines[line - 1]));
    }
    std::vector<std::uint32_t> found(kMaxPbmainLines);
    for (const int capacity : {kMaxPbmainLines, 3, 1, 0}) {
        const int count = CollectPbmainLines(source, found.data(), capacity);
        Require(count == std::min(capacity, static_cast<int>(statements.size())));
        Require(std::equal(found.begin(), found.begin() + count, statements.begin()));
    }
    std::uint32_t previous = 0;
    std::size_t passed = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const auto line = static_cast<std::int64_t>(i + 1);
        Require(IsControlOnly(index, line) == IsBasicControlOnlyLine(lines[i]));
        Require(PreviousPbmainLine(index, line) == previous);
        if (passed < statements.size() && statements[passed] == i + 1) previous = statements[passed++];
    }
    const auto beyond = static_cast<std::int64_t>(lines.size()) + 1;
    Require(!IsControlOnly(index, 0) && !IsControlOnly(index, beyond) && !IsControlOnly(index, -1));
    Require(PreviousPbmainLine(index, 0) == 0 && PreviousPbmainLine(index, beyond + 9) == previous);
}

void CheckScanning(std::string_view source, const Dialect& dialect) {
    LineReader reader{.text = source, .dialect = &dialect};
    std::vector<Token> tokens;
    while (ReadLine(reader)) {
        const std::string line = std::string(reader.line).append(reader.ending);
        Require(ScanLine(line, 0, reader.before, dialect, tokens).state == reader.state);
        Require(tokens.size() == reader.tokens.size());
        std::uint32_t end = 0;
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            Require(tokens[i].start == reader.tokens[i].start && tokens[i].End() == reader.tokens[i].End());
            Require(tokens[i].kind == reader.tokens[i].kind && tokens[i].flags == reader.tokens[i].flags);
            for (std::uint32_t at = end; at < tokens[i].start; ++at) Require(line[at] == ' ' || line[at] == '\t');
            Require(tokens[i].length > 0 && tokens[i].length > tokens[i].suffix);
            end = tokens[i].End();
        }
        Require(end <= reader.line.size());
    }
}

void CheckFormat(std::string_view source, const Dialect& dialect) {
    const FormatOptions options{.dialect = &dialect};
    const std::string once = FormatBasicSource(source, options);
    Require(TokenStream(once, dialect) == TokenStream(source, dialect));
    Require(FormatBasicSource(once, options) == once);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes{reinterpret_cast<const char*>(data), size};
    const std::string expanded = Expanded(bytes);
    for (const std::string_view source : {bytes, std::string_view(expanded)}) {
        Check(source);
        for (const std::uint32_t compiler : {kCompilerKeldorBasic, kCompilerKvxc64}) {
            CheckScanning(source, DialectOf(compiler));
            CheckFormat(source, DialectOf(compiler));
        }
    }
    return 0;
}
