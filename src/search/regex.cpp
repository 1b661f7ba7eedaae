// Compiles expressions and walks over their matches by PCRE2. Pure.
#define PCRE2_CODE_UNIT_WIDTH 8
#include "search/regex.h"

#include "base/texts.h"
#include "base/utf8.h"

#include <pcre2.h>

#include <algorithm>
#include <chrono>
#include <utility>

struct RegexCode {
    pcre2_code* compiled = nullptr;
    std::ptrdiff_t lookBehind = 0;  // bytes before the start of a match that can matter
    bool namesBreaks = false;       // has a CR or LF of its own

    explicit RegexCode(pcre2_code* code) : compiled(code) {}
    ~RegexCode() { pcre2_code_free(compiled); }
    RegexCode(const RegexCode&) = delete;
    RegexCode& operator=(const RegexCode&) = delete;
};

namespace {

constexpr std::ptrdiff_t kFewStarts = 4;         // in the first call after a start that needed more text than a piece
constexpr double kSlowCall = 20, kFastCall = 2;  // milliseconds

// The limits of one start of a match. Catastrophic expressions reach the first after about a tenth of a second.
constexpr std::uint32_t kMatchLimit = 5'000'000;
constexpr std::uint32_t kHeapLimit = 64 * 1024;  // kB; without compiled machine code
constexpr std::size_t kStackFirst = 32 * 1024;   // of the compiled machine code
constexpr std::size_t kStackMost = 16 * 1024 * 1024;

constexpr std::ptrdiff_t kLongestCharacter = 4;  // bytes

bool IsAsciiLetterOrDigit(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') || (letter >= '0' && letter <= '9');
}

// Every byte beyond ASCII counts as part of a word, as in the editor.
bool IsWordByte(char letter) {
    return IsAsciiLetterOrDigit(letter) || letter == '_' || (static_cast<unsigned char>(letter) & 0x80) != 0;
}

// The expression for a plain text as a whole word: no word goes on before its first letter or behind its last one.
std::string WholeWordExpression(std::string_view text) {
    std::string expression = IsWordByte(text.front()) ? "(?<!\\w)" : "";
    for (const char letter : text) {
        if (!IsWordByte(letter)) expression += '\\';
        expression += letter;
    }
    if (IsWordByte(text.back())) expression += "(?!\\w)";
    return expression;
}

// The place of the "]" that ends the class beginning at `start`, or the end of the expression.
std::size_t EndOfClass(std::string_view expression, std::size_t start) {
    std::size_t at = start + 1;
    if (at < expression.size() && expression[at] == '^') ++at;
    if (at < expression.size() && expression[at] == ']') ++at;  // a letter of the class
    for (; at < expression.size() && expression[at] != ']'; ++at)
        if (expression[at] == '\\')
            ++at;
        else if (expression.substr(at, 2) == "[:")
            at = std::min(expression.find(":]", at), expression.size()) + 1;
    return at;
}

// Makes \n any line break, because it would miss, or tear apart, those of CR LF. It stays in a class and after \r, and in a
// look behind, whose length must be fixed. The length stays, so that the place of a fault is right.
std::string WithLineBreaks(std::string expression) {
    std::vector<bool> lookBehind = {false};  // of the open groups
    for (std::size_t at = 0; at < expression.size(); ++at) {
        const std::string_view before = std::string_view(expression).substr(0, at);
        const std::string_view rest = std::string_view(expression).substr(at);
        if (rest.starts_with("\\Q")) {
            at = std::min(expression.find("\\E", at), expression.size());
        } else if (rest[0] == '\\') {
            const bool afterCr = before.ends_with("\\r") || before.ends_with("\\r?") || before.ends_with("\\r*");
            if (rest.starts_with("\\n") && !lookBehind.back() && !afterCr) expression[at + 1] = 'R';
            ++at;
        } else if (rest[0] == '[') {
            at = EndOfClass(expression, at);
        } else if (rest[0] == '(') {
            lookBehind.push_back(lookBehind.back() || rest.starts_with("(?<=") || rest.starts_with("(?<!"));
        } else if (rest[0] == ')' && lookBehind.size() > 1) {
            lookBehind.pop_back();
        }
    }
    return expression;
}

std::wstring MessageOf(int error) {
    PCRE2_UCHAR message[256] = {};
    pcre2_get_error_message(error, message, sizeof message);
    std::string text(reinterpret_cast<const char*>(message));
    if (!text.empty() && text[0] >= 'a' && text[0] <= 'z') text[0] = static_cast<char>(text[0] - 'a' + 'A');
    return Utf8ToWideText(text);
}

bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// The nearest position before or after `at` that is neither inside a character nor between CR and LF, and is above
// `least` and below `most`; else `most`. `bytes` begins at `from` and goes at least to `most`.
std::ptrdiff_t WholeAt(const char* bytes, std::ptrdiff_t from, std::ptrdiff_t at, std::ptrdiff_t least,
                       std::ptrdiff_t most) {
    const auto isWhole = [&](std::ptrdiff_t place) {
        const char before = bytes[place - 1 - from], here = bytes[place - from];
        return !IsContinuation(here) && (before != '\r' || here != '\n');
    };
    for (std::ptrdiff_t place = at; place > std::max(least, at - kLongestCharacter); --place)
        if (isWhole(place)) return place;
    for (std::ptrdiff_t place = at + 1; place < most; ++place)
        if (isWhole(place)) return place;
    return most;
}

double NowMs() {
    using namespace std::chrono;
    return duration<double, std::milli>(steady_clock::now().time_since_epoch()).count();
}

}  // namespace

