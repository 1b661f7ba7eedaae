#include "base/texts.h"

#include "base/utf8.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

// Set once before the first window and the first thread, and only read afterwards.
const TextCatalogue* catalogueInUse = nullptr;

bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

// What a format takes of the arguments: "%-5.2ls" gives "ls", "%*d" gives "*d". A percent sign that begins no format gives
// "%", one that stands for itself ("%%") nothing. `at` is behind the percent sign and goes behind the format.
std::wstring FormatAt(std::wstring_view text, std::size_t* at) {
    std::size_t i = *at;
    if (i < text.size() && text[i] == L'%') {
        *at = i + 1;
        return {};
    }
    std::wstring kind;
    while (i < text.size() &&
           (IsDigit(text[i]) || std::wstring_view{L"-+ #.*"}.find(text[i]) != std::wstring_view::npos)) {
        if (text[i] == L'*') kind += L'*';
        ++i;
    }
    while (i < text.size() && std::wstring_view{L"hlwzjtLI"}.find(text[i]) != std::wstring_view::npos) {
        kind += text[i];
        const bool sized = text.substr(i).starts_with(L"I64") || text.substr(i).starts_with(L"I32");
        if (sized) kind += text.substr(i + 1, 2);
        i += sized ? 3 : 1;
    }
    if (i >= text.size() || std::wstring_view{L"diouxXeEfFgGaAcCsSpn"}.find(text[i]) == std::wstring_view::npos)
        return L"%";
    *at = i + 1;
    return kind + text[i];
}

std::vector<std::wstring> FormatsOf(std::wstring_view text) {
    std::vector<std::wstring> formats;
    for (std::size_t at = 0; (at = text.find(L'%', at)) != std::wstring_view::npos;)
        if (std::wstring kind = FormatAt(text, &++at); !kind.empty()) formats.push_back(std::move(kind));
    return formats;
}

// The number in braces at `at`, which becomes the place behind them; 0 when there is none.
std::size_t PlaceAt(std::wstring_view text, std::size_t* at) {
    if (*at + 2 >= text.size() || text[*at] != L'{' || text[*at + 1] < L'1' || text[*at + 1] > L'9' ||
        text[*at + 2] != L'}')
        return 0;
    const auto number = static_cast<std::size_t>(text[*at + 1] - L'0');
    *at += 3;
    return number;
}

std::vector<std::size_t> PlacesOf(std::wstring_view text) {
    std::vector<std::size_t> places;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t place = PlaceAt(text, &at);
        if (place == 0)
            ++at;
        else
            places.push_back(place);
    }
    std::ranges::sort(places);
    return places;
}

// The letters that a menu or a button underlines. "&&" shows the sign itself, and so does one before a blank.
std::size_t UnderlinedIn(std::wstring_view text) {
    std::size_t count = 0;
    for (std::size_t at = 0; at + 1 < text.size(); ++at) {
        if (text[at] != L'&') continue;
        if (text[at + 1] != L'&' && text[at + 1] != L' ') ++count;
        ++at;
    }
    return count;
}

std::wstring_view KeysOf(std::wstring_view text) {
    const std::size_t tab = text.rfind(L'\t');
    return tab == std::wstring_view::npos ? std::wstring_view{} : text.substr(tab);
}

std::wstring_view LineEndOf(std::wstring_view text) {
    const std::size_t last = text.find_last_not_of(L"\r\n");
    return text.substr(last == std::wstring_view::npos ? 0 : last + 1);
}

// --- The file

std::string_view NextLine(std::string_view* rest) {
    const std::size_t end = std::min(rest->find('\n'), rest->size());
    std::string_view line = rest->substr(0, end);
    rest->remove_prefix(std::min(end + 1, rest->size()));
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t')) line.remove_suffix(1);
    while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) line.remove_prefix(1);
    return line;
}

