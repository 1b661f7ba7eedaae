// Themes, lexer choice, inline assembly, the formatter.
#include "language/format.h"
#include "language/format_range.h"
#include "language/inline_regions.h"
#include "language/lexer_table.h"
#include "settings/compilers.h"
#include "support/dialect_sources.h"
#include "support/golden_file.h"
#include "support/token_stream.h"
#include "ui/severity_sign.h"
#include "ui/theme_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

// Hue of a colour that is not grey, 0..6.
double Hue(Rgb rgb) {
    const double r = static_cast<double>(rgb >> 16 & 0xFF), g = static_cast<double>(rgb >> 8 & 0xFF),
                 b = static_cast<double>(rgb & 0xFF);
    const double most = std::max({r, g, b}), range = most - std::min({r, g, b});
    if (most == r) return std::fmod((g - b) / range + 6, 6);
    return most == g ? (b - r) / range + 2 : (r - g) / range + 4;
}

TEST(Theme, AColourIsChangedUntilItCanBeReadAndKeepsItsHue) {
    for (const bool dark : {true, false}) {
        const Rgb back = ThemeChromePalette(0, dark).paneBack;
        int changed = 0;
        for (Rgb rgb = 0; rgb < 18 * 18 * 18; ++rgb) {
            const Rgb r = rgb / 324 * 15, g = rgb / 18 % 18 * 15, b = rgb % 18 * 15;
            const Rgb colour = r << 16 | g << 8 | b;
            const Rgb shown = ThemeReadableOn(colour, back);
            ASSERT_GE(ThemeContrast(shown, back), kReadableContrast) << std::hex << colour << " as " << shown;
            if (ThemeContrast(colour, back) >= kReadableContrast) {
                ASSERT_EQ(shown, colour) << "can be read as it is";
                continue;
            }
            ++changed;
            ASSERT_LT(ThemeContrast(shown, back), 4.8) << std::hex << colour << ": no more than is needed, " << shown;
            if (std::max({r, g, b}) - std::min({r, g, b}) < 30) continue;  // nearly grey
            const double apart = std::abs(Hue(colour) - Hue(shown));
            ASSERT_LT(std::min(apart, 6 - apart), 0.15) << std::hex << colour << " as " << shown;
        }
        EXPECT_GT(changed, 500) << dark;
    }
}

TEST(Theme, TextsOfDiagnosticsCanBeReadInEveryStyle) {
    for (int style = 0; style < static_cast<int>(EditorStyles().size()); ++style)
        for (const bool dark : {false, true})
            for (const bool error : {false, true}) {
                const EditorPalette& palette = ThemePalette(style, dark);
                const Rgb shown = SeverityColour(palette, ThemeChromePalette(style, dark), error);
                for (const Rgb back : {palette.back, palette.caretLine})
                    EXPECT_GE(ThemeContrast(shown, back), kReadableContrast) << style << dark << error;
            }
}

TEST(Lexer, IsChosenByTheExtension) {
    const struct {
        const wchar_t* path;
        Language language;
    } cases[] = {
        {L"Untitled", Language::Basic},    {L"C:\\v1.c\\README", Language::Basic}, {L"C:\\src\\A.BAS", Language::Basic},
        {L"x.kxc", Language::Basic},       {L"C:\\src\\x.C", Language::C},         {L"C:\\x.bas.h", Language::C},
        {L"boot.asm", Language::Assembly}, {L"boot.S", Language::GnuAssembly},     {L"notes.txt", Language::None},
        {L"C:\\src\\x.", Language::None},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(LexerFromExtension(test.path), test.language)
            << std::string(test.path, test.path + wcslen(test.path));
    }
    EXPECT_EQ(LexerFromExtension(L""), Language::Basic);
    EXPECT_EQ(LexerOf(Language::None).name, nullptr);
}

// The words of each class, as they are shown in completion and coloured.
std::string AllWords() {
    constexpr std::pair<WordClass, const char*> kClasses[] = {
        {WordClass::Statement, "statements"}, {WordClass::Type, "types"},  {WordClass::Operator, "operators"},
        {WordClass::Function, "functions"},   {WordClass::Entry, "entry"}, {WordClass::Preprocessor, "preprocessor"}};
    std::string text;
    for (const CompilerProfile& compiler : g_compilers) {
        const std::wstring name = compiler.name;
        for (const auto& [kind, title] : kClasses)
            text += std::string(name.begin(), name.end()) + " " + title + ": " + WordsOf(kind, DialectOf(compiler.id)) +
                    "\n";
    }
    for (const Language language : {Language::C, Language::Assembly})
        for (int set = 0; set < kKeywordSets; ++set)
            if (const std::string words = LexerKeywords(language, set); !words.empty())
                text += (language == Language::C ? "C " : "assembly ") + std::to_string(set) + ": " + words + "\n";
    return text;
}

