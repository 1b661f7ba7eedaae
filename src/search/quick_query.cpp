// What the user typed into the list of the file finder. Pure.
#include "search/quick_query.h"

#include <algorithm>
#include <optional>

namespace {

constexpr std::wstring_view kBlanks = L" \t";
constexpr std::size_t kMostDigits = 9;  // so that a number fits an int

std::wstring_view Trimmed(std::wstring_view text) {
    const std::size_t start = std::min(text.find_first_not_of(kBlanks), text.size());
    text.remove_prefix(start);
    const std::size_t last = text.find_last_not_of(kBlanks);
    return last == std::wstring_view::npos ? text.substr(0, 0) : text.substr(0, last + 1);
}

// Takes the digits off the end. Empty text is 0.
int TakeLastNumber(std::wstring_view* text) {
    std::size_t start = text->size();
    while (start > 0 && (*text)[start - 1] >= L'0' && (*text)[start - 1] <= L'9') --start;
    std::wstring_view digits = text->substr(start);
    text->remove_suffix(digits.size());
    digits = digits.substr(std::min(digits.find_first_not_of(L'0'), digits.size()));
    if (digits.size() > kMostDigits) digits = L"999999999";
    int number = 0;
    for (const wchar_t digit : digits) number = number * 10 + (digit - L'0');
    return number;
}

bool TakeSign(std::wstring_view* text, std::wstring_view signs) {
    if (text->empty() || signs.find(text->back()) == std::wstring_view::npos) return false;
    text->remove_suffix(1);
    return true;
}

// Takes ":12" or ":12:5" off the end, or what has been typed of it.
void TakePlace(std::wstring_view* text, QuickQuery* query) {
    std::wstring_view rest = *text;
    const bool inBrackets = TakeSign(&rest, L")");
    const std::wstring_view first = inBrackets ? L"(" : L":(";  // the closing bracket may not have been typed yet
    const std::wstring_view between = inBrackets ? L"," : L":,";
    const int last = TakeLastNumber(&rest);
    if (std::wstring_view both = rest; TakeSign(&both, between)) {
        const int line = TakeLastNumber(&both);
        if (line > 0 && TakeSign(&both, first)) {
            *text = both;
            query->line = line;
            query->column = last;
            return;
        }
    }
    if (!TakeSign(&rest, first)) return;
    *text = rest;
    query->line = last;
}

}  // namespace

QuickQuery QuickQueryOf(std::wstring_view typed, std::wstring_view prefixes) {
    QuickQuery query;
    std::wstring_view text = Trimmed(typed);
    if (!text.empty() && prefixes.find(text.front()) != std::wstring_view::npos) {
        query.prefix = text.front();
        text = Trimmed(text.substr(1));
        if (query.prefix == L':') {
            std::wstring place = L":" + std::wstring(text);
            std::ranges::replace(place, L',', L':');
            std::wstring_view rest = place;
            TakePlace(&rest, &query);
            if (!rest.empty()) query.line = query.column = 0;
        }
    } else {
        TakePlace(&text, &query);
    }
    query.pattern = Trimmed(text);
    return query;
}
