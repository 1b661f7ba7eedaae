// Any bytes as a BASIC source. Its symbols are the same scanned in pieces of any size, their bodies are nested, and the
// index of names finds each of them.
#include "language/symbol_pieces.h"
#include "settings/compiler_id.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

// So that a short input reaches the rules: a byte above 0x7F stands for words that they know.
std::string Expanded(std::string_view bytes) {
    constexpr std::string_view kWords[] = {"SUB a\n",
                                           "FUNCTION f",
                                           "END SUB\n",
                                           "END FUNCTION\n",
                                           "(BYVAL x AS LONG)",
                                           "TYPE t\n",
                                           "END TYPE\n",
                                           "UNION\n",
                                           "END UNION",
                                           "ENUM e\n",
                                           "END ENUM",
                                           "CLASS c\n",
                                           "END CLASS\n",
                                           "METHOD m",
                                           "END METHOD",
                                           "PROPERTY GET p",
                                           "INTERFACE ",
                                           "MACRO ",
                                           "END MACRO",
                                           "NAMESPACE n\n",
                                           "LOCAL ",
                                           "GLOBAL a()",
                                           "DIM b(1 TO ",
                                           " AS STRING * 4",
                                           "CONST k = ",
                                           "\n%E = 1",
                                           "l:\n",
                                           "asm\n",
                                           "END ASM\n",
                                           " _\n",
                                           ": ",
                                           "\n",
                                           "#INCLUDE \"",
                                           "! m:\n",
                                           "/'",
                                           "'/",
                                           "DECLARE ",
                                           "CALLBACK ",
                                           "OPTIONAL ",
                                           "IF x THEN "};
    std::string text;
    for (const char c : bytes)
        if (static_cast<std::uint8_t>(c) < 0x80)
            text += c;
        else
            text += kWords[static_cast<std::uint8_t>(c) % std::size(kWords)];
    return text;
}

void RequireEqual(const SymbolTable& a, const SymbolTable& b) {
    Require(a.symbols.size() == b.symbols.size() && a.lines == b.lines && a.byName == b.byName);
    for (std::size_t i = 0; i < a.symbols.size(); ++i) {
        const Symbol &x = a.symbols[i], &y = b.symbols[i];
        Require(x.kind == y.kind && x.flags == y.flags && x.line == y.line && x.column == y.column);
        Require(x.endLine == y.endLine && x.container == y.container && x.next == y.next);
        Require(SymbolName(a, x) == SymbolName(b, y) && SymbolType(a, x) == SymbolType(b, y));
        Require(SymbolDetail(a, x) == SymbolDetail(b, y));
    }
}

void RequireNested(const SymbolTable& table) {
    for (std::uint32_t i = 0; i < table.symbols.size(); ++i) {
        const Symbol& symbol = table.symbols[i];
        Require(symbol.next > i && symbol.next <= table.symbols.size() && symbol.endLine >= symbol.line);
        Require(symbol.endLine < std::max(table.lines, 1U));
        if (symbol.container == kNoSymbol) continue;
        Require(symbol.container < i && symbol.next <= table.symbols[symbol.container].next);
    }
    for (const std::uint32_t i : table.byName) {
        const auto same = SymbolsNamed(table, SymbolName(table, table.symbols[i]));
        Require(std::ranges::find(same, i) != same.end());
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 4096) return 0;
    const std::string text = Expanded({reinterpret_cast<const char*>(data), size});
    for (const std::uint32_t compiler : {kCompilerKeldorBasic, kCompilerKvxc64}) {
        const SymbolTable whole = SymbolsOfText(text, DialectOf(compiler));
        RequireNested(whole);
        for (const std::size_t bytes : {std::size_t{1}, std::size_t{40}})
            RequireEqual(JoinSymbols(ScanPieces(text, 0, DialectOf(compiler), true, bytes)), whole);
    }
    return 0;
}
