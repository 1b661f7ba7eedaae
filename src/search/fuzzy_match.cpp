// Fuzzy matching. Pure; any thread.
#include "search/fuzzy_match.h"

#include "base/path.h"

#include <algorithm>
#include <bit>

namespace {

// The scores. A letter in the middle of the name that follows another one gives more than a letter of a folder, a run
// more than humps, and humps more than letters anywhere.
constexpr int kLetter = 16;
constexpr int kRightCase = 1;
constexpr int kInName = 6;
constexpr int kNameStart = 18;
constexpr int kPartStart = 10;  // after a separator of folders, or at the start of the text
constexpr int kWordStart = 8;   // after a blank or a sign, or a capital after a small letter
constexpr int kDigitStart = 6;
constexpr int kWordEnd = 3;  // of the last letter
constexpr int kFollows = 9;
constexpr int kGap = 4;  // of one character; each further one takes 1
constexpr int kGapMost = 7;
constexpr int kGapAtOnce = kGap - 2;  // what a gap takes beyond the distance of its letters

constexpr int kNone = -1'000'000;  // no way leads here

wchar_t FoldLetter(wchar_t letter) {
    if (letter >= L'A' && letter <= L'Z') return static_cast<wchar_t>(letter - L'A' + L'a');
    if (static_cast<std::uint32_t>(letter) < 128) return letter == L'/' ? L'\\' : letter;
    return PathFoldedCharacter(letter);
}

enum class LetterKind : std::uint8_t { Sign, Separator, Small, Capital, Digit };

constexpr LetterKind KindOfAscii(int letter) {
    if (letter >= 'a' && letter <= 'z') return LetterKind::Small;
    if (letter >= 'A' && letter <= 'Z') return LetterKind::Capital;
    if (letter >= '0' && letter <= '9') return LetterKind::Digit;
    return letter == '\\' || letter == '/' ? LetterKind::Separator : LetterKind::Sign;
}

constexpr auto kAsciiKinds = [] {
    std::array<LetterKind, 128> kinds = {};
    for (int letter = 0; letter < 128; ++letter) kinds[static_cast<std::size_t>(letter)] = KindOfAscii(letter);
    return kinds;
}();

LetterKind KindOfLetter(wchar_t letter) {
    if (static_cast<std::uint32_t>(letter) < 128) return kAsciiKinds[static_cast<std::size_t>(letter)];
    return PathFoldedCharacter(letter) != letter ? LetterKind::Capital : LetterKind::Small;
}

bool IsSign(LetterKind kind) { return kind == LetterKind::Sign || kind == LetterKind::Separator; }

// What the place itself gives: the start of a name, a part, a word or a hump.
int StartScore(const FuzzyText& text, std::size_t at) {
    if (at == text.nameStart) return kNameStart;
    if (at == 0) return kPartStart;
    const LetterKind before = KindOfLetter(text.text[at - 1]);
    if (before == LetterKind::Separator) return kPartStart;
    const LetterKind kind = KindOfLetter(text.text[at]);
    if (IsSign(kind)) return 0;
    if (before == LetterKind::Sign) return kWordStart;
    if (kind == LetterKind::Digit) return before != LetterKind::Digit ? kDigitStart : 0;
    if (kind != LetterKind::Capital) return 0;
    if (before != LetterKind::Capital) return kWordStart;
    // The last capital of several begins a word: the P of "XMLParser".
    const bool small = at + 1 < text.text.size() && KindOfLetter(text.text[at + 1]) == LetterKind::Small;
    return small ? kWordStart : 0;
}

// What any letter gives at the place.
int PlaceScore(const FuzzyText& text, std::size_t at) {
    return kLetter + StartScore(text, at) + (at >= text.nameStart ? kInName : 0);
}

bool IsWordEnd(const FuzzyText& text, std::size_t at) {
    return at + 1 >= text.text.size() || IsSign(KindOfLetter(text.text[at + 1])) || StartScore(text, at + 1) > 0;
}

// The letters of the word that a character of a text equals, as bits.
std::uint64_t LettersEqual(const FuzzyWord& word, wchar_t character) {
    if (static_cast<std::uint32_t>(character) < 128) return word.ascii[static_cast<std::size_t>(character)];
    std::uint64_t equal = 0;
    if (word.others == 0) return 0;
    const wchar_t folded = PathFoldedCharacter(character);
    for (std::size_t i = 0; i < word.folded.size(); ++i)
        if (word.folded[i] == folded) equal |= std::uint64_t{1} << i;
    return equal;
}

// The best ways so far that end with one letter of the word. Scores, each with the place where the way ends. Without
// initial values, because 64 of them would be set for each text.
struct LetterWays {
    int last;  // ends at the last place of the letter
    int lead;  // the best score plus place: counts for gaps whose cost grows with their length
    int far;   // the best score: counts for gaps that cost the most
    std::uint32_t lastAt, leadAt, farAt;
};
constexpr LetterWays kNoWays = {kNone, kNone, kNone, 0, 0, 0};

void NoteWay(LetterWays& ways, int score, std::uint32_t at) {
    const int lead = score + static_cast<int>(at);
    ways.last = score;
    ways.lastAt = at;
    if (lead > ways.lead) ways.lead = lead, ways.leadAt = at;
    if (score > ways.far) ways.far = score, ways.farAt = at;
}

struct Step {
    int score = 0;
    std::uint32_t from = 0;
};

// The best way to come to a place from an earlier letter that has been found.
Step BestStep(const LetterWays& ways, std::uint32_t at) {
    Step best = {ways.far - kGapMost, ways.farAt};
    if (const int near = ways.lead - static_cast<int>(at) - kGapAtOnce; near > best.score) best = {near, ways.leadAt};
    if (ways.lastAt + 1 == at && ways.last + kFollows > best.score) best = {ways.last + kFollows, ways.lastAt};
    return best;
}

// For each letter at each place, the place before it; only for showing a match.
struct Trail {
    std::vector<std::uint32_t> from;  // [letter * length of the text + place]
};

struct Way {
    int score = kNone;
    std::uint32_t end = 0;
};

// A character of the text that equals letters of the word.
struct Spot {
    std::uint32_t at;
    std::uint64_t equal;
};

// The search of the best way through a word.
struct WaySearch {
    const FuzzyWord& word;
    const FuzzyText& text;
    Trail* trail;             // may be null
    std::size_t reached = 0;  // letters that have been found in their order
    Way best;
    std::array<LetterWays, kFuzzyMaxLetters> ways;  // each is set when its letter is reached