RegexHandle RegexCompile(std::string_view text, const FindOptions& options, RegexFault& fault) {
    fault = {};
    if (text.empty()) {
        fault.text = Text(L"Nothing to find");
        return nullptr;
    }
    const bool literal = !options.regex && !options.wholeWord;
    const std::string expression = literal         ? std::string(text)
                                   : options.regex ? WithLineBreaks(std::string(text))
                                                   : WholeWordExpression(text);
    std::uint32_t bits = PCRE2_UTF | PCRE2_MATCH_INVALID_UTF | PCRE2_USE_OFFSET_LIMIT;
    bits |= literal ? PCRE2_LITERAL : PCRE2_UCP | PCRE2_MULTILINE | PCRE2_ALT_CIRCUMFLEX | PCRE2_NEVER_BACKSLASH_C;
    if (!options.matchCase) bits |= PCRE2_CASELESS;

    const std::unique_ptr<pcre2_compile_context, decltype(&pcre2_compile_context_free)> context(
        pcre2_compile_context_create(nullptr), pcre2_compile_context_free);
    pcre2_set_newline(context.get(), PCRE2_NEWLINE_ANYCRLF);
    pcre2_set_bsr(context.get(), PCRE2_BSR_ANYCRLF);
    if (options.wholeWord && options.regex) pcre2_set_compile_extra_options(context.get(), PCRE2_EXTRA_MATCH_WORD);
    int error = 0;
    PCRE2_SIZE offset = 0;
    pcre2_code* compiled = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(expression.data()), expression.size(), bits,
                                         &error, &offset, context.get());
    if (compiled == nullptr) {
        fault = {MessageOf(error),
                 std::min(static_cast<std::ptrdiff_t>(offset), static_cast<std::ptrdiff_t>(text.size()))};
        return nullptr;
    }
    auto code = std::make_shared<RegexCode>(compiled);
    std::uint32_t characters = 0;
    pcre2_pattern_info(compiled, PCRE2_INFO_MAXLOOKBEHIND, &characters);
    std::uint32_t namesBreaks = 0;
    pcre2_pattern_info(compiled, PCRE2_INFO_HASCRORLF, &namesBreaks);
    code->namesBreaks = namesBreaks != 0;
    code->lookBehind = kLongestCharacter * (static_cast<std::ptrdiff_t>(characters) + 2);
    // Where the system gives no memory for machine code, the expression is interpreted, which is only slower.
    pcre2_jit_compile(compiled, PCRE2_JIT_COMPLETE | PCRE2_JIT_PARTIAL_HARD);
    return code;
}

int RegexGroupCount(const RegexCode& code) {
    std::uint32_t count = 0;
    pcre2_pattern_info(code.compiled, PCRE2_INFO_CAPTURECOUNT, &count);
    return static_cast<int>(count);
}

std::optional<int> RegexGroupNumber(const RegexCode& code, std::string_view name) {
    const int number =
        pcre2_substring_number_from_name(code.compiled, reinterpret_cast<PCRE2_SPTR>(std::string(name).c_str()));
    return number > 0 ? std::optional{number} : std::nullopt;
}