// The golden file pins the class of each word, because a word in another class gets another colour.
TEST(Lexer, WordsOfEveryLanguageAndDialect) {
    const std::string text = AllWords();
    ExpectGolden("keywords.txt", text);
    std::istringstream lines(text);
    std::map<std::string, std::set<std::string>> known;  // by compiler or language
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line.substr(line.find(':') + 1));
        std::set<std::string>& seen = known[line.substr(0, line.find(' '))];
        for (std::string word; words >> word;) {
            if (line.find("preprocessor") != std::string::npos) continue;  // "#IF" beside "IF"
            EXPECT_TRUE(seen.insert(word).second) << word << " twice: " << line.substr(0, 20);
            if (line[0] == 'K')
                EXPECT_EQ(word.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789"), word.npos) << word;
        }
    }
}

// The start of a block may be far above; the answer is that of a reader of the whole text. Each line has 8 bytes.
TEST(InlineAssembly, IsKnownWithoutReadingFromTheTop) {
    std::string text;
    std::vector<bool> inside;
    for (int i = 0; i < 100000; ++i) {
        inside.push_back(i % 40000 > 5 && i % 40000 <= 39000);
        text += i % 40000 == 5 ? "ASM    \n" : i % 40000 == 39000 ? "end asm\n" : "x = 123\n";
    }
    std::ptrdiff_t read = 0;
    const AssemblySource source = {
        .text = [&](std::ptrdiff_t start,
                    std::ptrdiff_t end) { return read += end - start, text.substr(start, end - start); },
        .stretchBefore =
            [](std::ptrdiff_t end) { return std::max<std::ptrdiff_t>(end - kAssemblyStretch, 0) / 8 * 8; }};
    AssemblyAbove above;
    unsigned state = 1;
    std::size_t line = 0;
    for (int i = 0; i < 400; ++i) {
        state = state * 1664525u + 1013904223u;
        line = i % 4 == 0 ? (state >> 8) % inside.size() : std::clamp<std::size_t>(line + i % 3 * 40, 40, 99999) - 40;
        if (i % 7 == 0) AssemblyForget(above, (state >> 4) % inside.size() * 8);
        ASSERT_EQ(AssemblySearch(above, line * 8, source, 100), inside[line]) << i << ": line " << line;
    }
    read = 0;
    EXPECT_EQ(AssemblySearch(above, line * 8, source, 0), inside[line]);
    EXPECT_EQ(read, 0) << "the same place again";
    above = {};
    EXPECT_EQ(AssemblySearch(above, 38000 * 8, source, 1), std::nullopt) << "not all at once";
    EXPECT_EQ(AssemblySearch(above, 38000 * 8, source, 1), true);
}

// As they are typed: what the formatter leaves alone stays.
TEST(Format, CapitalsOfOneLine) {
    for (const char* line : {"! and eax, not", "asm and eax, 1", "x = %name + $end", "a.type = \"if"})
        EXPECT_EQ(KeywordsInCapitals(line, 0, AnyDialect()), line);
    EXPECT_EQ(KeywordsInCapitals(" and eax, 1", kScanAssembly, AnyDialect()), " and eax, 1");
    EXPECT_EQ(KeywordsInCapitals("end asm ' and", kScanAssembly, AnyDialect()), "END ASM ' and");
    EXPECT_EQ(KeywordsInCapitals("  data if: and if", 0, AnyDialect()), "  DATA if: and if");
    EXPECT_EQ(KeywordsInCapitals("declare sub Print(x as long)", 0, AnyDialect()), "DECLARE SUB Print(x AS LONG)");
    EXPECT_EQ(KeywordsInCapitals("threadsafe sub a: endsub", 0, AnyDialect()), "THREADSAFE SUB a: ENDSUB");
}

// The cases that a text file cannot hold; the others are in tests/golden/format_before.bas.
TEST(Format, LineEndsAndBlanksAtThem) {
    const struct {
        const char *name, *in, *out;
    } cases[] = {
        {"trailing blanks go, those of an open string stay", "x = 1  \ny = \"open  \n", "x = 1\ny = \"open  \n"},
        {"line ends stay", "do\r\nx\rloop\ny", "DO\r\n    x\rLOOP\ny"},
        {"empty", "", ""},
        {"blank lines", "sub a\n   \nend sub\n", "SUB a\n\nEND SUB\n"},
        {"names in a TYPE", "type a\nnext as a ptr\nname(3) as string*20\nend type\nfunction=1",
         "TYPE a\n    next AS a PTR\n    name(3) AS STRING * 20\nEND TYPE\nFUNCTION = 1"},
        {"names in an ENUM", "enum b\nstop\nnew=2\nend enum", "ENUM b\n    stop\n    new = 2\nEND ENUM"},
    };
    for (const auto& test : cases) {
        const std::string once = FormatBasicSource(test.in, {});
        EXPECT_EQ(once, test.out) << test.name;
        EXPECT_EQ(FormatBasicSource(once, {}), once) << test.name << ": a second time";
    }
}

