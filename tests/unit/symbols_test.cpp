// The symbols of a text, whole and after edits.
#include "language/symbol_pieces.h"

#include "settings/compiler_id.h"
#include "support/dialect_sources.h"
#include "support/golden_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

constexpr const char* kKinds[] = {"SUB",       "FUNCTION", "METHOD", "PROPERTY GET", "PROPERTY SET", "FASTPROC",
                                  "MACRO",     "TYPE",     "UNION",  "ENUM",         "CLASS",        "INTERFACE",
                                  "NAMESPACE", "member",   "value",  "constant",     "global",       "local",
                                  "parameter", "label",    "include"};
static_assert(std::size(kKinds) == static_cast<std::size_t>(SymbolKind::Count));

// One line for each symbol, indented by its containers: kind, name, type, detail, flags, place.
std::string Shown(const SymbolTable& table) {
    std::string shown;
    for (std::uint32_t i = 0; i < table.symbols.size(); ++i) {
        const Symbol& symbol = table.symbols[i];
        for (std::uint32_t c = symbol.container; c != kNoSymbol; c = table.symbols[c].container) shown += "  ";
        shown.append(kKinds[static_cast<int>(symbol.kind)]).append(" ").append(SymbolName(table, symbol));
        if (symbol.Is(kSymbolArray)) shown += "()";
        if (symbol.typeLength != 0) shown.append(" AS ").append(SymbolType(table, symbol));
        if (symbol.detailLength != 0) shown.append(" {").append(SymbolDetail(table, symbol)).append("}");
        static constexpr const char* kFlags[] = {"DECLARE", "BYVAL",  "BYREF",    "OPTIONAL",
                                                 "",        "STATIC", "CALLBACK", "asm"};
        for (int bit = 0; bit < 8; ++bit)
            if (symbol.Is(static_cast<std::uint8_t>(1 << bit)) && (1 << bit) != kSymbolArray)
                shown.append(" ").append(kFlags[bit]);
        shown.append("  ")
            .append(std::to_string(symbol.line + 1))
            .append(":")
            .append(std::to_string(symbol.column + 1));
        if (symbol.endLine != symbol.line) shown.append("-").append(std::to_string(symbol.endLine + 1));
        shown += "\n";
    }
    return shown;
}

TEST(Symbols, GoldenFiles) {
    ExpectGolden("symbols.txt", Shown(SymbolsOfText(GoldenText("symbols.bas"), DialectOf(kDefaultCompiler))));
    for (const DialectSource& source : kDialectSources)
        ExpectGolden(std::string(source.name) + ".symbols",
                     Shown(SymbolsOfText(GoldenText(source.name), DialectOf(source.compiler))));
}

TEST(Symbols, WhatANameMeans) {
    const std::string text =
        "GLOBAL x AS LONG\nDECLARE SUB Go(a AS LONG)\nSUB Go(a AS LONG)\nLOCAL x AS BYTE\nhere:\n"
        "END SUB\nFUNCTION X2()\nhere:\nEND FUNCTION\nTYPE T\nx AS WORD\nEND TYPE\n%x = 1\n"
        "CLASS C\nINSTANCE n AS LONG\nMETHOD M()\nEND METHOD\nEND CLASS\n"
        "GLOBAL list() AS LONG\nSUB Fill\nDIM list(9), other(9)\nEND SUB\n";
    const SymbolTable table = SymbolsOfText(text, DialectOf(kDefaultCompiler));
    const auto meant = [&table](std::uint32_t line, std::string_view name) {
        std::string lines;
        for (const std::uint32_t i : SymbolsMeantAt(table, line, name))
            lines += (lines.empty() ? "" : " ") + std::to_string(table.symbols[i].line);
        return lines;
    };
    EXPECT_EQ(meant(4, "X"), "3") << "the local one";
    EXPECT_EQ(meant(7, "x"), "0") << "the global one, not the member of the TYPE";
    EXPECT_EQ(meant(4, "go"), "2 1") << "with its body first";
    EXPECT_EQ(meant(4, "HERE"), "4");
    EXPECT_EQ(meant(7, "here"), "7");
    EXPECT_EQ(meant(9, "here"), "");
    EXPECT_EQ(meant(0, "%X"), "12");
    EXPECT_EQ(meant(15, "n"), "14");
    EXPECT_EQ(meant(4, "n"), "");
    EXPECT_EQ(meant(20, "list"), "18") << "DIM gives it bounds";
    EXPECT_EQ(meant(20, "other"), "20");
    EXPECT_EQ(SymbolsWithPrefix(table, "X").size(), 4u);
    EXPECT_EQ(SymbolsNamed(table, "").size(), 0u);
    const auto nameAt = [&table](std::uint32_t line) {
        const std::uint32_t i = SymbolAtLine(table, line);
        return i == kNoSymbol ? "" : std::string(SymbolName(table, table.symbols[i]));
    };
    EXPECT_EQ(nameAt(3), "Go");
    EXPECT_EQ(nameAt(4), "here");
    EXPECT_EQ(nameAt(10), "x");
    EXPECT_EQ(nameAt(11), "T");
    EXPECT_EQ(nameAt(22), "");
    EXPECT_EQ(nameAt(0), "x");
}

