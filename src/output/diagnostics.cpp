#include "output/diagnostics.h"

#include "base/path.h"
#include "base/texts.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::wstring_view kFatal = L" fatal error:";
constexpr std::wstring_view kError = L" error:";
constexpr std::wstring_view kWarning = L" warning:";
constexpr std::size_t kNone = std::wstring_view::npos;

struct Place {
    std::wstring_view file;
    std::int32_t line = 0;
    std::int32_t column = 0;
};

// Reads a decimal number and stops at the first character that is no digit. 0 without any digit; limited to 32 bits.
std::int32_t LeadingInteger(std::wstring_view text) {
    std::size_t at = 0;
    while (at < text.size() && (text[at] == L' ' || text[at] == L'\t')) ++at;
    const bool negative = at < text.size() && text[at] == L'-';
    if (negative || (at < text.size() && text[at] == L'+')) ++at;
    constexpr std::int64_t limit = std::numeric_limits<std::int32_t>::max();
    std::int64_t value = 0;
    for (; at < text.size() && text[at] >= L'0' && text[at] <= L'9'; ++at) {
        value = value * 10 + (text[at] - L'0');
        if (value > limit) value = limit;
    }
    return static_cast<std::int32_t>(negative ? -value : value);
}

// Reads "file(line,column)" before the keyword. The last ')' before the keyword decides; one that opens the line does
// not count.
bool ParenthesisedPlace(std::wstring_view line, std::size_t keyword, Place* place) {
    if (keyword == 0) return false;
    const std::size_t close = line.rfind(L')', keyword - 1);
    if (close == kNone || close == 0) return false;
    const std::size_t open = line.rfind(L'(', close - 1);
    if (open == kNone) return false;
    const std::size_t comma = line.substr(0, close).find(L',', open);
    if (comma == kNone) return false;
    *place = {.file = line.substr(0, open),
              .line = LeadingInteger(line.substr(open + 1)),
              .column = LeadingInteger(line.substr(comma + 1))};
    return true;
}

// Reads "file:line:column" before the keyword and skips the keyword's own colon. Two colons are needed, and neither may
// open the line. So "x.bas:10: error:" is no diagnostic, and "C:\x.bas:10: error:" is one in a file named C. Compilers
// that print no column have always been read like this here, because only "file(line,column)" and "file:line:column"
// matter.
bool ColonPlace(std::wstring_view line, std::size_t keyword, Place* place) {
    if (keyword < 2) return false;
    const std::size_t columnColon = line.rfind(L':', keyword - 2);
    if (columnColon == kNone || columnColon == 0) return false;
    const std::size_t lineColon = line.rfind(L':', columnColon - 1);
    if (lineColon == kNone || lineColon == 0) return false;
    *place = {.file = line.substr(0, lineColon),
              .line = LeadingInteger(line.substr(lineColon + 1)),
              .column = LeadingInteger(line.substr(columnColon + 1))};
    return true;
}

}  // namespace

bool IsErrorLine(std::wstring_view line) { return line.find(kError) != kNone || line.find(kFatal) != kNone; }

bool IsWarningLine(std::wstring_view line) { return line.find(kWarning) != kNone; }

int ParseErrorLine(std::wstring_view line, CompilerError* record) {
    std::int32_t severity = 0;
    std::size_t keyword = line.find(kFatal);
    if (keyword == kNone) keyword = line.find(kError);
    if (keyword == kNone) {
        keyword = line.find(kWarning);
        severity = 1;
    }
    if (keyword == kNone) return 0;
    Place place;
    if (!ParenthesisedPlace(line, keyword, &place) && !ColonPlace(line, keyword, &place)) return 0;
    if (place.file.empty()) return 0;
    std::wstring_view message = line.substr(line.find(L':', keyword) + 1);
    message.remove_prefix(std::min(message.find_first_not_of(L" \t"), message.size()));
    while (!message.empty() && (message.back() == L'\r' || message.back() == L'\n')) message.remove_suffix(1);

    SafeCopyW(record->file, place.file);
    record->line = place.line;
    record->column = place.column;
    SafeCopyW(record->message, message);
    record->severity = severity;
    return 1;
}

static int FirstErrorOf(const CompilerErrors& errors, std::int32_t build) {
    const auto found = std::ranges::find_if(
        errors.items, [build](const CompilerError& each) { return each.severity == 0 && each.build == build; });
    return found == errors.items.end() ? -1 : static_cast<int>(found - errors.items.begin());
}

constexpr const wchar_t* kFirstErrorWithMessage = English(L"First error at {1}: {2}");
constexpr const wchar_t* kFirstError = English(L"First error at {1}");

std::wstring FirstErrorText(const CompilerErrors& errors, std::int32_t build) {
    const int index = FirstErrorOf(errors, build);
    if (index < 0) return {};
    const CompilerError& error = errors.items[static_cast<std::size_t>(index)];
    const std::wstring place = std::wstring(FileNameOf(error.file)) + L":" + std::to_wstring(error.line);
    std::wstring text = TextWith(kFirstErrorWithMessage, {place, error.message});
    // A message with the shape of a diagnostic would be taken for one more.
    CompilerError again = {};
    return ParseErrorLine(text, &again) == 0 ? text : TextWith(kFirstError, {place});
}

int RecordOfFirstErrorText(const CompilerErrors& errors, std::wstring_view line) {
    // Asked for each line that the caret comes to: most are told apart by their first words, without looking for errors.
    const auto beginsLike = [line](const wchar_t* english) {
        const std::wstring text = Text(english);
        return line.starts_with(std::wstring_view(text).substr(0, text.find(L'{')));
    };
    if (!beginsLike(kFirstErrorWithMessage) && !beginsLike(kFirstError)) return -1;
    for (std::int32_t build = 0; build <= static_cast<std::int32_t>(errors.builds.size()); ++build)
        if (line == FirstErrorText(errors, build)) return FirstErrorOf(errors, build);
    return -1;
}