TEST(Format, OwnProceduresKeepTheirSpelling) {
    const char* const source =
        "print 1\nPrint 2\ncall Print(3): left$(a, 1)\n' sub Beep\nbeep\nstatic  Sub  Print(x as long)\nend sub\n"
        "function = 1\nEnd Function\nDeclare Function Left$(s$) as string\nproperty get Open() as long\nopen x\n";
    const std::string once = FormatBasicSource(source, {});
    EXPECT_EQ(
        once,
        "print 1\nPrint 2\nCALL Print(3): left$(a, 1)\n' sub Beep\nBEEP\nSTATIC  SUB  Print(x AS LONG)\nEND SUB\n"
        "FUNCTION = 1\nEND FUNCTION\nDECLARE FUNCTION Left$(s$) AS STRING\nPROPERTY GET Open() AS LONG\n    open x\n");
    EXPECT_EQ(FormatBasicSource(once, {}), once);
    EXPECT_EQ(TokenStream(once, AnyDialect()), TokenStream(source, AnyDialect()));
    EXPECT_EQ(FormatBasicSource("sub if\nif a then\nend if\n", {}).find("    IF a THEN"), 7U) << "blocks stay blocks";
}

// Formats each case of the file by itself, so that a block left open by one does not reach the next.
TEST(Format, EveryBlockAndRule) {
    const std::string mark = "'=== ";
    std::string text = GoldenText("format_before.bas");
    std::erase(text, '\r');
    std::string formatted;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find("\n" + mark, start), text.size() - 1) + 1;
        const std::string once = FormatBasicSource(text.substr(start, end - start), {});
        EXPECT_EQ(FormatBasicSource(once, {}), once) << "a second time";
        formatted += once;
        start = end;
    }
    ExpectGolden("format_after.bas", formatted);
}

TEST(Format, HonoursItsOptions) {
    const std::string source = "do\nfor i = 1 to 2\nx\nnext\nloop";
    EXPECT_EQ(FormatBasicSource(source, {.useTabs = true, .upperKeywords = false}),
              "do\n\tfor i = 1 to 2\n\t\tx\n\tnext\nloop");
    EXPECT_EQ(FormatBasicSource(source, {.indentWidth = 2}), "DO\n  FOR i = 1 TO 2\n    x\n  NEXT\nLOOP");
}

// The lines of a text with their breaks.
std::vector<std::string> WholeLines(const std::string& text) {
    std::vector<std::string> lines(1);
    for (std::size_t i = 0; i < text.size(); ++i) {
        lines.back() += text[i];
        if (text[i] == '\n' || (text[i] == '\r' && text[i + 1] != '\n')) lines.emplace_back();
    }
    if (lines.back().empty()) lines.pop_back();
    return lines;
}

void ExpectSelectionsLikeTheWhole(const std::string& text) {
    const std::vector<std::string> lines = WholeLines(FormatBasicSource(text, {}));
    for (std::size_t first = 0; first < lines.size(); ++first) {
        std::string expected;
        for (std::size_t last = first; last < std::min(lines.size(), first + 4); ++last) {
            expected += lines[last];
            ASSERT_EQ(FormatBasicLines(text, {}, static_cast<int>(first), static_cast<int>(last)), expected) << text;
        }
    }
}

TEST(Format, ASelectionGetsWhatItHasInTheWhole) {
    ExpectSelectionsLikeTheWhole(GoldenText("format_after.bas"));
    EXPECT_EQ(FormatBasicLines("asm\n  x\n  if a then\nend asm\n", {}, 1, 2), "  x\n  if a then\n");
    std::string many(2000, '\n');
    EXPECT_LT(FormatBasicLines(many, {}, 0, 2000, [](double share) { return share < 0.5; }).size(), 1300u) << "stopped";
    EXPECT_EQ(FormatBasicLines("select case a\ncase 1\ncase 2\nx\n", {}, 2, 2), "    CASE 2\n");
}

