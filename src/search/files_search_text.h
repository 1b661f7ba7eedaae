// Searching the bytes of one file, or the text of one document, and the lines that are shown of it. Pure; any thread.
#pragma once

#include "files/source_text.h"
#include "search/files_search_needle.h"
#include "search/regex.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct FilesQuery {
    std::string text;  // UTF-8
    bool matchCase = false;
    bool wholeWord = false;
    bool regex = false;
    std::optional<std::string> with;  // the replacement; hits then get a preview where it differs from hit to hit
    bool preserveCase = false;        // the replacement takes the case of what it replaces

    bool operator==(const FilesQuery&) const = default;
};

inline constexpr std::size_t kMaxHits = 100'000;  // of one search; it ends there
inline constexpr std::size_t kShownBytes = 240;   // of a line

// A match. Positions are bytes of the text as the editor holds it.
struct FileHit {
    std::uint32_t start = 0;
    std::uint32_t length = 0;
    std::uint32_t line = 0;        // from 0
    std::uint16_t markStart = 0;   // the match within `shown`
    std::uint16_t markLength = 0;  // of a match that is longer than what is shown, its beginning
    std::string shown;             // the line without blanks at its start, or the part of a long line around the match
    std::string preview;           // what the replacement by an expression puts there, cut to kShownBytes
    bool replaced = false;         // the text at the place is the replacement

    bool operator==(const FileHit&) const = default;
};

// Asked between pieces of about a megabyte: true ends the search.
using SearchStopped = std::function<bool()>;

struct MatchSpan {
    std::size_t start = 0;
    std::size_t length = 0;
};

// What is searched for, ready to walk over the matches of a text in order. Not for several threads at once.
class TextMatcher {
public:
    // Nothing when the query cannot be searched for; `fault` (may be null) then gets a sentence for the user.
    static std::optional<TextMatcher> Of(const FilesQuery& query, std::wstring* fault);
    // Begins a walk. The text must stay where it is.
    void Begin(std::string_view text, SearchStopped stopped);
    // Nothing when there is no further match, and when the search was stopped.
    std::optional<MatchSpan> Next();
    // Whether the walk has ended because the expression takes too long in this text.
    bool TooComplex() const { return tooComplex_; }
    // What is put in place of the last match, with line breaks as `breaks` has them.
    std::string Replacement(std::string_view with, std::string_view breaks) const;
    // The same for a list, of one line and of bounded length. Empty for a plain text, for which it is always the same.
    std::string Preview() const;
    // Whether a match of these bytes is one in every encoding of a file, so that they need not be decoded to know that
    // there is none.
    bool FindsInBytes() const { return needle_ && needle_->IsAscii(); }

private:
    std::optional<MatchSpan> NextText();
    std::optional<MatchSpan> NextOfExpression();

    std::optional<TextNeedle> needle_;  // nothing: an expression
    std::unique_ptr<RegexSearch> expression_;
    std::unique_ptr<RegexText> expressionText_;
    std::optional<std::string> with_;
    FindOptions find_;
    bool preserveCase_ = false;
    std::string_view text_;
    SearchStopped stopped_;
    std::size_t from_ = 0;
    bool tooComplex_ = false;
};

enum class FileKind : std::uint8_t { Text, Binary, NotDecoded, TooComplex };

struct FileHits {
    FileKind kind = FileKind::Text;
    std::vector<FileHit> hits;  // in order
    bool more = false;          // there were more than were wanted
};

// The hits in a text, at most `most`.
FileHits HitsInText(std::string_view utf8, TextMatcher& matcher, std::size_t most, const SearchStopped& stopped);
// The hits in a file of these bytes, decoded as the editor does it. A file with a NUL near its start that is no UTF-16 is
// binary.
FileHits HitsInBytes(std::string_view bytes, TextMatcher& matcher, const AnsiDecoder& ansi, std::size_t most,
                     const SearchStopped& stopped);

// The line around a place as it is shown, for a hit whose text has changed: sets the marks and the text of `hit`.
void ShowLineOfHit(std::string_view text, FileHit& hit);
