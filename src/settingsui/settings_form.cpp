#include "settingsui/settings_form.h"

#include "base/bounded_text.h"
#include "base/decimal.h"
#include "base/hex_digit.h"
#include "base/texts.h"
#include "settings/secret_text.h"
#include "ui/theme_table.h"

#include <algorithm>
#include <cstddef>
#include <cwctype>
#include <utility>

namespace {

constexpr std::size_t kLongestNumber = 11;  // characters
constexpr std::size_t kShortestOpenAiKey = 10,
                      kShortestLmStudioKey = 3;  // shorter ones are dropped when they are loaded

bool HoldsNumber(const SettingItem& item) {
    return item.row != nullptr && (item.row->type == SettingType::Bool || item.row->type == SettingType::Int);
}

// A whole number with an optional minus, and nothing else.
std::optional<std::int32_t> WholeNumber(std::wstring_view text) {
    const std::wstring_view digits = text.starts_with(L'-') ? text.substr(1) : text;
    const bool plain = !digits.empty() && digits.size() < kLongestNumber &&
                       std::ranges::all_of(digits, [](wchar_t c) { return c >= L'0' && c <= L'9'; });
    if (!plain) return std::nullopt;
    return DecimalNumber(text);
}

std::wstring_view Trimmed(std::wstring_view text) {
    while (!text.empty() && text.front() == L' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == L' ') text.remove_suffix(1);
    return text;
}

std::wstring NumberProblem(const SettingItem& item, std::wstring_view text) {
    const std::optional<std::int32_t> number = WholeNumber(Trimmed(text));
    if (number && *number >= item.low && *number <= item.high) return {};
    return TextWith(L"A whole number from {1} to {2}.", {std::to_wstring(item.low), std::to_wstring(item.high)});
}

std::wstring ColourProblem(std::wstring_view text) {
    if (Trimmed(text).empty()) return {};
    const std::optional<std::int32_t> colour = ColourOfText(Trimmed(text));
    if (!colour) return Text(L"A colour as # and six hexadecimal digits, such as #1E90FF, or nothing.");
    return *colour != 0 ? L"" : Text(L"Black cannot be told from \"no colour\". Take #010101 instead.");
}

std::wstring PathProblem(std::wstring_view text) {
    return text.find_first_of(L"\"<>|*?") == std::wstring_view::npos
               ? L""
               : Text(L"A path holds none of these characters: \" < > | * ?");
}

std::wstring UrlProblem(std::wstring_view text) {
    if (text.find(L' ') != std::wstring_view::npos) return Text(L"An address holds no blanks.");
    for (const std::wstring_view scheme : {L"http://", L"https://"}) {
        if (!text.starts_with(scheme)) continue;
        const std::wstring_view host =
            text.substr(scheme.size(), text.find_first_of(L"/:", scheme.size()) - scheme.size());
        return host.empty() ? Text(L"The name of the server is missing.") : L"";
    }
    return Text(L"An address begins with http:// or https://.");
}

std::wstring SecretProblem(const SettingItem& item, std::wstring_view text) {
    if (text.empty()) return {};
    if (IsSecretText(text)) return Text(L"This is no key. Clear the field, then enter the key.");
    const std::size_t shortest =
        item.row->offset == offsetof(Settings, openAIKey) ? kShortestOpenAiKey : kShortestLmStudioKey;
    if (text.size() < shortest) return TextWith(L"A key has at least {1} characters.", {std::to_wstring(shortest)});
    return text.find(L' ') == std::wstring_view::npos ? L"" : Text(L"A key holds no blanks.");
}

wchar_t Lower(wchar_t c) { return static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(c))); }

bool Holds(std::wstring_view text, std::wstring_view word) {
    const auto same = [](wchar_t a, wchar_t b) { return Lower(a) == Lower(b); };
    return std::search(text.begin(), text.end(), word.begin(), word.end(), same) != text.end();
}

template <typename Test>
bool EveryWord(std::wstring_view query, Test test) {
    for (query = Trimmed(query); !query.empty(); query = Trimmed(query)) {
        const std::wstring_view word = query.substr(0, query.find(L' '));
        if (!test(word)) return false;
        query.remove_prefix(word.size());
    }
    return true;
}

template <typename Visit>
void ForEachPlace(Visit visit) {
    const std::vector<SettingsPage>& pages = SettingsPages();
    for (std::size_t page = 0; page < pages.size(); ++page)
        for (std::size_t item = 0; item < pages[page].items.size(); ++item)
            visit(FormPlace{page, item}, pages[page].items[item]);
}

}  // namespace

std::wstring ColourText(std::int32_t colour) {
    constexpr wchar_t kDigits[] = L"0123456789ABCDEF";
    std::wstring text = L"#";
    const auto value = static_cast<std::uint32_t>(colour);
    for (const unsigned shift : {4U, 0U, 12U, 8U, 20U, 16U}) text += kDigits[value >> shift & 0xFU];  // red is lowest
    return text;
}

std::optional<std::int32_t> ColourOfText(std::wstring_view text) {
    if (text.size() != 7 || text[0] != L'#') return std::nullopt;
    std::uint32_t rgb = 0;
    for (const wchar_t c : text.substr(1)) {
        const int digit = c < 128 ? HexValue(static_cast<char>(c)) : -1;
        if (digit < 0) return std::nullopt;
        rgb = rgb << 4U | static_cast<std::uint32_t>(digit);
    }
    return static_cast<std::int32_t>((rgb & 0xFFU) << 16U | (rgb & 0xFF00U) | rgb >> 16U);
}

