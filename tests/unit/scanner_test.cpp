// The scanner of BASIC, the words of the dialects, and the blocks.
#include "language/scanner.h"

#include "language/block_words.h"
#include "settings/compiler_id.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// Each token as a letter for its kind and its text, in lower case when it begins no statement: "W(IF) w(a) w(THEN)".
std::string Shown(const LineReader& reader) {
    std::string shown;
    for (const Token& token : reader.tokens) {
        const char letter = "WLNDSCEMOPTJX"[static_cast<int>(token.kind)];
        if (!shown.empty()) shown += ' ';
        shown += token.Is(kTokenStarts) ? letter : static_cast<char>(letter + 32);
        if (token.Is(kTokenOpen)) shown += '?';
        if (token.Is(kTokenName)) shown += '.';
        if (token.Is(kTokenAssembly)) shown += '!';
        shown.append("(").append(TokenText(reader.line, token)).append(")");
        if (token.suffix != 0) shown += std::to_string(token.suffix);
    }
    return shown;
}

std::string ShownText(std::string_view text, std::uint32_t compiler = kDefaultCompiler) {
    LineReader reader{.text = text, .dialect = &DialectOf(compiler)};
    std::string shown;
    while (ReadLine(reader)) shown.append(shown.empty() ? "" : " | ").append(Shown(reader));
    return shown;
}

TEST(Scanner, TokensOfEveryKind) {
    const struct {
        const char *text, *tokens;
    } cases[] = {
        {"", ""},
        {"10 IF a% >= &HFF THEN b$$ = \"x\"\"y\": c",
         "n(10) W(IF) w(a%)1 o(>=) d(&HFF) w(THEN) w(b$$)2 o(=) "
         "s(\"x\"\"y\") t(:) W(c)"},
        {"again: x = .5 + 1.5E-3# - 1E+2 ' note",
         "L(again) t(:) W(x) o(=) d(.5) o(+) d(1.5E-3#)1 o(-) d(1E+2) c(' note)"},
        {"else: x : rem it's", "W(else) t(:) W(x) t(:) c(rem it's)"},
        {"again : ' only", "L(again) t(:) c(' only)"},
        {"%A = $B + $$C & a&b", "E(%A) o(=) e($B) o(+) e($$C) o(&) w(a) o(&) w(b)"},
        {"#IF %A\n $INCLUDE \"a\"\n$a = \"b\"\nPRINT #1, x#",
         "M(#IF) e(%A) | M($INCLUDE) s(\"a\") | E($a) o(=) s(\"b\") | "
         "W(PRINT) p(#) d(1) p(,) w(x#)1"},
        {"a.type = @if + .end", "W(a) p(.) w.(type) o(=) p(@) w.(if) o(+) p(.) w.(end)"},
        {"DATA if, it's: next", "W(DATA) x(if, it's: next)"},
        {"s = \"open: ' _\nx", "W(s) o(=) s?(\"open: ' _) | W(x)"},
        {"a = 1 _ ' more\n : b _\n\nc _ d", "W(a) o(=) d(1) j(_) c(' more) | t(:) W(b) j(_) |  | W(c) p(_) w(d)"},
        {"x _\n10 _\n! y _\nasm", "W(x) j(_) | d(10) j(_) | p(!) w(y) j(_) | w(asm)"},
        {"! mov eax, &HFF ; c\nASM l: push ebx\nasmx = 1",
         "P!(!) W!(mov) w!(eax) p!(,) d!(&HFF) c!(; c) | W(ASM) L!(l) "
         "p!(:) W!(push) w!(ebx) | W(asmx) o(=) d(1)"},
        {"Asm ' go\n if: \"a\" 0FFh\nEND  asm: x",
         "W(Asm) c(' go) | L!(if) p!(:) S!(\"a\") d!(0FFh) | W(END) w(asm) t(:) W(x)"},
        {"\xC3\xA4\x01&&\r\rb", "W(\xC3\xA4) p(\x01) o(&) o(&) |  | W(b)"},
    };
    for (const auto& test : cases) EXPECT_EQ(ShownText(test.text), test.tokens) << test.text;
    const char* block = "a = 1 /' x\nIF '\n'/ b '/ c";
    EXPECT_EQ(ShownText(block, kCompilerKvxc64), "W(a) o(=) d(1) c?(/' x) | c?(IF ') | c('/) W(b) c('/ c)");
    EXPECT_EQ(ShownText(block, kCompilerKvxa64), "W(a) o(=) d(1) o(/) c(' x) | W(IF) c(') | c('/ b '/ c)");
}