// The text between quotes, with \n, \r, \t, \" and \\ as in C. False for anything else, also for a NUL.
bool ReadQuoted(std::string_view line, std::wstring* out) {
    if (line.size() < 2 || line.front() != '"' || line.back() != '"') return false;
    std::string plain;
    line = line.substr(1, line.size() - 2);
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"' || line[i] == '\0') return false;
        if (line[i] != '\\') {
            plain += line[i];
            continue;
        }
        constexpr std::string_view kLetters = "nrt\"\\", kMeanings = "\n\r\t\"\\";
        const std::size_t kind = ++i < line.size() ? kLetters.find(line[i]) : std::string_view::npos;
        if (kind == std::string_view::npos) return false;
        plain += kMeanings[kind];
    }
    *out = Utf8ToWideText(plain);
    return out->size() <= kLongestText;
}

}  // namespace

const wchar_t* Text(const wchar_t* english) {
    if (catalogueInUse == nullptr || english == nullptr) return english;
    const std::wstring* const found = catalogueInUse->Find(english);
    return found == nullptr ? english : found->c_str();
}

std::wstring TextWith(const wchar_t* english, std::initializer_list<std::wstring_view> values) {
    const std::wstring_view pattern = Text(english);
    std::wstring text;
    for (std::size_t at = 0; at < pattern.size();) {
        const std::size_t place = PlaceAt(pattern, &at);
        if (place == 0)
            text += pattern[at++];
        else if (place <= values.size())
            text += *std::next(values.begin(), static_cast<std::ptrdiff_t>(place) - 1);
    }
    return text;
}

std::wstring FilterText(const wchar_t* filter) {
    std::wstring text;
    for (bool isName = true; *filter != L'\0'; isName = !isName) {
        const std::wstring_view part = filter;
        text += isName ? Text(filter) : filter;
        text += L'\0';
        filter += part.size() + 1;
    }
    text += L'\0';
    return text;
}

bool TranslationFits(std::wstring_view english, std::wstring_view translation) {
    return FormatsOf(english) == FormatsOf(translation) && PlacesOf(english) == PlacesOf(translation) &&
           UnderlinedIn(english) == UnderlinedIn(translation) && KeysOf(english) == KeysOf(translation) &&
           LineEndOf(english) == LineEndOf(translation);
}

TextCatalogue TextCatalogue::Parse(std::string_view utf8, std::vector<CatalogueFault>* faults) {
    TextCatalogue catalogue;
    int number = 0;
    const auto fault = [&](const wchar_t* what) {
        if (faults != nullptr && faults->size() < kMostFaults) faults->push_back({number, what});
    };
    if (utf8.size() > kMostCatalogueBytes) {
        fault(L"the file is too large");
        return catalogue;
    }
    if (utf8.starts_with("\xEF\xBB\xBF")) utf8.remove_prefix(3);
    std::wstring english, translation;
    bool hasEnglish = false;
    while (!utf8.empty()) {
        ++number;
        const std::string_view line = NextLine(&utf8);
        if (line.empty() || line.front() == '#') continue;
        const bool isTranslation = line.front() == '=';
        if (!isTranslation) {
            hasEnglish = ReadQuoted(line, &english) && !english.empty();
            if (!hasEnglish) fault(L"no text in quotes");
            continue;
        }
        std::string_view quoted = line.substr(1);
        quoted.remove_prefix(std::min(quoted.find_first_not_of(" \t"), quoted.size()));
        if (!std::exchange(hasEnglish, false))
            fault(L"no English text above");
        else if (!ReadQuoted(quoted, &translation))
            fault(L"no translation in quotes");
        else if (translation.empty())
            continue;  // not translated yet
        else if (!TranslationFits(english, translation))
            fault(L"formats, underlined letter, keys or line end differ");
        else if (!catalogue.texts_.emplace(english, translation).second)
            fault(L"translated twice; the first one counts");
    }
    return catalogue;
}

const std::wstring* TextCatalogue::Find(std::wstring_view english) const {
    const auto found = texts_.find(english);
    return found == texts_.end() ? nullptr : &found->second;
}

void TextsUse(const TextCatalogue* catalogue) { catalogueInUse = catalogue; }
bool TextsAreTranslated() { return catalogueInUse != nullptr; }