std::wstring SettingItemText(const SettingItem& item, const Settings& settings) {
    if (item.row == nullptr) return {};
    if (!HoldsNumber(item)) return SettingText(settings, *item.row);
    std::int32_t number = SettingNumber(settings, item.row->offset);
    if (item.beyond != nullptr) number += SettingNumber(settings, item.beyond->offset);
    if (item.control == SettingControl::Colour) return number == 0 ? L"" : ColourText(number);
    return std::to_wstring(number);
}

void SettingItemPut(const SettingItem& item, std::wstring_view text, Settings& settings) {
    if (item.row == nullptr) return;
    if (!HoldsNumber(item)) {
        SafeCopyW(SettingText(settings, *item.row), item.row->capacity,
                  item.control == SettingControl::LongText ? text : Trimmed(text));
        return;
    }
    std::int32_t& field = SettingNumber(settings, item.row->offset);
    if (item.control == SettingControl::Colour)
        field = ColourOfText(Trimmed(text)).value_or(0);
    else
        field = WholeNumber(Trimmed(text)).value_or(field);
    if (item.beyond == nullptr) return;
    SettingNumber(settings, item.beyond->offset) = std::max(field - item.row->limits.high, 0);
    field = std::min(field, item.row->limits.high);
}

std::wstring SettingItemProblem(const SettingItem& item, std::wstring_view text) {
    if (item.row != nullptr && !HoldsNumber(item) && text.size() > SettingItemLongest(item))
        return TextWith(L"At most {1} characters.", {std::to_wstring(SettingItemLongest(item))});
    switch (item.control) {
        case SettingControl::Number: return NumberProblem(item, text);
        case SettingControl::Colour: return ColourProblem(text);
        case SettingControl::File:
        case SettingControl::Folder: return PathProblem(text);
        case SettingControl::Url: return UrlProblem(Trimmed(text));
        case SettingControl::Secret: return SecretProblem(item, Trimmed(text));
        case SettingControl::Font: return Trimmed(text).empty() ? Text(L"A font is needed.") : L"";
        default: return {};
    }
}

bool SettingIsStyle(const SettingItem& item) {
    return item.row != nullptr && item.row->offset == offsetof(Settings, editorStylePreset);
}

std::size_t SettingItemLongest(const SettingItem& item) {
    if (item.row == nullptr) return 0;
    return HoldsNumber(item) ? kLongestNumber : item.row->capacity - 1;
}

bool SettingItemMatches(const SettingsPage& page, const SettingItem& item, std::wstring_view query) {
    return EveryWord(
        query,
        [&](std::wstring_view word) {
            const auto holds = [&](const wchar_t* text) { return Holds(text, word); };
            return holds(page.title) || holds(item.group) || holds(item.label) || holds(item.help) ||
                   holds(item.words) || (item.row != nullptr && holds(item.row->key)) ||
                   std::ranges::any_of(item.choices, holds);
        });
}

std::vector<std::wstring> LinesFound(const std::vector<std::wstring>& lines, std::wstring_view query) {
    std::vector<std::wstring> found;
    for (const std::wstring& line : lines)
        if (EveryWord(query, [&](std::wstring_view word) { return Holds(line, word); })) found.push_back(line);
    return found;
}

bool SettingsPageMatches(const SettingsPage& page, std::wstring_view query) {
    return std::ranges::any_of(
        page.items, [&](const SettingItem& item) { return SettingItemMatches(page, item, query); });
}

SettingsForm FormOf(const Settings& settings) {
    SettingsForm form;
    for (const SettingsPage& page : SettingsPages()) {
        std::vector<std::wstring>& texts = form.known.emplace_back();
        for (const SettingItem& item : page.items) texts.push_back(SettingItemText(item, settings));
    }
    form.texts = form.known;
    return form;
}

void FormRenew(SettingsForm& form, const Settings& settings) {
    SettingsForm now = FormOf(settings);
    ForEachPlace([&](FormPlace place, const SettingItem&) {
        if (FormItemIsEdited(form, place)) now.texts[place.page][place.item] = form.texts[place.page][place.item];
    });
    form = std::move(now);
}

void FormSetText(SettingsForm& form, FormPlace place, std::wstring text) {
    std::wstring& own = form.texts[place.page][place.item];
    const std::wstring before = std::exchange(own, std::move(text));
    if (!SettingIsStyle(SettingsPages()[place.page].items[place.item])) return;
    std::wstring *face = nullptr, *size = nullptr;
    ForEachPlace([&](FormPlace at, const SettingItem& item) {
        if (item.row == nullptr) return;
        if (item.row->offset == offsetof(Settings, fontName)) face = &form.texts[at.page][at.item];
        if (item.row->offset == offsetof(Settings, fontSize)) size = &form.texts[at.page][at.item];
    });
    const auto number = [](std::wstring_view digits) { return WholeNumber(Trimmed(digits)).value_or(0); };
    const auto font = FontWithStyle(number(before), number(own), *face, number(*size));
    if (!font) return;
    *face = font->face;
    *size = std::to_wstring(font->points);
}

bool FormItemIsEdited(const SettingsForm& form, FormPlace place) {
    return form.texts[place.page][place.item] != form.known[place.page][place.item];
}

bool FormIsEdited(const SettingsForm& form) { return form.texts != form.known; }

std::optional<FormPlace> FormFirstProblem(const SettingsForm& form) {
    std::optional<FormPlace> first;
    ForEachPlace([&](FormPlace place, const SettingItem& item) {
        if (!first && FormItemIsEdited(form, place) &&
            !SettingItemProblem(item, form.texts[place.page][place.item]).empty())
            first = place;
    });
    return first;
}

void FormPut(const SettingsForm& form, Settings& settings) {
    ForEachPlace([&](FormPlace place, const SettingItem& item) {
        if (FormItemIsEdited(form, place)) SettingItemPut(item, form.texts[place.page][place.item], settings);
    });
}
