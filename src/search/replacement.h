// The text that replaces the matches of an expression:
//   $0 \0 $&       the whole match            $1 \1 ${12} ${name}  a group; empty when it took no part
//   \n \r \t       control characters; \n is the line break of the text
//   \U \L \E       capitals, small letters, neither from here on; \u \l  the next letter only
//   $$ \\ and \ before any other sign: the sign itself
// Pure.
#pragma once

#include "search/regex.h"

#include <string>
#include <string_view>
#include <vector>

struct ReplacePart {
    enum class Kind : std::uint8_t { Text, Group, Upper, Lower, AsIs, UpperNext, LowerNext };
    Kind kind = Kind::Text;
    std::string text;
    int group = 0;
};

struct ReplaceForm {
    std::vector<ReplacePart> parts;
    bool preserveCase = false;  // written in capitals where the match is, and so on
    // The same text replaces every match, and this is it.
    bool alike = true;
    std::string text;
};

struct ReplaceOptions {
    bool preserveCase = false;
    std::string_view lineBreak = "\n";  // of the text in which the matches are
};

// For a plain text to find (FindOptions without `regex`) the replacement is plain, too. False when it names a group that
// the expression does not have; `fault` then says which.
bool ReplaceParse(std::string_view text, const RegexCode& code, const FindOptions& find, const ReplaceOptions& options,
                  ReplaceForm& form, RegexFault& fault);

// The text for the last match of the search.
std::string ReplaceExpand(const ReplaceForm& form, const RegexSearch& search);

// `replacement` with the letters of `matched`: all capitals, all small, or a capital at the start.
std::string WithCaseOf(std::string_view matched, std::string_view replacement);
