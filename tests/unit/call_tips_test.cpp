// Call tips and what is shown about a word: the calls around a place, the built-in functions, signatures, constants.
#include "completion/call_tip.h"
#include "completion/constant_value.h"
#include "completion/hover_text.h"
#include "language/builtins.h"
#include "language/call_context.h"
#include "settings/compiler_id.h"
#include "support/dialect_sources.h"
#include "support/golden_file.h"
#include "symbols/peek.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <sstream>

namespace {

const Dialect& Keldor() { return DialectOf(kDefaultCompiler); }

// The calls from the innermost on: "Name(2" with parentheses, "Name 0" without, each with the argument's number.
std::string Calls(std::string_view text, ScanState state = 0, std::uint32_t compiler = kDefaultCompiler) {
    std::string shown;
    for (const CallContext& call : CallsAround(text, state, DialectOf(compiler))) {
        if (!shown.empty()) shown += " < ";
        for (const std::string& name : call.qualifier) shown += name + ".";
        shown += call.name + (call.parentheses ? "(" : " ") + std::to_string(call.argument);
        if (!call.keyword.empty()) shown += " " + call.keyword + "+" + std::to_string(call.afterKeyword);
        if (!call.second.empty()) shown += " " + call.second;
        if (call.file) shown += " #";
    }
    return shown;
}

TEST(CallContext, CallsAroundTheCaret) {
    const struct {
        const char *text, *calls;
    } cases[] = {
        {"", ""},
        {"Fill", ""},
        {"Fill ", "Fill 0"},
        {"Fill a, ", "Fill 1 A"},
        {"Fill(a, ", "Fill(1"},
        {"CALL Fill(a, b", "Fill(1"},
        {"CALL Fill(a, b)", ""},
        {"Fill(a) ", ""},
        {"Fill (a), b", "Fill 1"},
        {"x = 1", ""},
        {"x(1, 2) = Foo(3", "Foo(0"},
        {"x = Foo(Bar(1, 2), (3 + 4), ", "Foo(2"},
        {"x = Foo(Bar(1, ", "Bar(1 < Foo(0"},
        {"x = (1 + ", ""},
        {"p.q(2).Draw(1, ", "p.q.Draw(1"},
        {"p.Draw 1, ", "p.Draw 1"},
        {"Fill \"a, b\", \"c, ", "Fill 1"},
        {"Fill a, ' b, ", ""},
        {"Fill a, _ ' b, c\n  d, ", "Fill 2 A"},
        {"Fill a, _\n", "Fill 1 A"},
        {"Fill a,\n", ""},
        {"Fill a,\n  ", ""},
        {"a = Foo(1: Fill b, ", "Fill 1 B"},
        {"IF Foo(1, ", "Foo(1 < IF 0 FOO"},
        {"IF a THEN Fill b, ", "Fill 1 B"},
        {"IF a THEN b = 1 ELSE Fill c, ", "Fill 1 C"},
        {"10 Fill b, ", "Fill 1 B"},
        {"again: Fill b, ", "Fill 1 B"},
        {"SUB Fill(a AS LONG, ", ""},
        {"STATIC FUNCTION Fill(a AS LONG, ", ""},
        {"DECLARE SUB Fill LIB \"x\" (a AS LONG, ", ""},
        {"FUNCTION = Foo(1, ", "Foo(1"},
        {"MACRO Twice(a) = Foo(a, ", "Foo(1"},
        {"LOCAL a(Foo(1, ", "Foo(1 < LOCAL 0 A"},
        {"LOCAL a(1, ", "LOCAL 0 A"},
        {"OPEN f FOR INPUT AS #1, ", "OPEN 1 AS+1 F"},
        {"PRINT #1, a; ", "PRINT 2 #"},
        {"MID$(a, 1, ", "MID(2"},
        {"! mov eax, (1, ", ""},
        {"#IF %DEF(a, ", ""},
        {"DATA Foo(1, ", ""},
        {"Fill a), b), ", "Fill 2 A"},
        {"Fill (((((a, ", "Fill(0"},
        {"@ptr(1, ", "ptr(1"},
        {"\"open\" (,", ""},
        {"Foo(,,,", "Foo(3"},
        {"\x01(,", ""},
    };
    for (const auto& test : cases) EXPECT_EQ(Calls(test.text), test.calls) << test.text;
    EXPECT_EQ(Calls("mov eax, (1, ", kScanAssembly), "");
    EXPECT_EQ(Calls("Fill a, /' b, ", 0, kCompilerKvxc64), "");
    EXPECT_EQ(Calls("Fill a, /' b, '/", 0, kCompilerKvxc64), "Fill 1 A");
    EXPECT_EQ(Calls(std::string(5000, '(') + "Foo(,"), "") << "deeper than anyone writes";
}

TEST(CallContext, AnyPlaceOfAnyText) {
    std::mt19937 random(7);
    for (const DialectSource& source : kDialectSources) {
        const Dialect& dialect = DialectOf(source.compiler);
        std::string text = GoldenText(source.name);
        for (int round = 0; round < 3; ++round) {
            const SymbolTable table = SymbolsOfText(text, dialect);
            for (const Symbol& symbol : table.symbols) {
                const Signature signature = SignatureOfSymbol(table, symbol);
                for (const SignatureParameter& parameter : signature.parameters)
                    ASSERT_TRUE(parameter.start < parameter.end && parameter.end <= signature.text.size());
                const CallContext call{.parentheses = true, .argument = random() % 4};
                const TipText tip = TipTextOf({&signature, 1}, 0, call, random() % 60);
                ASSERT_TRUE(tip.start <= tip.end && tip.end <= tip.text.size()) << tip.text;
            }
            std::size_t start = 0;
            for (std::size_t at = 0; at <= text.size(); at += 1 + random() % 3) {
                const std::size_t line = text.rfind('\n', at == 0 ? 0 : at - 1);
                start = line == std::string::npos ? 0 : line + 1;
                for (const CallContext& call :
                     CallsAround(std::string_view(text).substr(start, at - start), 0, dialect)) {
                    ASSERT_FALSE(call.name.empty());
                    ASSERT_LE(start + call.argumentsStart, at);
                    ASSERT_EQ(text.compare(start + call.nameStart, call.name.size(), call.name), 0) << call.name;
                }
            }
            for (int edit = 0; edit < 200; ++edit)
                text[random() % text.size()] = "(),_\"'\n:. &%#!=\xFF"[random() % 16];
        }
    }
}

TEST(Builtins, EveryFunctionHasARow) {
    std::set<std::string> rows;
    for (const Builtin& builtin : Builtins()) {
        std::string name(BuiltinName(builtin));
        if (name.ends_with('$')) name.pop_back();
        EXPECT_NE(LookUpWord(name, AnyDialect()).kind, WordClass::None) << name;
        EXPECT_TRUE(builtin.text.ends_with('.')) << name;
        rows.insert(name);
    }
    std::istringstream words(WordsOf(WordClass::Function, AnyDialect()));
    for (std::string word; words >> word;) {
        for (char& c : word) c = static_cast<char>(c >= 'a' ? c - 32 : c);
        EXPECT_EQ(rows.count(word), 1u) << word;
    }
    EXPECT_TRUE(BuiltinsNamed("unlock", Keldor()).empty()) << "a word of another dialect";
    EXPECT_EQ(BuiltinsNamed("Mid", Keldor()).size(), 2u);
}

// The tip of the built-in function or statement that is called, with brackets around what is marked.
std::string BuiltinTip(const char* text) {
    const std::vector<CallContext> calls = CallsAround(text, 0, AnyDialect());
    std::vector<Signature> signatures;
    for (const Builtin* row : BuiltinsNamed(calls.at(0).name, AnyDialect()))
        signatures.push_back(SignatureOfBuiltin(*row));
    const std::size_t best = BestSignature(signatures, calls[0]);
    const std::optional<std::size_t> parameter = ParameterAt(signatures[best], calls[0]);
    std::string shown = signatures[best].text;
    if (!parameter) return shown;
    shown.insert(signatures[best].parameters[*parameter].end, ">");
    return shown.insert(signatures[best].parameters[*parameter].start, "<");
}

TEST(CallTip, ParameterUnderTheCaret) {
    const struct {
        const char *text, *tip;
    } cases[] = {
        {"x = LEFT$(a, ", "LEFT$(text AS STRING, <count AS LONG>) AS STRING"},
        {"x = INSTR(a, ", "INSTR(text AS STRING, <match AS STRING>) AS LONG"},
        {"x = INSTR(1, a, ", "INSTR(start AS LONG, text AS STRING, <match AS STRING>) AS LONG"},
        {"x = INSTR(1, a, b, ", "INSTR(text AS STRING, match AS STRING) AS LONG"},
        {"x = MID$(a, 1, ", "MID$(text AS STRING, start AS LONG[, <count AS LONG>]) AS STRING"},
        {"MID$(a, ", "MID$(target AS STRING, <start AS LONG>[, count AS LONG]) = replacement"},
        {"x = MAX(1, 2, 3, 4, ", "MAX(value, <value>[, ...])"},
        {"OPEN ", "OPEN <file> FOR mode [ACCESS access] AS [#]filenumber [LEN = size]"},
        {"OPEN f FOR INPUT AS ", "OPEN file FOR mode [ACCESS access] AS [#]<filenumber> [LEN = size]"},
        {"OPEN f FOR RANDOM AS #1 LEN = ", "OPEN file FOR mode [ACCESS access] AS [#]filenumber [LEN = <size>]"},
        {"PRINT #1, a; ", "PRINT #filenumber, [<expression>][; ...]"},
        {"PRINT ", "PRINT [<expression>][; ...]"},
        {"LINE INPUT #1, ", "LINE INPUT #filenumber, <variable>"},
        {"ARRAY SCAN ", "ARRAY SCAN <values([first])> [FOR count], = value, TO position"},
    };
    for (const auto& test : cases) EXPECT_EQ(BuiltinTip(test.text), test.tip) << test.text;

    const SymbolTable table = SymbolsOfText(
        "FUNCTION Find(values() AS LONG, BYVAL wanted AS Entry, name$, OPTIONAL d AS STRING) AS LONG\nEND FUNCTION\n",
        Keldor());
    const Signature find = SignatureOfSymbol(table, table.symbols[0]);
    const CallContext call{.parentheses = true, .argument = 1};
    const std::vector<Signature> two{find, find};
    EXPECT_EQ(TipTextOf(two, 1, call, 50).text,
              "\001 2/2 \002 FUNCTION Find(values() AS LONG,\n    BYVAL wanted AS Entry, name$,\n"
              "    OPTIONAL d AS STRING) AS LONG");
    const TipText tip = TipTextOf(two, 0, call, 50);
    EXPECT_EQ(tip.text.substr(tip.start, tip.end - tip.start), "BYVAL wanted AS Entry");
    const TipText narrow = TipTextOf({&find, 1}, 0, call, 5);
    EXPECT_EQ(narrow.text.substr(narrow.start, narrow.end - narrow.start), "BYVAL wanted AS Entry");
}

TEST(Hover, DeclarationsAndValues) {
    const char text[] =
        "%A = &HFF\n%B = (%A + 1) * -2\n%C = %D\n%D = %C\n%E = 1 \\ 0\n%F = 2 + 3 * 4 MOD 3\n$S = \"x\"\n"
        "%G = NOT 0 AND 7\n%H = 9223372036854775807 + 1\n"
        "ENUM Colour\nRed\nGreen = 5\nBlue\nEND ENUM\n"
        "TYPE Point\nx AS LONG\ny(3) AS LONG\nEND TYPE\n"
        "SUB Draw(BYVAL p AS Point, n$)\nSTATIC k AS LONG\nEND SUB\n";
    const std::vector<std::shared_ptr<const SymbolTable>> tables{
        std::make_shared<SymbolTable>(SymbolsOfText(text, Keldor()))};
    const auto about = [&](std::string_view name) {
        return HoverTextOf(tables, {0, SymbolsNamed(*tables[0], name).front()}, "", Keldor());
    };
    const struct {
        const char *name, *text;
    } cases[] = {
        {"%A", "constant %A = &HFF\nvalue: 255 (&HFF)"},
        {"%B", "constant %B = (%A + 1) * -2\nvalue: -512 (&HFFFFFE00)"},
        {"%C", "constant %C = %D"},
        {"%E", "constant %E = 1 \\ 0"},
        {"%F", "constant %F = 2 + 3 * 4 MOD 3\nvalue: 2 (&H2)"},
        {"%G", "constant %G = NOT 0 AND 7\nvalue: 7 (&H7)"},
        {"%H", "constant %H = 9223372036854775807 + 1"},
        {"$S", "constant $S = \"x\""},
        {"Red", "ENUM value Red (ENUM Colour)\nvalue: 0 (&H0)"},
        {"Blue", "ENUM value Blue (ENUM Colour)\nvalue: 6 (&H6)"},
        {"Point", "TYPE Point, 2 members\n    x AS LONG\n    y() AS LONG"},
        {"Draw", "SUB Draw(BYVAL p AS Point, n$)"},
        {"p", "parameter BYVAL p AS Point (SUB Draw)"},
        {"k", "local STATIC k AS LONG (SUB Draw)"},
    };
    for (const auto& test : cases) EXPECT_EQ(about(test.name), test.text);
}

TEST(Peek, PagesPlaceAndText) {
    PeekPages pages;
    for (const wchar_t* title : {L"a", L"b", L"c"}) PeekPush(pages, {.title = title, .places = {{}}});
    EXPECT_TRUE(PeekStep(pages, -1) && PeekStep(pages, -1) && !PeekStep(pages, -1));
    EXPECT_EQ(pages.pages[pages.at].title, L"a");
    PeekPush(pages, {.title = L"d", .places = {{}}});
    EXPECT_FALSE(PeekStep(pages, 1)) << "b and c are gone";
    EXPECT_TRUE(PeekStep(pages, -1));
    for (int i = 0; i < 200; ++i) PeekPush(pages, {.title = L"e", .places = {{}}});
    EXPECT_EQ(pages.at, 49u);

    EXPECT_EQ(PeekSpanOf(400, 100, 120, 200), (PeekSpan{120, 200}));
    EXPECT_EQ(PeekSpanOf(400, 300, 320, 200), (PeekSpan{100, 200})) << "above, beside the row";
    EXPECT_EQ(PeekSpanOf(100, 60, 80, 200), (PeekSpan{0, 60}));
    EXPECT_EQ(PeekSpanOf(100, -40, -20, 46), (PeekSpan{0, 46})) << "the caret is out of view";
    EXPECT_EQ(PeekSpanOf(100, 500, 520, 46), (PeekSpan{54, 46}));

    std::string large;
    for (int i = 0; i < 300000; ++i) large += "line " + std::to_string(i) + "\n";
    const std::string part = PeekText(large, 200000);
    EXPECT_LT(part.size(), std::size_t{1} << 20);
    std::size_t at = 0;
    for (int i = 0; i < 200000; ++i) at = part.find('\n', at) + 1;
    EXPECT_EQ(part.substr(at, 12), "line 200000\n") << "its number is that of the whole text";
}

}  // namespace
