// Collects and orders what fits at a place. Pure.
#include "completion/completion_rows.h"

#include "base/scan_text.h"
#include "base/words.h"
#include "language/asm_words.h"
#include "language/builtins.h"

#include <algorithm>
#include <unordered_set>

namespace {

constexpr std::size_t kMostOfTable = 300;  // names of one text
constexpr std::size_t kMostLooks = 8192;   // at names of one text that may fit by their humps
constexpr std::size_t kMostInside = 4096;  // looks at the symbols of one procedure or type

// How near a candidate is; smaller is likelier.
// The words of the place stand before the names of included files, because one large include
// would bury PRINT.
enum Nearness : std::uint8_t { kOwn, kOfClass, kOfDocument, kNearby, kFirstWords, kSnippets, kIncluded, kSecondWords };

struct Collecting {
    const CompletionContext& context;
    const CompletionSources& sources;
    std::vector<CompletionRow> rows;
    std::unordered_set<std::string> seen;  // names in upper case
};

std::string UpperName(std::string_view name) {
    std::string upper(name);
    for (char& c : upper) c = UpperAscii(c);
    return upper;
}

bool IsFull(const Collecting& collecting) { return collecting.rows.size() >= kMostCompletionRows * 2; }

// Whether the name fits and was not offered yet.
bool Offer(Collecting& collecting, std::string_view name, RowKind kind, std::uint8_t nearness) {
    const NameFit fit = FitOfName(collecting.context.prefix, name);
    if (fit == NameFit::None || name.empty() || !collecting.seen.insert(UpperName(name)).second) return false;
    collecting.rows.push_back({.text = std::string(name), .kind = kind, .nearness = nearness, .fit = fit});
    return true;
}

RowKind KindOfSymbol(const Symbol& symbol) {
    switch (symbol.kind) {
        case SymbolKind::Macro: return RowKind::Macro;
        case SymbolKind::Type:
        case SymbolKind::Union:
        case SymbolKind::Enum:
        case SymbolKind::Class:
        case SymbolKind::Interface:
        case SymbolKind::Namespace: return RowKind::Type;
        case SymbolKind::Member:
        case SymbolKind::Method:
        case SymbolKind::Property:
        case SymbolKind::PropertySet: return RowKind::Member;
        case SymbolKind::EnumValue:
        case SymbolKind::Constant: return RowKind::Constant;
        case SymbolKind::Local:
        case SymbolKind::Parameter: return RowKind::Local;
        case SymbolKind::Label: return RowKind::Label;
        case SymbolKind::Global: return RowKind::Variable;
        default: return RowKind::Procedure;
    }
}

void OfferSymbol(Collecting& collecting, const SymbolTable& table, std::uint32_t index, std::uint8_t nearness) {
    const Symbol& symbol = table.symbols[index];
    if (!Offer(collecting, SymbolName(table, symbol), KindOfSymbol(symbol), nearness)) return;
    collecting.rows.back().table = &table;
    collecting.rows.back().symbol = index;
}

bool IsNamedType(SymbolKind kind) { return kind >= SymbolKind::Type && kind <= SymbolKind::Interface; }

// Whether a symbol outside procedures can stand at the place.
bool Suits(CompletionPlace place, SymbolKind kind) {
    switch (place) {
        case CompletionPlace::Type: return IsNamedType(kind);
        case CompletionPlace::Label: return kind == SymbolKind::Label;
        default:
            return kind != SymbolKind::Label && kind != SymbolKind::Type && kind != SymbolKind::Union &&
                   kind != SymbolKind::Interface;
    }
}

// --- Names of texts

void OfferOwn(Collecting& collecting, const SymbolTable& table, std::uint32_t line) {
    const std::uint32_t procedure = ProcedureAtLine(table, line);
    if (procedure == kNoSymbol) return;
    const bool labels = collecting.context.place == CompletionPlace::Label;
    const bool operand = collecting.context.place == CompletionPlace::Operand;
    const std::size_t end = std::min<std::size_t>(table.symbols[procedure].next, procedure + 1 + kMostInside);
    for (auto i = procedure + 1; i < end; ++i) {
        const bool label = table.symbols[i].kind == SymbolKind::Label;
        if (label == labels || (label && operand)) OfferSymbol(collecting, table, i, kOwn);
    }
    const std::uint32_t object =
        SymbolAround(table, procedure, [](const Symbol& symbol) { return symbol.kind == SymbolKind::Class; });
    if (object == kNoSymbol || labels) return;
    const std::size_t last = std::min<std::size_t>(table.symbols[object].next, object + 1 + kMostInside);
    for (auto i = object + 1; i < last; ++i)
        if (table.symbols[i].kind == SymbolKind::Member && table.symbols[i].container == object)
            OfferSymbol(collecting, table, i, kOfClass);
}

void OfferOutside(Collecting& collecting, const SymbolTable& table, std::uint8_t nearness) {
    const std::string& prefix = collecting.context.prefix;
    const std::size_t most = std::min(kMostCompletionRows * 2, collecting.rows.size() + kMostOfTable);
    const auto offer = [&](std::span<const std::uint32_t> found) {
        std::size_t looks = kMostLooks;
        for (const std::uint32_t index : found) {
            if (collecting.rows.size() >= most || looks-- == 0) return;
            if (Suits(collecting.context.place, table.symbols[index].kind))
                OfferSymbol(collecting, table, index, nearness);
        }
    };
    offer(OutsideWithPrefix(table, prefix));
    // Those that fit by their humps begin with the same letter.
    const std::size_t marks = prefix.size() - CompletionLetters(prefix);
    if (prefix.size() >= marks + 2) offer(OutsideWithPrefix(table, prefix.substr(0, marks + 1)));
}

bool IsMemberKind(SymbolKind kind) {
    return kind == SymbolKind::Member || kind == SymbolKind::EnumValue ||
           (kind >= SymbolKind::Method && kind <= SymbolKind::PropertySet);
}

void OfferMembersOf(Collecting& collecting, const SymbolPlace& type) {
    const SymbolTable& table = *collecting.sources.tables[type.text];
    const Symbol& around = table.symbols[type.symbol];
    const bool names = around.kind == SymbolKind::Namespace;
    // The members of a class are those of its interfaces.
    const std::size_t end = std::min<std::size_t>(around.next, type.symbol + 1 + kMostInside);
    for (auto i = type.symbol + 1; i < end; ++i) {
        const Symbol& symbol = table.symbols[i];
        const bool inside = symbol.container == type.symbol || around.kind == SymbolKind::Class;
        if (inside && (IsMemberKind(symbol.kind) || names)) OfferSymbol(collecting, table, i, kOwn);
    }
}

std::vector<SymbolPlace> TypesBeforeDot(const CompletionContext& context, const CompletionSources& sources) {
    if (context.qualifier.empty() || sources.tables.empty()) return {};
    std::vector<SymbolPlace> near = TypesOfQualifier(context.qualifier, sources.lines[0], sources.tables);
    if (sources.lines.size() < 2) return near;
    // What stands around the caret knows the latest names, but not those of a long procedure that begins above it.
    const SymbolTable& around = *sources.tables[0];
    const std::vector<std::uint32_t> meant = SymbolsMeantAt(around, sources.lines[0], context.qualifier[0]);
    if (!meant.empty() && around.symbols[meant[0]].kind != SymbolKind::Global && !near.empty()) return near;
    std::vector<SymbolPlace> found = TypesOfQualifier(context.qualifier, sources.lines[1], sources.tables.subspan(1));
    for (SymbolPlace& place : found) ++place.text;
    return found.empty() ? near : found;
}

void OfferMembers(Collecting& collecting) {
    const std::vector<SymbolPlace> types = TypesBeforeDot(collecting.context, collecting.sources);
    for (const SymbolPlace& type : types) OfferMembersOf(collecting, type);
    if (!types.empty() || collecting.context.prefix.empty()) return;
    // Of a type that is not known: every member that begins so.
    for (const auto& table : collecting.sources.tables) {
        std::size_t looks = kMostLooks;
        for (const std::uint32_t index : SymbolsWithPrefix(*table, collecting.context.prefix)) {
            if (IsFull(collecting) || looks-- == 0) break;
            if (IsMemberKind(table->symbols[index].kind)) OfferSymbol(collecting, *table, index, kIncluded);
        }
    }
}

void OfferNames(Collecting& collecting) {
    const CompletionSources& sources = collecting.sources;
    for (std::size_t text = 0; text < sources.tables.size() && text < sources.lines.size(); ++text)
        OfferOwn(collecting, *sources.tables[text], sources.lines[text]);
    for (std::size_t text = 0; text < sources.tables.size(); ++text)
        OfferOutside(collecting, *sources.tables[text], text < sources.lines.size() ? kOfDocument : kIncluded);
    if (collecting.context.place == CompletionPlace::Type || collecting.context.place == CompletionPlace::Label) return;
    // What the document declares was offered, or belongs to another procedure.
    const auto declared = [&sources](const std::string& name) {
        return std::ranges::any_of(sources.tables.first(std::min(sources.tables.size(), sources.lines.size())),
                                   [&name](const auto& table) { return !SymbolsNamed(*table, name).empty(); });
    };
    for (const std::string& name : sources.names)
        if (!declared(name)) Offer(collecting, name, RowKind::Name, kNearby);
}

// --- Words

// LEFT$ for "left": the words of a dialect are without their suffix.
std::string NameOfFunction(std::string_view word, const Dialect& dialect) {
    const std::vector<const Builtin*> known = BuiltinsNamed(word, dialect);
    return std::string(known.empty() ? word : BuiltinName(*known.front()));
}

void OfferWords(Collecting& collecting, std::string_view words, RowKind kind, std::uint8_t nearness) {
    const bool assembly = kind == RowKind::Instruction || kind == RowKind::Register;
    ForEachWord(words, [&](std::string_view word) {
        const std::string& prefix = collecting.context.prefix;
        // All words begin in the same place, so that the spelling is made for those that fit only.
        if (CompareNames(word.substr(0, prefix.size()), prefix) != 0) return;
        const std::string name =
            kind == RowKind::Function ? NameOfFunction(word, *collecting.sources.dialect) : std::string(word);
        Offer(collecting, SpelledKeyword(name, prefix, collecting.sources.capitals && !assembly), kind, nearness);
    });
}

void OfferClass(Collecting& collecting, WordClass words, RowKind kind, std::uint8_t nearness) {
    OfferWords(collecting, WordsOf(words, *collecting.sources.dialect), kind, nearness);
}

void OfferSnippets(Collecting& collecting) {
    std::unordered_set<std::string> taken;
    for (const Snippet& snippet : collecting.sources.snippets) {
        if ((snippet.dialects & collecting.sources.dialect->words) == 0) continue;
        const NameFit fit = FitOfName(collecting.context.prefix, snippet.name);
        // The user's own takes the place of the program's of the same name.
        if ((fit != NameFit::Equal && fit != NameFit::Prefix) || !taken.insert(UpperName(snippet.name)).second)
            continue;
        collecting.rows.push_back({snippet.name, RowKind::Snippet, kSnippets, fit, &snippet, nullptr, 0});
    }
}

void OfferBlockWords(Collecting& collecting) {
    const BlockKind innermost = collecting.sources.innermost;
    if (innermost != BlockKind::Count && innermost != BlockKind::Condition) {
        const std::string_view closing = BlockRowOf(innermost).closing;
        if (closing.starts_with("END ")) OfferWords(collecting, closing.substr(4), RowKind::Keyword, kOwn);
    }
    OfferWords(
        collecting,
        "asm class do enum fastproc for function if interface macro method namespace property select sub try type "
        "union while with",
        RowKind::Keyword, kFirstWords);
}

void OfferForPlace(Collecting& collecting) {
    const CompletionPlace place = collecting.context.place;
    const bool marked = CompletionLetters(collecting.context.prefix) < collecting.context.prefix.size();
    switch (place) {
        case CompletionPlace::Nothing: return;
        case CompletionPlace::Member: return OfferMembers(collecting);
        case CompletionPlace::Directive: return OfferClass(collecting, WordClass::Preprocessor, RowKind::Keyword, kOwn);
        case CompletionPlace::BlockWord: return OfferBlockWords(collecting);
        case CompletionPlace::Parameter:
            return OfferWords(collecting, "bycopy byref byval optional", RowKind::Keyword, kOwn);
        case CompletionPlace::EntryName: return OfferClass(collecting, WordClass::Entry, RowKind::Keyword, kOwn);
        case CompletionPlace::AfterName:
            OfferWords(collecting, "as", RowKind::Keyword, kOwn);
            OfferClass(collecting, WordClass::Type, RowKind::BasicType, kFirstWords);
            return OfferClass(collecting, WordClass::Statement, RowKind::Keyword, kFirstWords);
        case CompletionPlace::Type:
            OfferNames(collecting);
            return OfferClass(collecting, WordClass::Type, RowKind::BasicType, kSecondWords);
        case CompletionPlace::Label: return OfferNames(collecting);
        case CompletionPlace::Instruction:
            for (const AsmClass kind : {AsmClass::Instruction, AsmClass::Math, AsmClass::Extended})
                OfferWords(collecting, AsmWordsOf(kind), RowKind::Instruction, kOwn);
            // MOV is wanted, not MODEL.
            return OfferWords(collecting, AsmWordsOf(AsmClass::Directive), RowKind::Instruction, kFirstWords);
        case CompletionPlace::Operand:
            OfferWords(collecting, AsmWordsOf(AsmClass::Register), RowKind::Register, kOwn);
            OfferWords(collecting, AsmWordsOf(AsmClass::Operand), RowKind::Instruction, kFirstWords);
            return OfferNames(collecting);
        default: break;
    }
    OfferNames(collecting);
    if (marked) return;
    const bool starts = place == CompletionPlace::Statement;
    OfferClass(collecting, WordClass::Statement, RowKind::Keyword, starts ? kFirstWords : kSecondWords);
    OfferClass(collecting, WordClass::Function, RowKind::Function, starts ? kSecondWords : kFirstWords);
    OfferClass(collecting, WordClass::Operator, RowKind::Keyword, kSecondWords);
    if (starts) OfferSnippets(collecting);
}

// --- Order

// Those of the accepted words that fit at all, because most do not.
std::vector<std::string_view> FittingAccepted(const CompletionContext& context, const CompletionSources& sources) {
    std::vector<std::string_view> fitting;
    // After END the block that is open counts, not the word that was taken last.
    if (sources.accepted == nullptr || context.place == CompletionPlace::BlockWord) return fitting;
    for (const std::string& name : *sources.accepted)
        if (FitOfName(context.prefix, name) != NameFit::None) fitting.push_back(name);
    return fitting;
}

std::size_t PlaceAmong(const CompletionRow& row, std::span<const std::string_view> accepted) {
    const auto same = [&row](std::string_view name) { return CompareNames(name, row.text) == 0; };
    return static_cast<std::size_t>(std::ranges::find_if(accepted, same) - accepted.begin());
}

void SortRows(std::vector<CompletionRow>& rows, const CompletionContext& context, const CompletionSources& sources) {
    using Key = std::array<std::size_t, 4>;  // fit, place among the accepted ones, nearness, letters
    std::vector<std::pair<Key, CompletionRow>> keyed;
    keyed.reserve(rows.size());
    const std::vector<std::string_view> accepted = FittingAccepted(context, sources);
    for (CompletionRow& row : rows) {
        const bool sameLetters = row.text.starts_with(context.prefix);
        const Key key = {static_cast<std::size_t>(row.fit), PlaceAmong(row, accepted), row.nearness,
                         sameLetters ? 0u : 1u};
        keyed.emplace_back(key, std::move(row));
    }
    std::ranges::stable_sort(keyed, [](const auto& a, const auto& b) {
        if (a.first != b.first) return a.first < b.first;
        return CompareNames(a.second.text, b.second.text) < 0;
    });
    rows.clear();
    for (auto& [key, row] : keyed) rows.push_back(std::move(row));
}

constexpr std::size_t kLongestDetail = 80;

std::string DetailOfSymbol(const SymbolTable& table, const Symbol& symbol) {
    std::string detail(SymbolDetail(table, symbol).substr(0, kLongestDetail));
    const std::string_view type = SymbolType(table, symbol);
    if (KindOfSymbol(symbol) == RowKind::Constant) return detail.empty() ? detail : "= " + detail;
    if (!type.empty()) detail.append(detail.empty() ? "AS " : " AS ").append(type);
    return detail;
}

}  // namespace

std::string CompletionDetail(const CompletionRow& row, const Dialect& dialect) {
    if (row.snippet != nullptr) return "snippet";
    if (row.table != nullptr) return DetailOfSymbol(*row.table, row.table->symbols[row.symbol]);
    if (row.kind != RowKind::Function) return {};
    std::string_view name = row.text;
    if (name.ends_with('$')) name.remove_suffix(1);
    const std::vector<const Builtin*> known = BuiltinsNamed(name, dialect);
    return known.empty() ? std::string() : std::string(known[0]->signature.substr(BuiltinName(*known[0]).size()));
}

std::vector<CompletionRow> CompletionRowsOf(const CompletionContext& context, const CompletionSources& sources) {
    Collecting collecting{.context = context, .sources = sources, .rows = {}, .seen = {}};
    OfferForPlace(collecting);
    SortRows(collecting.rows, context, sources);
    if (collecting.rows.size() > kMostCompletionRows) collecting.rows.resize(kMostCompletionRows);
    return std::move(collecting.rows);
}
