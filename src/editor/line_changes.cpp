#include "editor/line_changes.h"

#include "base/whole_lines.h"

#include <algorithm>
#include <numeric>
#include <unordered_set>

namespace {

constexpr std::size_t kSortedAtOnce = 1 << 14;  // lines; between two such steps the work can be stopped

char Folded(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

int CompareFolded(std::string_view a, std::string_view b) {
    const std::size_t length = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < length; ++i) {
        const auto left = static_cast<unsigned char>(Folded(a[i]));
        const auto right = static_cast<unsigned char>(Folded(b[i]));
        if (left != right) return left < right ? -1 : 1;
    }
    if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
    return a.compare(b);
}

std::string_view KeyOf(std::string_view line, std::span<const SortKey> keys, std::size_t index) {
    if (index >= keys.size() || keys[index].length == 0) return line;
    const std::size_t from = std::min(keys[index].from, line.size());
    return line.substr(from, keys[index].length);
}

// The order of a merge sort whose steps are short. False when it was stopped.
template <typename Less>
bool SortInSteps(std::vector<std::size_t>& order, const Less& less, const std::function<bool(double)>& goesOn) {
    const std::size_t count = order.size();
    std::size_t passes = 1;
    for (std::size_t run = kSortedAtOnce; run < count; run *= 2) ++passes;
    double done = 0;
    const auto share = [&](std::size_t lines) {
        done += static_cast<double>(lines) / static_cast<double>(std::max<std::size_t>(count * passes, 1));
        return goesOn(std::min(done, 1.0));
    };
    const auto at = [&](std::size_t index) {
        return order.begin() + static_cast<std::ptrdiff_t>(std::min(index, count));
    };
    for (std::size_t from = 0; from < count; from += kSortedAtOnce) {
        std::stable_sort(at(from), at(from + kSortedAtOnce), less);
        if (!share(kSortedAtOnce)) return false;
    }
    for (std::size_t run = kSortedAtOnce; run < count; run *= 2)
        for (std::size_t from = 0; from + run < count; from += 2 * run) {
            std::inplace_merge(at(from), at(from + run), at(from + 2 * run), less);
            if (!share(2 * run)) return false;
        }
    return true;
}

std::size_t BlanksBefore(std::string_view line) { return std::min(line.find_first_not_of(" \t"), line.size()); }

std::string_view WithoutBlanksBehind(std::string_view line) {
    const std::size_t last = line.find_last_not_of(" \t");
    return last == std::string_view::npos ? std::string_view{} : line.substr(0, last + 1);
}

// Each line's text is changed by `change`, which appends it.
template <typename Change>
std::string EachLine(std::string_view text, const Change& change) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const WholeLine line = TakeWholeLine(text);
        change(line.text, out);
        out.append(line.ending);
    }
    return out;
}

bool BeginsCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }

}  // namespace

std::vector<LineBlock> MergedBlocks(std::vector<LineBlock> blocks) {
    std::ranges::sort(blocks, {}, &LineBlock::first);
    std::vector<LineBlock> merged;
    for (const LineBlock& block : blocks)
        if (!merged.empty() && block.first <= merged.back().last + 1)
            merged.back().last = std::max(merged.back().last, block.last);
        else
            merged.push_back(block);
    return merged;
}

SortedLines SortLines(std::string_view text, bool down, std::span<const SortKey> keys,
                      const std::function<bool(double)>& goesOn) {
    const std::vector<WholeLine> lines = WholeLinesOf(text);
    SortedLines sorted;
    sorted.order.resize(lines.size());
    std::iota(sorted.order.begin(), sorted.order.end(), std::size_t{0});
    const auto less = [&](std::size_t a, std::size_t b) {
        const int order = CompareFolded(KeyOf(lines[a].text, keys, a), KeyOf(lines[b].text, keys, b));
        return down ? order > 0 : order < 0;
    };
    sorted.stopped = !SortInSteps(sorted.order, less, goesOn);
    if (sorted.stopped) return sorted;
    sorted.text.reserve(text.size());
    for (std::size_t i = 0; i < lines.size(); ++i)
        sorted.text.append(lines[sorted.order[i]].text).append(lines[i].ending);
    return sorted;
}

