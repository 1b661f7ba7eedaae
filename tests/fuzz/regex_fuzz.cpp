// What the user types as an expression and as a replacement, over any text: in small pieces as in one, without a crash and
// within the limits. The input is "EXPRESSION\nREPLACEMENT\nTEXT".
#include "files/text_encoding.h"
#include "search/replacement.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int kMost = 200;  // matches and pieces looked at

void Require(bool holds) {
    if (!holds) std::abort();
}

std::string_view Line(std::string_view& rest) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    return line;
}

struct Found {
    std::vector<FindSpan> matches;
    bool whole = false;  // all matches, neither stopped nor too complex
};

Found Walk(RegexSearch& search, const RegexText& text, const ReplaceForm* form) {
    Found found;
    int asked = 0;
    search.Begin(text, {0, text.length}, false, [&asked](std::ptrdiff_t) { return ++asked < 10 * kMost; });
    RegexResult result = RegexResult::Match;
    while (found.matches.size() < kMost && (result = search.Next()) == RegexResult::Match) {
        const FindSpan match = search.Match();
        Require(match.start >= 0 && match.start <= match.end && match.end <= text.length);
        Require(found.matches.empty() || match.start >= found.matches.back().end);
        found.matches.push_back(match);
        if (form == nullptr) continue;
        const std::string bytes = search.GroupText(0);
        Require(IsValidUtf8Bytes(bytes.data(), bytes.size()));
        ReplaceExpand(*form, search);
    }
    found.whole = result == RegexResult::NoMatch;
    return found;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const FindOptions options{(data[0] & 1) != 0, (data[0] & 2) != 0, (data[0] & 4) == 0};
    std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::string_view expression = Line(rest), with = Line(rest);
    RegexFault fault;
    const RegexHandle code = RegexCompile(expression, options, fault);
    Require((code == nullptr) == !fault.text.empty());
    Require(fault.position >= 0 && fault.position <= static_cast<std::ptrdiff_t>(expression.size()));
    if (code == nullptr) return 0;
    ReplaceForm form;
    const bool parsed = ReplaceParse(with, *code, options, {.preserveCase = (data[0] & 8) != 0}, form, fault);
    Require(parsed == fault.text.empty());
    RegexText text = RegexTextOf(rest);
    RegexSearch search(code);
    const Found once = Walk(search, text, parsed ? &form : nullptr);
    // \G and verbs that end a search mean something else in a piece, and so do empty matches among bytes that are no UTF-8.
    const bool comparable = IsValidUtf8Bytes(rest.data(), rest.size());
    if (!comparable || expression.find("\\G") != expression.npos || expression.find("(*") != expression.npos) return 0;
    text.piece = 5;
    const Found pieces = Walk(search, text, nullptr);
    if (once.whole && pieces.whole) Require(once.matches == pieces.matches);
    return 0;
}
