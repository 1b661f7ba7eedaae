// What is offered at a place of a text, in which order, and the snippets.
#include "language/completion.h"

#include "completion/completion_rows.h"
#include "settings/compiler_id.h"
#include "support/dialect_sources.h"
#include "support/golden_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <string>
#include <vector>

namespace {

const Dialect& Keldor() { return DialectOf(kDefaultCompiler); }

constexpr const char* kPlaceNames[] = {"nothing", "statement", "expression",  "type",   "label",
                                       "member",  "directive", "block",       "name",   "entry",
                                       "param",   "after",     "instruction", "operand"};

std::string Shown(const CompletionContext& context) {
    if (!context.inCode) return "-";
    std::string shown = kPlaceNames[static_cast<int>(context.place)];
    shown.append(" ").append(context.prefix);
    for (const std::string& name : context.qualifier) shown.append(" <").append(name);
    return shown;
}

TEST(Completion, ContextOfTheCaret) {
    const struct {
        const char *before, *context;
    } cases[] = {
        {"", "statement "},
        {"  pr", "statement pr"},
        {"x = pr", "expression pr"},
        {"x = 1: pr", "statement pr"},
        {"10 pr", "statement pr"},
        {"again: pr", "statement pr"},
        {"IF a THEN pr", "statement pr"},
        {"IF pr", "expression pr"},
        {"x = a$", "-"},
        {"x = 12", "-"},
        {"x = &HF", "-"},
        {"1", "-"},
        {"x = \"pr", "-"},
        {"x = \"pr\"", "-"},
        {"x = \"pr\" + ab", "expression ab"},
        {"x = 1 ' pr", "-"},
        {"REM pr", "-"},
        {"DATA pr", "-"},
        {"DATA ", "-"},
        {"x = %LI", "expression %LI"},
        {"x = $", "expression $"},
        {"x$", "-"},
        {"%LI", "name %LI"},
        {"LOCAL a AS lo", "type lo"},
        {"OPEN f FOR INPUT AS fi", "expression fi"},
        {"GOTO ag", "label ag"},
        {"ON n GOSUB a, b", "label b"},
        {"a.b", "member b <a"},
        {"x = a(i, b(2)).b.", "member  <a <b"},
        {"x = @p.", "member  <p"},
        {"x = f(1 + a.b", "member b <a"},
        {".", "member "},
        {"WITH a.b(1)\n .", "member  <a <b"},
        {"WITH a\n .c.d", "member d <a <c"},
        {"WITH a\nWITH .b\n x = .", "member  <a <b"},
        {"WITH a\nWITH b\nEND WITH\n .", "member  <a"},
        {"#in", "directive in"},
        {"#", "directive "},
        {"#IF de", "expression de"},
        {"#DIM al", "name al"},
        {"END fu", "block fu"},
        {"SUB na", "name na"},
        {"FUNCTION pb", "entry pb"},
        {"STATIC FUNCTION pb", "entry pb"},
        {"FUNCTION = na", "expression na"},
        {"SUB a(by", "param by"},
        {"SUB a(BYVAL x AS LONG, by", "param by"},
        {"SUB a(BYVAL na", "name na"},
        {"SUB a(x a", "after a"},
        {"SUB a( _\n x AS lo", "type lo"},
        {"MACRO m(x) = na", "expression na"},
        {"LOCAL na", "name na"},
        {"LOCAL a AS LONG, na", "name na"},
        {"DIM a(na", "expression na"},
        {"DIM a a", "after a"},
        {"TYPE t\n  na", "name na"},
        {"TYPE t\n  x AS na", "type na"},
        {"TYPE t\nEND TYPE\nna", "statement na"},
        {"TYPE t\nSUB s()\nna", "statement na"},
        {"! mo", "instruction mo"},
        {"! mov ea", "operand ea"},
        {"ASM mo", "instruction mo"},
        {"ASM\n  l: mo", "instruction mo"},
        {"ASM\n  mov eax, na", "operand na"},
        {"ASM\n  mov eax ; na", "-"},
        {"ASM\nEND ASM\n na", "statement na"},
        {"x = 1 + _\n  na", "expression na"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Shown(CompletionContextAt(row.before, 0, Keldor())), row.context) << row.before;
    EXPECT_EQ(Shown(CompletionContextAt("a /' b", 0, DialectOf(kCompilerKvxb64))), "-");
    EXPECT_EQ(Shown(CompletionContextAt("a /' b\nc", 0, DialectOf(kCompilerKvxb64))), "-");
    EXPECT_EQ(Shown(CompletionContextAt("a = /' b '/ c", 0, DialectOf(kCompilerKvxb64))), "expression c");
}

// At every place of the programs: what is inside a comment, a string or a number is no code.
TEST(Completion, NothingInCommentsAndStrings) {
    for (const DialectSource& source : kDialectSources) {
        const Dialect& dialect = DialectOf(source.compiler);
        const std::string text = GoldenText(source.name);
        LineReader reader{.text = text, .dialect = &dialect};
        std::size_t inside = 0;
        while (ReadLine(reader))
            for (const Token& token : reader.tokens) {
                const bool dead = token.kind == TokenKind::Comment || token.kind == TokenKind::String ||
                                  token.kind == TokenKind::Number || token.kind == TokenKind::Data;
                // The first letters of "&H1", "/'" and REM are something else yet.
                const bool number = token.kind == TokenKind::Number;
                const bool apart = token.kind == TokenKind::Comment && reader.line[token.start] != '\'';
                const std::size_t first = number ? token.End() : token.start + (apart ? 3 : 1);
                for (std::size_t at = first; dead && at <= token.End(); ++at, ++inside) {
                    const std::string_view before = std::string_view(text).substr(0, reader.start + at);
                    // From its line on, as the editor does it, because from the top it would take a minute.
                    const CompletionContext context =
                        CompletionContextAt(before.substr(reader.start), reader.before, dialect);
                    ASSERT_FALSE(context.inCode) << source.name << ": " << reader.line.substr(0, at);
                }
            }
        EXPECT_GT(inside, 200u) << source.name;
    }
}

TEST(Completion, FitAndSpelling) {
    const struct {
        const char *typed, *name;
        NameFit fit;
    } cases[] = {
        {"", "Print", NameFit::Prefix},
        {"PRINT", "Print", NameFit::Equal},
        {"pri", "Print", NameFit::Prefix},
        {"gpa", "GetPixelArea", NameFit::Humps},
        {"gepia", "GetPixelArea", NameFit::Humps},
        {"gxa", "GetPixelArea", NameFit::None},
        {"pa", "GetPixelArea", NameFit::None},
        {"%wc", "%WM_CLOSE", NameFit::Humps},
        {"wc", "%WM_CLOSE", NameFit::None},
        {"a_b", "a_long_b", NameFit::Humps},
        {"nl4", "nameOfLine42", NameFit::Humps},
    };
    for (const auto& row : cases) EXPECT_EQ(FitOfName(row.typed, row.name), row.fit) << row.typed << " " << row.name;
    EXPECT_EQ(SpelledKeyword("print", "pr", true), "PRINT");
    EXPECT_EQ(SpelledKeyword("print", "pr", false), "print");
    EXPECT_EQ(SpelledKeyword("print", "Pr", false), "Print");
    EXPECT_EQ(SpelledKeyword("print", "PR", false), "PRINT");
}

constexpr char kMain[] = R"(#INCLUDE "t.inc"
GLOBAL counter AS LONG
%COUNT_MAX = 3
SUB CountAll(countFrom AS LONG)
  LOCAL counted AS LONG, line AS Segment
again:
  counted = 1
END SUB
SUB Other()
  LOCAL countless AS LONG
END SUB
)";
constexpr char kInclude[] =
    "TYPE Spot\n  x AS LONG\n  y AS LONG\nEND TYPE\nTYPE Segment\n  from AS Spot\n  upTo AS Spot\n"
    "END TYPE\nFUNCTION CountInclude() AS LONG\nEND FUNCTION\n";

// The rows after `typed` on line 7 of the text, with the letters of their kinds.
std::string Rows(const std::string& typed, std::size_t most = 99, const std::deque<std::string>* accepted = nullptr,
                 std::uint32_t compiler = kDefaultCompiler) {
    const Dialect& dialect = DialectOf(compiler);
    const std::vector<std::shared_ptr<const SymbolTable>> tables{
        std::make_shared<SymbolTable>(SymbolsOfText(kMain, dialect)),
        std::make_shared<SymbolTable>(SymbolsOfText(kInclude, dialect))};
    const std::uint32_t lines[] = {6};
    const std::string names[] = {"countdown", "countless"};
    const CompletionContext context = CompletionContextAt(typed, 0, dialect);
    std::string shown;
    for (const CompletionRow& row : CompletionRowsOf(context, {.tables = tables,
                                                              .lines = lines,
                                                              .names = names,
                                                              .snippets = BuiltinSnippets(),
                                                              .dialect = &dialect,
                                                              .innermost = BlockKind::Function,
                                                              .accepted = accepted,
                                                              .capitals = true})) {
        if (most-- == 0) break;
        shown.append(shown.empty() ? "" : " ").append(row.text).append(1, '/');
        shown += "KfTSPMtmCGL:arn"[static_cast<int>(row.kind)];
    }
    return shown;
}

TEST(Completion, RowsInOrder) {
    EXPECT_EQ(Rows("coun"), "counted/L countFrom/L counter/G CountAll/P countdown/n CountInclude/P");
    const std::deque<std::string> accepted = {"COUNTER"};
    EXPECT_EQ(Rows("coun", 2, &accepted), "counter/G counted/L") << "what was accepted last comes first";
    EXPECT_EQ(Rows("Count", 4), "counted/L countFrom/L CountAll/P counter/G") << "then those with the same letters";
    EXPECT_EQ(Rows("line."), "from/m upTo/m");
    EXPECT_EQ(Rows("x = line.from."), "x/m y/m");
    EXPECT_EQ(Rows("x = line.u"), "upTo/m");
    EXPECT_EQ(Rows("nobody."), "");
    EXPECT_EQ(Rows("LOCAL a AS s"), "Segment/t Spot/t SINGLE/T SNG/T STRING/T STRINGZ/T");
    EXPECT_EQ(Rows("GOTO "), "again/:");
    EXPECT_EQ(Rows("x = %"), "%COUNT_MAX/C");
    EXPECT_EQ(Rows("x = %cm"), "%COUNT_MAX/C");
    const std::deque<std::string> blocks = {"FOR"};
    EXPECT_EQ(Rows("END f", 99, &blocks), "FUNCTION/K FASTPROC/K FOR/K") << "the open block before the last word";
    EXPECT_EQ(Rows("FOR"), "FOR/K for/S forlocal/S FORMAT$/f") << "a keyword before the snippet of its name";
    EXPECT_EQ(Rows("SUB a("), "BYCOPY/K BYREF/K BYVAL/K OPTIONAL/K");
    EXPECT_EQ(Rows("! mov eb"), "ebp/r ebx/r");
    EXPECT_EQ(Rows("#incl"), "INCLUDE/K");
    EXPECT_EQ(Rows("x = ' co"), "");
}

TEST(Completion, ALargeTableIsBounded) {
    std::string text;
    for (int i = 0; i < 20000; ++i) text += "GLOBAL name" + std::to_string(i) + " AS LONG\n";
    const std::vector<std::shared_ptr<const SymbolTable>> tables{
        std::make_shared<SymbolTable>(SymbolsOfText(text, Keldor()))};
    const std::uint32_t lines[] = {0};
    const CompletionContext context = CompletionContextAt("x = na", 0, Keldor());
    const auto rows = [&] {
        return CompletionRowsOf(context,
                                {.tables = tables, .lines = lines, .names = {}, .snippets = {}, .dialect = &Keldor()});
    };
    ASSERT_EQ(rows().size(), 301u) << "of the table no more than 300, and NAME";
    EXPECT_EQ(rows()[0].text, "name0");
}

// What every dialect offers for a few words, so that a changed table of words or snippets shows.
TEST(Completion, RowsOfTheDialects) {
    std::string shown;
    for (std::uint32_t compiler = 0; compiler < kCompilerCount; ++compiler)
        for (const char* typed : {"fo", "en", "un", "x = l", "AS d", "#de", "ns", "la", "li", "FUNCTION "})
            shown += std::to_string(compiler) + " " + typed + ": " + Rows(typed, 12, nullptr, compiler) + "\n";
    ExpectGolden("completion.txt", shown);
}

// The text with its fields marked: "[1:i]".
std::string Marked(const SnippetText& made) {
    std::string shown = made.text;
    std::vector<SnippetField> fields = made.fields;
    std::ranges::stable_sort(fields, std::ranges::greater(), &SnippetField::start);
    for (const SnippetField& field : fields) {
        shown.insert(field.end, "]");
        shown.insert(field.start, "[" + std::to_string(field.number) + ":");
    }
    return shown;
}

TEST(Snippets, TextAndFields) {
    const SnippetForm form{.indentation = "  ", .step = "    ", .lineBreak = "\r\n"};
    const auto made = [&form](const char* body) { return Marked(SnippetTextOf({.name = "a", .body = body}, form)); };
    EXPECT_EQ(made("FOR ${1:i} = 1\n\t$0\nNEXT $1"), "FOR [1:i] = 1\r\n      [0:]\r\n  NEXT [1:i]");
    EXPECT_EQ(made("a$$ = $x ${ $"), "a$ = $x ${ $[0:]");
    EXPECT_EQ(made("$2 $1\tx"), "[2:] [1:]\tx[0:]");
    for (const Snippet& snippet : BuiltinSnippets()) {
        const SnippetText text = SnippetTextOf(snippet, form);
        ASSERT_FALSE(text.fields.empty()) << snippet.name;
        EXPECT_EQ(text.fields.back().number, 0) << snippet.name;
        EXPECT_EQ(text.text.find_first_of("$\t"), std::string::npos) << snippet.name;
        // It opens and closes its blocks.
        EXPECT_EQ(InnermostBlockAt(text.text + "\n", 0, DialectOf(kCompilerKvxb64)), BlockKind::Count) << snippet.name;
    }
    SnippetForm lower = form;
    lower.lowerCase = true;
    EXPECT_EQ(Marked(SnippetTextOf({.name = "a", .body = "DO ${1:Name}", .own = true}, lower)), "do [1:Name][0:]");
}

TEST(Snippets, TheUsersFile) {
    const SnippetFile file = ReadSnippetFile(
        "\xEF\xBB\xBF; comment\r\nignored\r\n[one] keldorbasic, KVXA32\r\nPRINT ${1:x}\r\n    b\r\n\r\n[two "
        "words]\r\nx\r\n"
        "[three] nobody\r\n\\[x]\r\n${y\r\n[empty]\r\n\r\n[open\r\n[1a]\r\n");
    ASSERT_EQ(file.snippets.size(), 2u);
    EXPECT_EQ(file.snippets[0].name, "one");
    EXPECT_EQ(file.snippets[0].body, "PRINT ${1:x}\n\tb");
    EXPECT_EQ(file.snippets[0].dialects, (1 << kCompilerKeldorBasic) | (1 << kCompilerKvxa32));
    EXPECT_EQ(file.snippets[1].body, "[x]\n${y");
    std::string problems;
    for (const std::string& problem : file.problems) problems += problem.substr(0, problem.find(':')) + " ";
    EXPECT_EQ(problems, "line 7 line 9 line 11 line 14 line 15 line 12 ");
    EXPECT_TRUE(ReadSnippetFile(SnippetFileTemplate()).problems.empty());
    EXPECT_EQ(ReadSnippetFile(SnippetFileTemplate()).snippets.size(), 1u);
}

}  // namespace