TEST(Symbols, NamesThatBeginAlikeAreInOrder) {
    const std::string many(70, 'n');
    const SymbolTable table =
        SymbolsOfText("GLOBAL longNameB, LongName, longnameA2, longNamea, " + many + "2, " + many + "1 AS LONG\n",
                      DialectOf(kDefaultCompiler));
    std::string names;
    for (const std::uint32_t i : table.byName) names += std::string(SymbolName(table, table.symbols[i])) + " ";
    EXPECT_EQ(names, "LongName longNamea longnameA2 longNameB " + many + "1 " + many + "2 ");
}

// --- After edits

struct EditedText {
    std::vector<std::string> lines;  // with their breaks
    SymbolPieces pieces;

    std::string From(std::size_t line, std::size_t count) const {
        std::string text;
        for (std::size_t i = line; i < std::min(lines.size(), line + count); ++i) text += lines[i];
        return text;
    }
};

// Scans what is unknown, at most `most` lines at a time. Returns the number of bytes that were scanned.
std::size_t ScanUnknown(EditedText& text, const Dialect& dialect, std::uint32_t most, std::size_t pieceBytes) {
    std::size_t bytes = 0;
    for (std::uint32_t take = most;;) {
        const LinesToScan wanted = PiecesNext(text.pieces, static_cast<std::uint32_t>(text.lines.size()));
        if (wanted.done) return bytes;
        const std::size_t left = text.lines.size() - std::min<std::size_t>(wanted.first, text.lines.size());
        const std::size_t lines = std::min<std::size_t>({take, left, wanted.lines == 0 ? left : wanted.lines});
        const std::string part = text.From(wanted.first, lines);
        const bool whole = lines == wanted.lines || lines == left;
        const auto scanned = ScanPieces(part, wanted.before, dialect, lines == left, pieceBytes);
        PiecesLearn(text.pieces, wanted, scanned, whole);
        take = scanned.empty() ? take * 2 : most;
        bytes += part.size();
    }
}

TEST(Symbols, AfterEditsEqualTheWhole) {
    const char* const pieces[] = {"SUB a(b AS LONG, _",
                                  "END SUB",
                                  "TYPE t",
                                  "x AS LONG",
                                  "END TYPE",
                                  "MACRO m(x) = x",
                                  "LOCAL y, z AS BYTE",
                                  "/'",
                                  "'/",
                                  "ASM",
                                  "END ASM",
                                  "x = 1 _",
                                  "c AS LONG)",
                                  "CLASS k",
                                  "METHOD o",
                                  "END METHOD",
                                  "UNION",
                                  "END CLASS",
                                  "ENUM e",
                                  "v = 1 : w",
                                  "END ENUM",
                                  "%C = 5",
                                  "lbl:",
                                  "",
                                  "END FUNCTION",
                                  "FUNCTION f()",
                                  "DIM q$(4)",
                                  "MACRO n(p)",
                                  "END MACRO",
                                  "INTERFACE i"};
    unsigned seed = 11;
    const auto random = [&seed](std::size_t below) {
        seed = seed * 1664525u + 1013904223u;
        return (seed >> 8) % below;
    };
    const Dialect& dialect = DialectOf(kCompilerKvxc64);
    EditedText text;
    for (int round = 0; round < 3000; ++round) {
        const std::size_t first = random(text.lines.size() + 1);
        const std::size_t removed = random(std::min<std::size_t>(text.lines.size() - first, 4) + 1);
        const std::size_t added = random(5);
        const auto at = text.lines.begin() + static_cast<std::ptrdiff_t>(first);
        text.lines.erase(at, at + static_cast<std::ptrdiff_t>(removed));
        for (std::size_t i = 0; i < added; ++i)
            text.lines.insert(text.lines.begin() + static_cast<std::ptrdiff_t>(first),
                              pieces[random(std::size(pieces))] + std::string("\n"));
        // As an editor tells it: what is removed, then what is added.
        PiecesForget(text.pieces, static_cast<std::uint32_t>(first), -static_cast<std::int64_t>(removed));
        PiecesForget(text.pieces, static_cast<std::uint32_t>(first), static_cast<std::int64_t>(added));
        if (random(3) == 0) continue;  // several edits between two scans
        ScanUnknown(text, dialect, static_cast<std::uint32_t>(1 + random(20)), 1 + random(200));
        const std::string whole = Shown(SymbolsOfText(text.From(0, text.lines.size()), dialect));
        ASSERT_EQ(Shown(JoinSymbols(PiecesToJoin(text.pieces))), whole) << round;
        if (text.lines.size() > 120) text = {};
    }
}

TEST(Symbols, AnEditScansItsSurroundingsOnly) {
    EditedText text;
    for (int i = 0; i < 20000; ++i) {
        text.lines.push_back("SUB p" + std::to_string(i) + "(a AS LONG)\n");
        text.lines.push_back("    LOCAL b AS LONG\n");
        text.lines.push_back("END SUB\n");
    }
    const Dialect& dialect = DialectOf(kDefaultCompiler);
    ScanUnknown(text, dialect, 1 << 20, kSymbolPieceBytes);
    const auto edit = [&](std::size_t line, const char* now) {
        text.lines[line] = now;
        PiecesForget(text.pieces, static_cast<std::uint32_t>(line), 0);
        return ScanUnknown(text, dialect, 1 << 20, kSymbolPieceBytes);
    };
    EXPECT_LT(edit(30001, "    LOCAL c AS LONG\n"), 40000u);
    EXPECT_LT(edit(30002, "\n"), 80000u) << "the next heading ends the procedure";
    EXPECT_LT(edit(30001, "    x = 1 _\n"), 80000u);
}

}  // namespace