TEST(Scanner, WordsOfTheDialects) {
    EXPECT_EQ(LookUpWord("eNdIf", AnyDialect()).word, BasicWord::EndIf);
    EXPECT_EQ(LookUpWord("Mod", AnyDialect()).kind, WordClass::Operator);
    EXPECT_EQ(LookUpWord("if", AnyDialect()).kind, WordClass::Statement) << "not that of #IF";
    for (const char* name : {"i", "els", "elsee", "i\x66\xC3", "bloatt", "aVeryLongNameIndeed", ""})
        EXPECT_EQ(LookUpWord(name, AnyDialect()).kind, WordClass::None) << name;
    EXPECT_EQ(LookUpWord("foreach", DialectOf(kCompilerKvxa64)).word, BasicWord::ForEach);
    EXPECT_EQ(LookUpWord("foreach", DialectOf(kCompilerKeldorBasic)).kind, WordClass::None);
}

// --- The state of a line is all that the lines below must know.

// The lines of a text as a pane keeps them, with their breaks, and the state before each one and after the last.
struct ScannedText {
    std::vector<std::string> lines;
    std::vector<ScanState> states;
    bool operator==(const ScannedText&) const = default;
};

ScannedText ScanWhole(const std::string& text, const Dialect& dialect, std::string* shown) {
    ScannedText scanned;
    LineReader reader{.text = text, .dialect = &dialect};
    while (ReadLine(reader)) {
        scanned.lines.push_back(std::string(reader.line).append(reader.ending));
        scanned.states.push_back(reader.before);
        *shown += Shown(reader) + "\n";
    }
    scanned.states.push_back(reader.state);
    return scanned;
}

// Puts lines in place of others, and scans from there on until the states are those that were kept.
void ReplaceLines(ScannedText& kept, std::size_t first, std::size_t removed, const std::vector<std::string>& lines,
                  const Dialect& dialect) {
    const auto at = static_cast<std::ptrdiff_t>(first);
    const auto to = static_cast<std::ptrdiff_t>(first + removed);
    const ScanState start = kept.states[first];
    kept.lines.erase(kept.lines.begin() + at, kept.lines.begin() + to);
    kept.lines.insert(kept.lines.begin() + at, lines.begin(), lines.end());
    kept.states.erase(kept.states.begin() + at, kept.states.begin() + to);
    kept.states.insert(kept.states.begin() + at, lines.size(), 99);
    ScanState state = start;
    std::vector<Token> tokens;
    for (std::size_t i = first; i < first + lines.size() || kept.states[i] != state; ++i) {
        kept.states[i] = state;
        if (i == kept.lines.size()) break;
        state = ScanLine(kept.lines[i], 0, state, dialect, tokens).state;
    }
}

TEST(Scanner, AfterEditsEqualsTheWhole) {
    const char* const pieces[] = {"asm",  "end asm", "\n",  "\n", "\r\n", "\r",   " _",    "'",
                                  "/'",   "'/",      "\"",  ":",  "rem ", "if",   "x = 1", " ",
                                  "data", "! mov",   "10 ", "&h", "#if",  "lbl:", ".",     "\xC3\xA4"};
    unsigned seed = 7;
    const auto random = [&seed](std::size_t below) {
        seed = seed * 1664525u + 1013904223u;
        return (seed >> 8) % below;
    };
    for (const std::uint32_t compiler : {kCompilerKvxc64, kCompilerKeldorBasic}) {
        const Dialect& dialect = DialectOf(compiler);
        ScannedText kept{{}, {0}};
        for (int round = 0; round < 1500; ++round) {
            std::string added, shown, lineByLine;
            for (std::size_t i = 0, n = random(6); i < n; ++i) added += pieces[random(std::size(pieces))];
            if (!added.empty()) added += random(2) == 0 ? "\n" : "\r\n";
            const std::size_t first = random(kept.lines.size() + 1);
            const std::size_t removed = random(std::min<std::size_t>(kept.lines.size() - first, 3) + 1);
            ReplaceLines(kept, first, removed, ScanWhole(added, dialect, &shown).lines, dialect);
            std::string text;
            for (const std::string& line : kept.lines) text += line;
            shown.clear();
            const ScannedText whole = ScanWhole(text, dialect, &shown);
            if (whole.lines.size() != kept.lines.size()) {  // a CR and the LF of the next piece became one break
                kept = whole;
                continue;
            }
            ASSERT_EQ(whole, kept) << round << "\n" << text;
            for (std::size_t i = 0; i < kept.lines.size(); ++i) {
                LineReader reader{.text = kept.lines[i], .dialect = &dialect, .state = kept.states[i]};
                ReadLine(reader);
                lineByLine += Shown(reader) + "\n";
            }
            ASSERT_EQ(lineByLine, shown) << round;
        }
    }
}