std::vector<TextSpan> RepeatedLines(std::string_view text) {
    std::unordered_set<std::string_view> seen;
    std::vector<TextSpan> spans;
    std::size_t keptEnd = 0;  // of the text of the last line that stays
    std::size_t at = 0;
    bool endsWithBreak = true;
    for (std::string_view rest = text; !rest.empty();) {
        const WholeLine line = TakeWholeLine(rest);
        const std::size_t end = at + line.whole().size();
        endsWithBreak = !line.ending.empty();
        if (seen.insert(line.text).second)
            keptEnd = at + line.text.size();
        else if (!spans.empty() && spans.back().end == at)
            spans.back().end = end;
        else
            spans.push_back({at, end});
        at = end;
    }
    // The last line had no break, so the line that is last now has none either.
    if (!endsWithBreak && !spans.empty() && spans.back().end == text.size()) spans.back().start = keptEnd;
    return spans;
}

std::string TrimLineEnds(std::string_view text) {
    return EachLine(
        text, [](std::string_view line, std::string& out) { out.append(WithoutBlanksBehind(line)); });
}

std::string TabsToBlanks(std::string_view text, std::size_t width) {
    return EachLine(
        text,
        [width](std::string_view line, std::string& out) {
            std::size_t column = 0;
            for (const char c : line) {
                const std::size_t step = c == '\t' ? width - column % width : BeginsCharacter(c) ? 1 : 0;
                if (c == '\t')
                    out.append(step, ' ');
                else
                    out.push_back(c);
                column += step;
            }
        });
}

std::string BlanksToTabs(std::string_view text, std::size_t width) {
    return EachLine(
        text,
        [width](std::string_view line, std::string& out) {
            const std::size_t indent = BlanksBefore(line);
            std::size_t column = 0;
            for (const char c : line.substr(0, indent)) column += c == '\t' ? width - column % width : 1;
            out.append(column / width, '\t').append(column % width, ' ').append(line.substr(indent));
        });
}

std::string JoinLines(std::string_view text) {
    std::string out;
    std::string_view ending;
    for (bool first = true; !text.empty(); first = false) {
        const WholeLine line = TakeWholeLine(text);
        ending = line.ending;
        const std::string_view joined = first ? line.text : line.text.substr(BlanksBefore(line.text));
        if (!first) out.resize(WithoutBlanksBehind(out).size());
        if (!first && !out.empty() && !joined.empty()) out.push_back(' ');
        out.append(joined);
    }
    return out.append(ending);
}

TextMove MoveOver(std::string_view upper, std::string_view lower, bool movesUpper) {
    const std::size_t all = upper.size() + lower.size();
    const bool ends = !lower.empty() && (lower.back() == '\n' || lower.back() == '\r');
    if (ends && movesUpper) return {{0, upper.size()}, lower.size(), std::string(upper)};
    if (ends) return {{upper.size(), all}, 0, std::string(lower)};
    // The lower one has no line break: it takes that of the upper one.
    const std::size_t length = upper.ends_with("\r\n") ? 2 : 1;
    const std::string_view ending = upper.substr(upper.size() - length);
    const std::string_view content = upper.substr(0, upper.size() - length);
    if (movesUpper) return {{0, upper.size()}, lower.size(), std::string(ending).append(content)};
    return {{content.size(), all}, 0, std::string(lower).append(ending)};
}

std::wstring TitleCase(std::wstring_view text, wchar_t (*upper)(wchar_t), wchar_t (*lower)(wchar_t)) {
    std::wstring out;
    bool inWord = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const wchar_t c = text[i];
        const bool letter = upper(c) != lower(c);
        const bool continues = letter || (c >= L'0' && c <= L'9') || c == L'_' || (c == L'\'' && inWord) || c >= 0x80;
        out.push_back(inWord ? lower(c) : upper(c));
        inWord = continues;
    }
    return out;
}
