// What words mean over several texts, the places of a name, and the rows of the outline.
#include "symbols/definitions.h"

#include "compile/include_paths.h"
#include "settings/compiler_id.h"
#include "symbols/outline.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const Dialect& Keldor() { return DialectOf(kDefaultCompiler); }

constexpr char kMain[] = R"(#INCLUDE "t.inc"
GLOBAL p AS Point
DECLARE SUB Draw(q AS Point)
ENUM Colour
  Red = 1
END ENUM
SUB Draw(q AS Point)
  LOCAL x AS LONG, lines(3) AS Line
  x = q.x + lines(x).from.x ' x
  p.x = Colour.Red + z.x
  PRINT "x"; x
END SUB
SUB Other()
  x = Helper(1)
END SUB
)";
constexpr char kInclude[] = R"(TYPE Point
  x AS LONG
END TYPE
TYPE Line
  from AS Point
END TYPE
GLOBAL x AS QUAD
FUNCTION Helper(n AS LONG) AS LONG
END FUNCTION
DECLARE FUNCTION Helper(n AS LONG) AS LONG
)";

struct TwoTexts {
    std::vector<std::shared_ptr<const SymbolTable>> tables{
        std::make_shared<SymbolTable>(SymbolsOfText(kMain, Keldor())),
        std::make_shared<SymbolTable>(SymbolsOfText(kInclude, Keldor()))};

    static std::string_view Line(std::size_t line) {
        std::string_view text = kMain;
        for (; line > 0; --line) text.remove_prefix(text.find('\n') + 1);
        return text.substr(0, text.find('\n'));
    }
    // The definitions of what stands at `at` in the line: "text:line", both from 0.
    std::string Meant(std::uint32_t line, std::string_view at, std::size_t into = 0) const {
        const std::optional<SymbolWord> word = SymbolWordAt(Line(line), Line(line).find(at) + into, Keldor());
        if (!word) return "no word";
        std::string found;
        for (const SymbolPlace& place : DefinitionsOf(*word, line, tables))
            found +=
                std::to_string(place.text) + ":" + std::to_string(tables[place.text]->symbols[place.symbol].line) + " ";
        return found;
    }
};

TEST(Definitions, FollowScopesDotsAndIncludes) {
    const TwoTexts texts;
    EXPECT_EQ(texts.Meant(8, "x ="), "0:7 ") << "the local variable";
    EXPECT_EQ(texts.Meant(13, "x ="), "1:6 ") << "the global one of the include";
    EXPECT_EQ(texts.Meant(8, "q.x", 2), "1:1 ");
    EXPECT_EQ(texts.Meant(8, "q.x", 1), "0:6 ") << "behind a name is at it";
    EXPECT_EQ(texts.Meant(8, "from.x"), "1:4 ") << "through an array of a type";
    EXPECT_EQ(texts.Meant(8, "from.x", 5), "1:1 ");
    EXPECT_EQ(texts.Meant(9, "Red"), "0:4 ");
    EXPECT_EQ(texts.Meant(9, "z.x", 2), "1:1 ") << "of an unknown variable: all members of that name";
    EXPECT_EQ(texts.Meant(13, "Helper"), "1:7 ") << "not what only declares it";
    EXPECT_EQ(texts.Meant(2, "Draw"), "0:6 ");
    EXPECT_EQ(texts.Meant(1, "Point"), "1:0 ");
    EXPECT_EQ(texts.Meant(10, "\"x", 1), "no word");
    EXPECT_EQ(texts.Meant(8, "' x", 2), "no word");
    EXPECT_EQ(texts.Meant(7, "LOCAL"), "no word") << "a keyword";
    const std::optional<SymbolWord> include = SymbolWordAt(TwoTexts::Line(0), 12, Keldor());
    ASSERT_TRUE(include);
    EXPECT_TRUE(include->isInclude);
    EXPECT_EQ(include->name, "t.inc");
}

