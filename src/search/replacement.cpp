// Reads replacements and fills them in. Pure.
#include "search/replacement.h"

#include "base/texts.h"
#include "base/utf8.h"

#include <algorithm>

namespace {

using Kind = ReplacePart::Kind;

bool IsDigit(char letter) { return letter >= '0' && letter <= '9'; }

// Reads one replacement from its start to its end.
class Reader {
public:
    Reader(std::string_view text, const RegexCode& code, std::string_view lineBreak)
        : text_(text), code_(code), lineBreak_(lineBreak) {}

    bool Read(ReplaceForm& form, RegexFault& fault) {
        while (at_ < text_.size() && fault.text.empty()) {
            const char letter = text_[at_];
            const bool special = (letter == '\\' || letter == '$') && at_ + 1 < text_.size();
            if (!special || !(letter == '\\' ? ReadEscape(fault) : ReadDollar(fault))) Plain(text_.substr(at_++, 1));
        }
        form.parts = std::move(parts_);
        return fault.text.empty();
    }

private:
    void Plain(std::string_view text) {
        if (parts_.empty() || parts_.back().kind != Kind::Text) parts_.push_back({.kind = Kind::Text, .text = {}});
        parts_.back().text += text;
    }
    void Add(Kind kind) { parts_.push_back({.kind = kind, .text = {}}); }

    void AddGroup(std::optional<int> number, std::string_view name, RegexFault& fault) {
        if (!number || *number > RegexGroupCount(code_))
            fault = {TextWith(L"There is no group {1}", {Utf8ToWideText(name)}), static_cast<std::ptrdiff_t>(at_)};
        else
            parts_.push_back({.kind = Kind::Group, .text = {}, .group = *number});
    }

    // A number of one digit, or of two when there are so many groups.
    void ReadNumber(std::size_t start, RegexFault& fault) {
        int number = text_[start] - '0';
        std::size_t end = start + 1;
        if (number > 0 && end < text_.size() && IsDigit(text_[end]) &&
            10 * number + (text_[end] - '0') <= RegexGroupCount(code_))
            number = 10 * number + (text_[end++] - '0');
        AddGroup(number, text_.substr(start, end - start), fault);
        at_ = end;
    }

    bool ReadEscape(RegexFault& fault) {
        const char letter = text_[at_ + 1];
        if (IsDigit(letter)) {
            ReadNumber(at_ + 1, fault);
            return true;
        }
        // CR LF is written as both, whatever the text has.
        const bool both = text_.substr(at_).starts_with("\\r\\n");
        switch (letter) {
            case 'n': Plain(lineBreak_); break;
            case 'r': Plain(both ? "\r\n" : "\r"); break;
            case 't': Plain("\t"); break;
            case 'U': Add(Kind::Upper); break;
            case 'L': Add(Kind::Lower); break;
            case 'E': Add(Kind::AsIs); break;
            case 'u': Add(Kind::UpperNext); break;
            case 'l': Add(Kind::LowerNext); break;
            default: Plain(text_.substr(at_ + 1, 1)); break;
        }
        at_ += both ? 4 : 2;
        return true;
    }

    // False for a dollar sign that means itself.
    bool ReadDollar(RegexFault& fault) {
        const char letter = text_[at_ + 1];
        if (IsDigit(letter)) {
            ReadNumber(at_ + 1, fault);
            return true;
        }
        if (letter == '$' || letter == '&') {
            if (letter == '$')
                Plain("$");
            else
                AddGroup(0, "0", fault);
            at_ += 2;
            return true;
        }
        const std::size_t end = letter == '{' ? text_.find('}', at_) : text_.npos;
        if (end == text_.npos || end == at_ + 2) return false;
        const std::string_view name = text_.substr(at_ + 2, end - at_ - 2);
        const bool number = name.size() <= 4 && std::ranges::all_of(name, IsDigit);
        AddGroup(number ? std::optional{std::stoi(std::string(name))} : RegexGroupNumber(code_, name), name, fault);
        at_ = end + 1;
        return true;
    }

    std::string_view text_;
    const RegexCode& code_;
    std::string_view lineBreak_;
    std::size_t at_ = 0;
    std::vector<ReplacePart> parts_;
};

// The bytes of the first character.
std::size_t FirstCharacter(std::string_view text) {
    std::size_t end = std::min<std::size_t>(1, text.size());
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) ++end;
    return end;
}

}  // namespace

bool ReplaceParse(std::string_view text, const RegexCode& code, const FindOptions& find, const ReplaceOptions& options,
                  ReplaceForm& form, RegexFault& fault) {
    form = {};
    fault = {};
    form.preserveCase = options.preserveCase;
    if (!find.regex)
        form.parts.push_back({.kind = Kind::Text, .text = std::string(text)});
    else if (!Reader(text, code, options.lineBreak).Read(form, fault))
        return false;
    form.alike = !options.preserveCase &&
                 std::ranges::all_of(form.parts, [](const ReplacePart& part) { return part.kind == Kind::Text; });
    for (const ReplacePart& part : form.parts) form.text += part.text;
    return true;
}

std::string ReplaceExpand(const ReplaceForm& form, const RegexSearch& search) {
    if (form.alike) return form.text;
    std::string out;
    Kind letters = Kind::AsIs, next = Kind::AsIs;
    for (const ReplacePart& part : form.parts) {
        if (part.kind == Kind::UpperNext || part.kind == Kind::LowerNext) next = part.kind;
        if (part.kind == Kind::Upper || part.kind == Kind::Lower || part.kind == Kind::AsIs) letters = part.kind;
        if (part.kind != Kind::Text && part.kind != Kind::Group) continue;
        std::string text = part.kind == Kind::Text ? part.text : search.GroupText(part.group);
        if (text.empty()) continue;
        if (letters != Kind::AsIs) text = ChangeCase(text, letters == Kind::Upper);
        if (next != Kind::AsIs) {
            const std::size_t first = FirstCharacter(text);
            text = ChangeCase(text.substr(0, first), next == Kind::UpperNext) + text.substr(first);
        }
        next = Kind::AsIs;
        out += text;
    }
    return form.preserveCase ? WithCaseOf(search.GroupText(0), out) : out;
}

std::string WithCaseOf(std::string_view matched, std::string_view replacement) {
    const std::string upper = ChangeCase(matched, true), lower = ChangeCase(matched, false);
    if (upper == lower) return std::string(replacement);  // no letters
    const std::string_view first = matched.substr(0, FirstCharacter(matched));
    const bool capital = ChangeCase(first, false) != first;
    // A single capital is a capital at the start.
    if (matched == upper && (matched.size() > first.size() || !capital)) return ChangeCase(replacement, true);
    if (matched == lower) return ChangeCase(replacement, false);
    const std::size_t start = FirstCharacter(replacement);
    const bool small = ChangeCase(first, true) != first;
    if (!capital && !small) return std::string(replacement);
    return ChangeCase(replacement.substr(0, start), capital) + std::string(replacement.substr(start));
}
