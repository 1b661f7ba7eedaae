// Searching UTF-8 text, for plain text and for regular expressions alike, by PCRE2. A text is searched in pieces, so that
// a search of any length can be stopped, and the editor's text need not be copied. Bytes that are no UTF-8 match
// nothing. Lines end with CR LF, CR or LF; ^ and $ match at each of them. Positions are bytes. Pure.
#pragma once

#include "search/find_rules.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Why an expression or a replacement cannot be used.
struct RegexFault {
    std::wstring text;            // a sentence for the user, without a full stop; empty: no fault
    std::ptrdiff_t position = 0;  // where it was noticed, bytes from the start of what was given
};

// A compiled expression. Threads may share it; each needs a RegexSearch of its own.
struct RegexCode;
using RegexHandle = std::shared_ptr<const RegexCode>;

// Null when the text cannot be searched for; `fault` then says why. An empty text is such a fault.
RegexHandle RegexCompile(std::string_view text, const FindOptions& options, RegexFault& fault);
int RegexGroupCount(const RegexCode& code);                                         // without the whole match
std::optional<int> RegexGroupNumber(const RegexCode& code, std::string_view name);  // of a named group

// The text in capitals or in small letters, in any language. A text that is no UTF-8 stays as it is.
std::string ChangeCase(std::string_view utf8, bool capitals);

// The text to search. `bytes` gives the bytes from `from` to before `to`, which stay valid until it is called again.
struct RegexText {
    std::ptrdiff_t length = 0;
    std::function<const char*(std::ptrdiff_t from, std::ptrdiff_t to)> bytes;
    // Bytes searched in one call. More would save calls; less bounds the time of a call in which every start of a match
    // looks at all of the rest.
    std::ptrdiff_t piece = 32 * 1024;
};
RegexText RegexTextOf(std::string_view bytes);  // `bytes` must stay where they are

enum class RegexResult {
    Match,
    NoMatch,
    TooComplex,  // the expression needs too many steps or too much memory at Position()
    Stopped,     // by `goesOn`
};

// Asked before each piece with the position that the search has reached. False: the search is to stop.
using RegexGoesOn = std::function<bool(std::ptrdiff_t position)>;

// Walks over the matches of one expression in a range, in order. An empty match right after a match does not count.
class RegexSearch {
public:
    explicit RegexSearch(RegexHandle code);  // `code` is not null
    ~RegexSearch();
    RegexSearch(const RegexSearch&) = delete;
    RegexSearch& operator=(const RegexSearch&) = delete;

    // Begins a walk over the matches that lie within `scope`. Text before it is seen by look-behind, ^ and \b; text after
    // it is not seen. `text` must outlive the walk. With `notEmptyHere` an empty match at the start does not count.
    void Begin(const RegexText& text, FindSpan scope, bool notEmptyHere = false, RegexGoesOn goesOn = {});
    RegexResult Next();

    // Of the last match. A group that took no part has no span. Group 0 is the whole match.
    FindSpan Match() const { return groups_.empty() ? FindSpan{} : *groups_[0]; }
    std::optional<FindSpan> Group(int number) const;
    std::string GroupText(int number) const;  // empty for a group that took no part
    std::ptrdiff_t Position() const { return at_; }
    const RegexCode& Code() const { return *code_; }

private:
    struct Engine;
    struct Piece;
    Piece NextPiece() const;
    int MatchIn(const Piece& piece);
    bool SplitsBreak(const Piece& piece) const;
    void TakeMatch(const Piece& piece);
    void Adapt(std::ptrdiff_t starts, double milliseconds);

    RegexHandle code_;
    std::unique_ptr<Engine> engine_;
    const RegexText* text_ = nullptr;
    FindSpan scope_;
    RegexGoesOn goesOn_;
    std::ptrdiff_t at_ = 0;      // where the next match may begin
    bool notEmptyHere_ = false;  // an empty match at `at_` does not count
    bool ended_ = false;
    std::ptrdiff_t seen_ = 0;    // the next piece shows the text at least up to here, for a match that needs it
    std::ptrdiff_t starts_ = 0;  // bytes at which a match may begin in the next piece
    // The last slow call, and whether such calls are slow because of the number of starts.
    std::ptrdiff_t slowStarts_ = 0;
    double slowMs_ = 0;
    bool startsCost_ = false;
    std::vector<std::optional<FindSpan>> groups_;
};