// --- Blocks

// The words of the block at "|", joined by commas; "?" when it is not closed.
std::string BlockWordsShown(std::string text) {
    const std::size_t place = text.find('|');
    text.erase(place, 1);
    BlockTable table;
    const Dialect& dialect = AnyDialect();
    LineReader reader{.text = text, .dialect = &dialect};
    BlockLine blocks;
    std::vector<std::pair<std::size_t, LineState>> lines;  // start and state of each
    BlockWords own;
    for (LineState state = 0; ReadLine(reader);) {
        lines.emplace_back(reader.start, state);
        if (place >= reader.start && place <= reader.start + reader.line.size())
            own = BlockWordsAt(BlockWordsOfLine(table, dialect, reader.line, state), place - reader.start);
        state = ScanBlocks(table, reader.line, reader.tokens, state, reader.state, dialect, blocks);
    }
    if (own.id == 0) return "none";
    std::size_t first = lines.size();
    while (first-- > 0)
        if (lines[first].first <= place &&
            (own.kind == BlockEvent::Kind::Open || !IsBlockOpen(table, lines[first].second, own.id)))
            break;
    const BlockSearch found =
        FindBlockWords(table, dialect, std::string_view(text).substr(lines[first].first), lines[first].second, own.id);
    std::string shown;
    for (const BlockWords& words : found.words)
        shown.append(shown.empty() ? "" : ",")
            .append(text.substr(lines[first].first + words.start, words.end - words.start));
    return shown + (found.closed ? "" : "?");
}

TEST(Blocks, TheWordsOfABlock) {
    const struct {
        const char *text, *words;
    } cases[] = {
        {"if a then\n if b then\n else\n end if\nel|se\nend if", "if,else,end if"},
        {"if a then\n|if b then\nelse\nend if\nelse\nend if", "if,else,end if"},
        {"if a then b = 1 els|e c", "none"},
        {"select case a\ncase 1\nx\ncase| else\nend select", "select,case,case,end select"},
        {"static sub| a\nif b then\nend sub", "sub,end sub"},
        {"for i = 1 to 2\nfor j = 1 to 2\nnext j, i|", "none"},
        {"fo|r i = 1 to 2\nfor j = 1 to 2\nnext j, i", "for,next j,"},
        {"do\nloop: d|o\nx\nloop", "do,loop"},
        {"#if a\n#if b\n#endif\n#else\n#end|if", "#if,#else,#endif"},
        {"asm|\nend sub\nend asm", "asm,end asm"},
        {"sub| a\nsub b\nend sub", "sub?"},
        {"sub a\nsub b\nsub c\nend sub|", "sub,end sub"},
        {"type a\nunion\ntype\ntype as long\nend type\nend union\nend t|ype", "type,end type"},
        {"x\nend if|", "none"},
        {"s = \"if| a then\"", "none"},
    };
    for (const auto& test : cases) EXPECT_EQ(BlockWordsShown(test.text), test.words) << test.text;
}

// Whatever the text: the states are those of a scan of the whole, and the tables stay small.
TEST(Blocks, HostileNestingStaysBounded) {
    std::string deep;
    for (int i = 0; i < 50000; ++i) deep += i % 2 == 0 ? "FOR i = 1 TO 2\n#IF a\n" : "SELECT CASE a\nCASE 1\n";
    BlockTable table;
    LineReader reader{.text = deep, .dialect = &AnyDialect()};
    BlockLine blocks;
    LineState state = 0;
    while (ReadLine(reader))
        state = ScanBlocks(table, reader.line, reader.tokens, state, reader.state, AnyDialect(), blocks);
    EXPECT_LE(DepthOf(table, state), 1000);
    EXPECT_LT(table.sets.size(), std::size_t{1} << 18);
}

}  // namespace