    WaySearch(const FuzzyWord& ofWord, const FuzzyText& inText, Trail* keep)
        : word(ofWord), text(inText), trail(keep) {}

    void Visit(Spot spot) {
        const std::size_t count = word.letters.size();
        const int place = PlaceScore(text, spot.at);
        // From the last letter to the first, so that a character is not used for two letters.
        while (spot.equal != 0) {
            const auto i = static_cast<std::size_t>(std::bit_width(spot.equal)) - 1;
            spot.equal ^= std::uint64_t{1} << i;
            if (i > reached) continue;
            const Step step = i == 0 ? Step{} : BestStep(ways[i - 1], spot.at);
            const bool last = i + 1 == count;
            int score = step.score + place;
            if (text.text[spot.at] == word.letters[i]) score += kRightCase;
            if (last && IsWordEnd(text, spot.at)) score += kWordEnd;
            if (i == reached) {
                ways[i] = kNoWays;
                ++reached;
            }
            NoteWay(ways[i], score, spot.at);
            if (trail != nullptr) trail->from[i * text.text.size() + spot.at] = step.from;
            if (last && score > best.score) best = {score, spot.at};
        }
    }
};

// The best way through the whole word. Each character of the text is looked at once; the ways are only followed when all
// letters occur in their order.
Way BestWay(const FuzzyWord& word, const FuzzyText& text, Trail* trail) {
    std::array<Spot, 128> spots;
    std::size_t count = 0;
    std::uint64_t wanted = 1;  // the next letter, as a bit
    const std::uint64_t end = word.letters.size() < 64 ? std::uint64_t{1} << word.letters.size() : 0;
    WaySearch search(word, text, trail);
    const auto visitAll = [&] {
        for (std::size_t i = 0; i < count; ++i) search.Visit(spots[i]);
        count = 0;
    };
    const auto length = static_cast<std::uint32_t>(text.text.size());
    for (std::uint32_t at = 0; at < length; ++at) {
        // Without branches, which the processor could not predict.
        const std::uint64_t equal = LettersEqual(word, text.text[at]);
        spots[count] = {at, equal};
        count += equal != 0 ? 1 : 0;
        wanted <<= (equal & wanted) != 0 ? 1 : 0;
        if (count == spots.size()) visitAll();
    }
    if (wanted != end) return {};
    visitAll();
    return search.best;
}

FuzzyWord WordOf(std::wstring_view typed) {
    FuzzyWord word;
    word.ascii.fill(0);
    for (const wchar_t letter : typed) {
        const std::uint64_t bit = std::uint64_t{1} << word.letters.size();
        word.letters += letter == L'/' ? L'\\' : letter;
        word.folded += FoldLetter(letter);
        if (static_cast<std::uint32_t>(word.folded.back()) >= 128) word.others |= bit;
    }
    for (std::size_t c = 0; c < word.ascii.size(); ++c)
        for (std::size_t i = 0; i < word.folded.size(); ++i)
            if (FoldLetter(static_cast<wchar_t>(c)) == word.folded[i]) word.ascii[c] |= std::uint64_t{1} << i;
    return word;
}

}  // namespace