TEST(Definitions, ReferencesMeanTheSame) {
    const TwoTexts texts;
    const auto places = [&](const char* of, std::uint32_t declaredIn, std::uint32_t line, std::size_t text) {
        const SymbolTable& table = *texts.tables[declaredIn];
        std::string found;
        for (const std::uint32_t symbol : SymbolsNamed(table, of)) {
            if (table.symbols[symbol].line != line) continue;
            const char* source = text == 0 ? kMain : kInclude;
            for (const NamePlace& place : PlacesOfTarget(TargetOf(table, symbol), of,
                                                         PlacesOfName(source, of, Keldor(), 99), *texts.tables[text]))
                found += std::to_string(place.line) + ":" + std::to_string(place.column) + " ";
        }
        return found;
    };
    EXPECT_EQ(places("X", 0, 7, 0), "7:8 8:2 8:18 10:13 ") << "the local: in its procedure, not after a dot";
    EXPECT_EQ(places("x", 1, 6, 0), "13:2 ") << "the global: where no local hides it";
    EXPECT_EQ(places("x", 1, 6, 1), "6:7 ");
    EXPECT_EQ(places("x", 1, 1, 0), "8:8 8:26 9:4 9:23 ") << "the member: after dots";
    EXPECT_EQ(places("x", 1, 1, 1), "1:2 ") << "and its declaration";
    EXPECT_EQ(places("Red", 0, 4, 0), "4:2 9:15 ");
    const char* labels = "GOTO top\ntop:\nSUB A()\ntop:\nGOTO top\nEND SUB\nGOSUB top\n";
    const SymbolTable jumps = SymbolsOfText(labels, Keldor());
    const std::span<const std::uint32_t> tops = SymbolsNamed(jumps, "top");
    ASSERT_EQ(tops.size(), 2U);
    for (const auto& [label, lines] : {std::pair{tops[0], "0 1 6 "}, {tops[1], "3 4 "}}) {
        std::string found;
        for (const NamePlace& place :
             PlacesOfTarget(TargetOf(jumps, label), "top", PlacesOfName(labels, "top", Keldor(), 99), jumps))
            found += std::to_string(place.line) + " ";
        EXPECT_EQ(found, lines) << "a label, between the procedures and in one";
    }
    for (const char* name : {"newName", "n1", "\xC3\xA4rger"}) EXPECT_TRUE(IsNewName(name, "old", Keldor())) << name;
    for (const char* name : {"", "1a", "a b", "a$", "%a", "LOOP", "a.b", "a'", "\"a\"", "a\n"})
        EXPECT_FALSE(IsNewName(name, "old", Keldor())) << name;
    EXPECT_TRUE(IsNewName("%B", "%A", Keldor()));
    EXPECT_FALSE(IsNewName("B", "%A", Keldor()));
}

TEST(Definitions, PlacesOfIncludes) {
    const std::vector<std::wstring> folders = IncludeFolders(L" \"C:\\a b\" ;; D:\\inc\\");
    EXPECT_EQ(folders, (std::vector<std::wstring>{L"C:\\a b", L"D:\\inc\\"}));
    EXPECT_EQ(IncludePlaces(L"x/y.inc", L"C:\\p", folders),
              (std::vector<std::wstring>{L"C:\\p\\x\\y.inc", L"C:\\a b\\x\\y.inc", L"D:\\inc\\x\\y.inc"}));
    EXPECT_EQ(IncludePlaces(L"E:\\x.inc", L"C:\\p", folders), (std::vector<std::wstring>{L"E:\\x.inc"}));
}

TEST(Outline, RowsByPlaceByNameAndFiltered) {
    const SymbolTable table = SymbolsOfText(kMain, Keldor());
    const auto rows = [&table](const OutlineWish& wish) {
        std::wstring text;
        for (const ListRow& row : OutlineOf(table, wish).content.rows) text += row.cells[0] + row.cells[1] + L"|";
        return text;
    };
    EXPECT_EQ(rows({}), L"#t.inc|Gp|SDraw(q AS Point)|EColour|=    Red|SDraw(q AS Point)|SOther()|");
    EXPECT_EQ(rows({.byName = true}), L"EColour|SDraw(q AS Point)|SDraw(q AS Point)|SOther()|Gp|=Red|#t.inc|");
    EXPECT_EQ(rows({.filter = L"RE"}), L"=Red|");
    EXPECT_EQ(rows({.filter = L"zz"}), L"Nothing matches|");
    const Outline outline = OutlineOf(table, {});
    EXPECT_EQ(OutlineRowAtLine(table, outline, 9), 5) << "the procedure around the line";
    EXPECT_EQ(OutlineRowAtLine(table, outline, 4), 4);
    EXPECT_EQ(OutlineRowAtLine(table, OutlineOf(table, {.filter = L"Colour"}), 4), 0) << "what contains it";
    const auto best = [&table](const wchar_t* filter) {
        return OutlineBestRow(table, OutlineOf(table, {.filter = filter}), filter);
    };
    EXPECT_EQ(best(L"dr"), 1) << "the body, not the DECLARE";
    EXPECT_EQ(best(L"o"), 1) << "Other, which begins with it, not Colour";
    std::string many;
    for (std::size_t i = 0; i < kMostOutlineRows + 7; ++i) many += "%C" + std::to_string(i) + " = 1\n";
    const SymbolTable large = SymbolsOfText(many, Keldor());
    EXPECT_EQ(OutlineOf(large, {}).content.rows.back().cells[1], L"7 more; type to find them");
}

}  // namespace