TEST(Format, AProgramInEachDialect) {
    for (const DialectSource& source : kDialectSources) {
        const Dialect& dialect = DialectOf(source.compiler);
        std::string text = GoldenText(source.name);
        std::erase(text, '\r');
        const std::string once = FormatBasicSource(text, {.dialect = &dialect});
        ExpectGolden(std::string(source.name) + ".formatted", once);
        EXPECT_EQ(TokenStream(once, dialect), TokenStream(text, dialect)) << source.name;
        EXPECT_EQ(FormatBasicSource(once, {.dialect = &dialect}), once) << source.name;
    }
}

TEST(Format, KeepsEveryToken) {
    // Random sequences of pieces of programs: formatting must neither lose nor double anything.
    const char* const pieces[] = {"if ", "then",  "\n",          "\r\n",  "\r",   " _\n",     "\"",  "'",
                                  ":",   "for i", "next",        "sub a", "end ", "function", "asm", "! x",
                                  "#if", "#else", "select case", "case ", "rem",  "\t",       " ",   "x=1",
                                  "&h",  ".",     "label:",      "_",     "data", "\xC3\xA4", "10 ", "end asm",
                                  "=",   "-",     "+",           "&",     ",",    "%a",       "a$",  "1e"};
    unsigned state = 12345;
    const auto next = [&state] {
        state = state * 1664525u + 1013904223u;
        return state >> 8;
    };
    for (int round = 0; round < 3000; ++round) {
        std::string text;
        for (unsigned i = 0, n = next() % 40; i < n; ++i) text += pieces[next() % std::size(pieces)];
        const std::string once = FormatBasicSource(text, {});
        ASSERT_EQ(TokenStream(once, AnyDialect()), TokenStream(text, AnyDialect())) << "round " << round << ":\n"
                                                                                    << text;
        ASSERT_EQ(FormatBasicSource(once, {}), once) << "round " << round << ": a second time\n" << text;
        if (round % 10 == 0 && text.find('\r') == std::string::npos) ExpectSelectionsLikeTheWhole(text);
    }
}

TEST(FormatRange, ReplacesOnlyTheLinesThatDiffer) {
    const struct {
        const char* name;
        std::string_view before, after;
        std::size_t replacements;
    } cases[] = {
        {"nothing", "a\r\nb", "a\r\nb", 0},
        {"a shorter line before another", "  a\r\nb\r\n c", "a\r\nb\r\n    c", 2},
        {"line ends of each kind", " a\n b\r c\r\n\n", "a\nb\rc\r\n\n", 3},
        {"another number of lines", "a\nb\n", "a\nb\nc\n", 1},
        {"all of nothing", "", "a", 1},
    };
    for (const auto& each : cases) {
        const std::vector<LineReplacement> replacements = LineReplacements(each.before, each.after);
        EXPECT_EQ(replacements.size(), each.replacements) << each.name;
        std::string text(each.before);
        for (const LineReplacement& one : replacements) text.replace(one.start, one.length, one.text);
        EXPECT_EQ(text, each.after) << each.name;
    }
    const std::string_view before = "a\r\n b\r\n";
    EXPECT_EQ(LineReplacements(before, "a\r\nb\r\n"), (std::vector<LineReplacement>{{3, 1, ""}}))
        << "the break stays, and with it the marks of the line";
    for (const std::string_view wanted : {"\xC3\xA8", "\xC4\xA9"})  // the first or the last byte is the same
        EXPECT_EQ(LineReplacements("\xC3\xA9", wanted), (std::vector<LineReplacement>{{0, 2, wanted}}));
}

TEST(FormatRange, TheCaretStaysOnItsToken) {
    const std::string before = "  x=\ta+  \"a  b\" ", after = "    x = \ta +  \"a  b\"";
    for (const auto& [place, wanted] : {std::pair{0, 0},
                                        {1, 1},
                                        {2, 4},
                                        {3, 6},
                                        {4, 7},
                                        {5, 9},
                                        {6, 11},
                                        {7, 12},
                                        {11, 16},
                                        {14, 19},
                                        {15, 20},
                                        {99, 20}})
        EXPECT_EQ(SamePlaceInLine(before, after, static_cast<std::size_t>(place)), static_cast<std::size_t>(wanted))
            << place;
}

TEST(FormatRange, TakesWholeLines) {
    EXPECT_EQ(LinesOfSelection(2, 5, false), (LineRange{2, 5}));
    EXPECT_EQ(LinesOfSelection(2, 5, true), (LineRange{2, 4}));
    EXPECT_EQ(LinesOfSelection(2, 2, true), (LineRange{2, 2})) << "an empty selection at a line's start is that line";
}

}  // namespace