FuzzyQuery FuzzyQueryOf(std::wstring_view typed) {
    FuzzyQuery query;
    std::size_t at = 0;
    while (query.words.size() < kFuzzyMaxWords) {
        const std::size_t start = typed.find_first_not_of(L" \t", at);
        if (start == std::wstring_view::npos) break;
        at = std::min(typed.find_first_of(L" \t", start), typed.size());
        at = std::min(at, start + kFuzzyMaxLetters);
        query.words.push_back(WordOf(typed.substr(start, at - start)));
        query.mask |= FuzzyMask(query.words.back().folded);
    }
    return query;
}

std::uint64_t FuzzyMask(std::wstring_view text) {
    constexpr int kDigits = 26, kSigns = 36, kOthers = 41, kOtherBits = 64 - kOthers;
    std::uint64_t mask = 0;
    for (const wchar_t letter : text) {
        const wchar_t folded = FoldLetter(letter);
        int bit = 0;
        if (folded >= L'a' && folded <= L'z')
            bit = folded - L'a';
        else if (folded >= L'0' && folded <= L'9')
            bit = kDigits + (folded - L'0');
        else if (const std::size_t sign = std::wstring_view(L"\\_-. ").find(folded); sign != std::wstring_view::npos)
            bit = kSigns + static_cast<int>(sign);
        else
            bit = kOthers + static_cast<int>(static_cast<std::uint32_t>(folded) % kOtherBits);
        mask |= std::uint64_t{1} << bit;
    }
    return mask;
}

int FuzzyLetterScore(const FuzzyText& text, std::size_t at, wchar_t letter, bool last) {
    int score = PlaceScore(text, at);
    if (text.text[at] == letter) score += kRightCase;
    if (last && IsWordEnd(text, at)) score += kWordEnd;
    return score;
}

int FuzzyStepScore(std::size_t from, std::size_t to) {
    if (to == from + 1) return kFollows;
    return -std::min(kGapAtOnce + static_cast<int>(to - from), kGapMost);
}

std::optional<int> FuzzyScore(const FuzzyQuery& query, const FuzzyText& text) {
    int score = 0;
    for (const FuzzyWord& word : query.words) {
        const Way best = BestWay(word, text, nullptr);
        if (best.score == kNone) return std::nullopt;
        score += best.score;
    }
    return score;
}

std::vector<std::size_t> FuzzyPositions(const FuzzyQuery& query, const FuzzyText& text) {
    std::vector<std::size_t> positions;
    for (const FuzzyWord& word : query.words) {
        Trail trail{std::vector<std::uint32_t>(word.folded.size() * text.text.size())};
        const Way best = BestWay(word, text, &trail);
        if (best.score == kNone) return {};
        std::uint32_t at = best.end;
        for (std::size_t i = word.folded.size(); i-- > 0; at = trail.from[i * text.text.size() + at])
            positions.push_back(at);
    }
    std::ranges::sort(positions);
    positions.erase(std::unique(positions.begin(), positions.end()), positions.end());
    return positions;
}