std::string ChangeCase(std::string_view utf8, bool capitals) {
    const bool ascii = std::ranges::all_of(utf8, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    std::string out(utf8);
    if (ascii) {
        const char first = capitals ? 'a' : 'A';
        for (char& c : out)
            if (c >= first && c < first + 26) c = static_cast<char>(c ^ 0x20);
        return out;
    }
    // PCRE2 knows the letters of all languages, but gives them only to its own replacing.
    int error = 0;
    PCRE2_SIZE offset = 0;
    const auto text = [](std::string_view bytes) { return reinterpret_cast<PCRE2_SPTR>(bytes.data()); };
    pcre2_code* all = pcre2_compile(text("(?s).+"), PCRE2_ZERO_TERMINATED, PCRE2_UTF, &error, &offset, nullptr);
    PCRE2_SIZE length = 3 * utf8.size() + 1;  // no letter grows more
    out.resize(length);
    const int replaced = pcre2_substitute(all, text(utf8), utf8.size(), 0, PCRE2_SUBSTITUTE_EXTENDED, nullptr, nullptr,
                                          text(capitals ? "\\U$0" : "\\L$0"), PCRE2_ZERO_TERMINATED,
                                          reinterpret_cast<PCRE2_UCHAR*>(out.data()), &length);
    pcre2_code_free(all);
    if (replaced < 0) return std::string(utf8);
    out.resize(length);
    return out;
}

RegexText RegexTextOf(std::string_view bytes) {
    return {static_cast<std::ptrdiff_t>(bytes.size()),
            [bytes](std::ptrdiff_t from, std::ptrdiff_t) { return bytes.data() + from; }};
}

struct RegexSearch::Engine {
    pcre2_match_data* data;
    pcre2_match_context* context = pcre2_match_context_create(nullptr);
    pcre2_jit_stack* stack = nullptr;

    explicit Engine(const pcre2_code* code) : data(pcre2_match_data_create_from_pattern(code, nullptr)) {
        pcre2_set_match_limit(context, kMatchLimit);
        pcre2_set_heap_limit(context, kHeapLimit);
        PCRE2_SIZE machineCode = 0;
        pcre2_pattern_info(code, PCRE2_INFO_JITSIZE, &machineCode);
        if (machineCode == 0) return;
        stack = pcre2_jit_stack_create(kStackFirst, kStackMost, nullptr);
        pcre2_jit_stack_assign(context, nullptr, stack);
    }
    ~Engine() {
        pcre2_jit_stack_free(stack);
        pcre2_match_context_free(context);
        pcre2_match_data_free(data);
    }
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
};

// What one call searches: matches that begin in [at, starts), with the text of [from, end) in sight.
struct RegexSearch::Piece {
    const char* bytes = nullptr;  // of `from`
    std::ptrdiff_t from = 0, end = 0, starts = 0;
    bool last = false;  // the scope ends here
    bool endOfLine = false;
};

RegexSearch::RegexSearch(RegexHandle code)
    : code_(std::move(code)), engine_(std::make_unique<Engine>(code_->compiled)) {}

RegexSearch::~RegexSearch() = default;

void RegexSearch::Begin(const RegexText& text, FindSpan scope, bool notEmptyHere, RegexGoesOn goesOn) {
    text_ = &text;
    scope_ = {std::clamp<std::ptrdiff_t>(scope.start, 0, text.length), std::min(scope.end, text.length)};
    goesOn_ = std::move(goesOn);
    at_ = scope_.start;
    notEmptyHere_ = notEmptyHere;
    ended_ = scope_.start > scope_.end;
    seen_ = 0;
    starts_ = text_->piece;
    slowStarts_ = 0;
    startsCost_ = false;
    groups_.clear();
}

RegexSearch::Piece RegexSearch::NextPiece() const {
    Piece piece;
    piece.from = std::max<std::ptrdiff_t>(0, at_ - code_->lookBehind);
    piece.end = std::max(at_ + text_->piece, seen_);
    piece.last = piece.end >= scope_.end;
    if (piece.last) piece.end = scope_.end;
    // A few bytes more show whether the end is inside a character or a line break, and whether a line ends there.
    const std::ptrdiff_t shown = std::min(piece.end + kLongestCharacter, text_->length);
    piece.bytes = text_->bytes(piece.from, shown);
    if (piece.bytes == nullptr) piece.bytes = "";  // of an empty text
    if (!piece.last) {
        piece.end = WholeAt(piece.bytes, piece.from, piece.end, at_, std::min(shown, scope_.end));
        piece.last = piece.end == scope_.end;
    }
    const char after = piece.end < shown ? piece.bytes[piece.end - piece.from] : '\n';
    piece.endOfLine = after == '\r' || after == '\n';
    piece.starts = at_ + starts_;
    if (piece.starts < piece.end)
        piece.starts = WholeAt(piece.bytes, piece.from, piece.starts, at_, piece.end);
    else
        piece.starts = piece.end;
    return piece;
}

int RegexSearch::MatchIn(const Piece& piece) {
    std::uint32_t bits = piece.last ? 0 : PCRE2_PARTIAL_HARD;
    if (piece.last && !piece.endOfLine) bits |= PCRE2_NOTEOL;
    if (notEmptyHere_) bits |= PCRE2_NOTEMPTY_ATSTART;
    // A match may begin at the end of the last piece only, because that of another is the start of the next one. Where the
    // scope ends within a line or before the next one, an empty match there belongs to what follows.
    const bool limited = !piece.last || piece.starts < piece.end || !piece.endOfLine;
    if (limited && piece.starts <= at_) return PCRE2_ERROR_NOMATCH;
    pcre2_set_offset_limit(engine_->context,
                           limited ? static_cast<PCRE2_SIZE>(piece.starts - 1 - piece.from) : PCRE2_UNSET);
    return pcre2_match(code_->compiled, reinterpret_cast<PCRE2_SPTR>(piece.bytes),
                       static_cast<PCRE2_SIZE>(piece.end - piece.from), static_cast<PCRE2_SIZE>(at_ - piece.from), bits,
                       engine_->data, engine_->context);
}

// Whether the match begins between CR and LF. PCRE2 goes on after both by itself, but not where the last start is limited.
bool RegexSearch::SplitsBreak(const Piece& piece) const {
    const auto start = static_cast<std::ptrdiff_t>(pcre2_get_startchar(engine_->data));
    return !code_->namesBreaks && piece.from + start > at_ && piece.from + start < piece.end &&
           piece.bytes[start - 1] == '\r' && piece.bytes[start] == '\n';
}

void RegexSearch::TakeMatch(const Piece& piece) {
    const PCRE2_SIZE* offsets = pcre2_get_ovector_pointer(engine_->data);
    groups_.assign(pcre2_get_ovector_count(engine_->data), std::nullopt);
    for (std::size_t i = 0; i < groups_.size(); ++i)
        if (offsets[2 * i] != PCRE2_UNSET)
            groups_[i] = FindSpan{piece.from + static_cast<std::ptrdiff_t>(offsets[2 * i]),
                                  piece.from + static_cast<std::ptrdiff_t>(offsets[2 * i + 1])};
    at_ = groups_[0]->end;
    notEmptyHere_ = true;
}

// Keeps a call short where each start of a match looks at much text. Where a call is slow because of one look at all of
// it, more starts cost nothing more.
void RegexSearch::Adapt(std::ptrdiff_t starts, double milliseconds) {
    if (milliseconds > kSlowCall) {
        const bool costly = slowStarts_ > 0 && starts >= 2 * slowStarts_ && milliseconds > 1.5 * slowMs_;
        startsCost_ = startsCost_ || costly;
        slowStarts_ = starts;
        slowMs_ = milliseconds;
    }
    if (milliseconds > kSlowCall && startsCost_)
        starts_ = std::max<std::ptrdiff_t>(1, starts / 4);
    else if (milliseconds > kSlowCall || milliseconds < kFastCall)
        starts_ = std::min<std::ptrdiff_t>(starts_ * 4, text_->length + 1);
}

RegexResult RegexSearch::Next() {
    const auto ends = [this](RegexResult result) {
        ended_ = true;
        groups_.clear();
        return result;
    };
    while (!ended_) {
        if (goesOn_ != nullptr && !goesOn_(at_)) return ends(RegexResult::Stopped);
        const Piece piece = NextPiece();
        const double began = NowMs();
        const int found = MatchIn(piece);
        if (found > 0 && SplitsBreak(piece)) {
            at_ = piece.from + static_cast<std::ptrdiff_t>(pcre2_get_startchar(engine_->data)) + 1;
            notEmptyHere_ = false;
            continue;
        }
        if (found > 0) {
            TakeMatch(piece);
            return RegexResult::Match;
        }
        if (found == PCRE2_ERROR_PARTIAL) {  // a match may begin here that needs more text
            const auto start = piece.from + static_cast<std::ptrdiff_t>(pcre2_get_startchar(engine_->data));
            if (start > at_) notEmptyHere_ = false;
            at_ = std::max(at_, start);
            seen_ = piece.end + std::max({text_->piece, piece.end - at_, 2 * kLongestCharacter});
            starts_ = std::min(starts_, kFewStarts);
            continue;
        }
        if (found != PCRE2_ERROR_NOMATCH) return ends(RegexResult::TooComplex);
        if (piece.last && piece.starts == piece.end) break;
        Adapt(piece.starts - at_, NowMs() - began);
        if (piece.starts > at_) notEmptyHere_ = false;
        at_ = piece.starts;
    }
    return ends(RegexResult::NoMatch);
}

std::optional<FindSpan> RegexSearch::Group(int number) const {
    const auto index = static_cast<std::size_t>(number);
    return index < groups_.size() ? groups_[index] : std::nullopt;
}

std::string RegexSearch::GroupText(int number) const {
    const std::optional<FindSpan> span = Group(number);
    if (!span || span->end <= span->start) return {};
    return {text_->bytes(span->start, span->end), static_cast<std::size_t>(span->end - span->start)};
}
