// Finds what Scintilla's regular expressions cannot do. Pure.
#include "search/regex_check.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int kMaxGroups = 9;

// Index of the bracket that closes the class opened at `open`, or npos. A dash and a closing bracket right after the
// opening are members of the class.
std::size_t ClassEnd(std::string_view pattern, std::size_t open) {
    std::size_t at = open + 1;
    for (const char member : {'^', '-', ']'}) at += at < pattern.size() && pattern[at] == member ? 1 : 0;
    while (at < pattern.size() && pattern[at] != ']') at += pattern[at] == '\\' && at + 1 < pattern.size() ? 2 : 1;
    return at < pattern.size() ? at : std::string_view::npos;
}

bool IsAscii(std::string_view text) {
    return std::none_of(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

// The kind of element before a repetition.
enum class Before { Nothing, Character, WideCharacter, WordStart, Other };

}  // namespace

bool SplitAlternatives(std::string_view pattern, std::vector<std::string>& alternatives) {
    alternatives.clear();
    std::string current;
    int depth = 0;
    const auto finish = [&] {
        if (!current.empty()) alternatives.push_back(current);
        current.clear();
    };
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const char letter = pattern[i];
        if (letter == '\\' && i + 1 < pattern.size()) {
            current.append(pattern.substr(i++, 2));
        } else if (letter == '[') {
            const std::size_t end = std::min(ClassEnd(pattern, i), pattern.size() - 1);
            current.append(pattern.substr(i, end + 1 - i));
            i = end;
        } else if (letter == '|') {
            if (depth > 0) return false;
            finish();
        } else {
            depth = letter == '(' ? depth + 1 : letter == ')' ? std::max(depth - 1, 0) : depth;
            current += letter;
        }
    }
    finish();
    return true;
}

const wchar_t* RegexFault(std::string_view pattern) {
    int open = 0;
    int groups = 0;
    bool groupIsEmpty = false;
    Before before = Before::Nothing;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const char letter = pattern[i];
        const bool wasEmpty = std::exchange(groupIsEmpty, letter == '(');
        const Before last = std::exchange(before, Before::Character);
        if (letter == '[') {
            const std::size_t end = ClassEnd(pattern, i);
            if (end == std::string_view::npos) return L"A [ is not closed";
            if (!IsAscii(pattern.substr(i, end - i))) return L"Only ASCII characters can stand in [ ]";
            i = end;
        } else if (letter == '(') {
            ++open;
            before = Before::Other;
            if (++groups > kMaxGroups) return L"There are more than 9 groups";
        } else if (letter == ')') {
            before = Before::Other;
            if (wasEmpty) return L"A group is empty";
            if (--open < 0) return L"A ) has no ( before it";
        } else if (letter == '*' || letter == '+' || letter == '?') {
            if (last == Before::WideCharacter) return L"Only ASCII characters can be repeated by * + ?";
            if (last != Before::Character) return L"There is nothing that * + ? could repeat";
        } else if (letter == '^' && i == 0) {
            before = Before::Other;
        } else if (letter == '\\' && i + 1 < pattern.size()) {
            const char escaped = pattern[++i];
            if (escaped == '>' && last == Before::WordStart) return L"There is nothing between \\< and \\>";
            if (escaped >= '1' && escaped <= '9') {
                before = Before::Other;
                if (escaped - '0' > groups - open) return L"A \\1 to \\9 has no group before it";
            }
            before = escaped == '<' ? Before::WordStart : escaped == '>' ? Before::Other : before;
        } else if (!IsAscii(pattern.substr(i, 1))) {
            before = Before::WideCharacter;
        }
    }
    return open > 0 ? L"A ( is not closed" : nullptr;
}
