// Rules of the kept names. Must not know a window, a process or where the file is.
#include "debugui/place_names.h"

#include "base/path.h"
#include "base/scan_text.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "debugger/expressions.h"

#include <algorithm>

namespace {

constexpr std::string_view kFile = "file ", kProcedure = "procedure";
constexpr std::string_view kHeader =
    "; Names that were given to places of programs while they were debugged, by source file and procedure.\r\n";

bool SameProcedure(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, UpperAscii, UpperAscii);
}

std::string_view LineOf(std::string_view* text) {
    const std::size_t end = text->find('\n');
    std::string_view line = text->substr(0, end);
    text->remove_prefix(end == std::string_view::npos ? text->size() : end + 1);
    while (!line.empty() && (line.back() == '\r' || IsBlank(line.back()))) line.remove_suffix(1);
    return WithoutLeadingBlanks(line);
}

// Puts a class before a method: two classes may have methods of one name.
std::string WholeName(const SymbolTable& table, const Symbol& symbol) {
    std::string name(SymbolName(table, symbol));
    for (std::uint32_t at = symbol.container; at != kNoSymbol; at = table.symbols[at].container)
        if (table.symbols[at].kind == SymbolKind::Class)
            name.insert(0, ".").insert(0, SymbolName(table, table.symbols[at]));
    return name;
}

// "Stack.Push" with the part that the symbol names.
std::string WithPartRenamed(std::string_view name, const RenamedSymbol& symbol) {
    std::string renamed;
    for (std::size_t at = 0; at <= name.size();) {
        const std::size_t dot = std::min(name.find('.', at), name.size());
        const std::string_view part = name.substr(at, dot - at);
        if (at > 0) renamed += '.';
        renamed += SameProcedure(part, symbol.before) ? std::string_view(symbol.after) : part;
        at = dot + 1;
    }
    return renamed;
}

bool RenamePlace(NamedPlaces* names, const RenamedSymbol& symbol) {
    const NamedPlace* const old = FindNamedPlace(*names, symbol.before);
    const NamedPlace* const taken = FindNamedPlace(*names, symbol.after);
    if (old == nullptr || (taken != nullptr && taken != old)) return false;
    (*names)[static_cast<std::size_t>(old - names->data())].name = symbol.after;
    return true;
}

}  // namespace

const NamedProcedure* FindNamedProcedure(const PlaceNames& all, std::wstring_view file, std::string_view procedure) {
    const auto found = std::ranges::find_if(all, [&](const NamedProcedure& each) {
        return SameProcedure(each.procedure, procedure) && PathEqualsIgnoreCase(each.file, file);
    });
    return found == all.end() ? nullptr : &*found;
}

void SetPlaceNames(PlaceNames* all, NamedProcedure made) {
    if (const NamedProcedure* old = FindNamedProcedure(*all, made.file, made.procedure); old != nullptr)
        all->erase(all->begin() + (old - all->data()));
    if (made.names.empty()) return;
    all->insert(all->begin(), std::move(made));
    if (all->size() > kMostNamedProcedures) all->resize(kMostNamedProcedures);
}

bool MovePlaceNames(PlaceNames* all, std::wstring_view from, std::wstring_view to) {
    bool moved = false;
    for (NamedProcedure& each : *all) {
        std::wstring path = PathAfterMove(each.file, from, to);
        moved = moved || path != each.file;
        each.file = std::move(path);
    }
    return moved;
}

bool CopyPlaceNames(PlaceNames* all, std::wstring_view from, std::wstring_view to) {
    PlaceNames copies;
    for (const NamedProcedure& each : *all)
        if (PathEqualsIgnoreCase(each.file, from)) copies.push_back(each);
    if (copies.empty()) return false;
    std::erase_if(*all, [to](const NamedProcedure& each) { return PathEqualsIgnoreCase(each.file, to); });
    for (auto each = copies.rbegin(); each != copies.rend(); ++each) {
        each->file = to;
        SetPlaceNames(all, std::move(*each));
    }
    return true;
}

std::wstring PutName(NamedPlaces* names, const NamedPlace& named, std::string_view before) {
    const NamedPlace* const old = before.empty() ? nullptr : FindNamedPlace(*names, before);
    const NamedPlace* const same = FindNamedPlace(*names, named.name);
    if (same != nullptr && same != old)
        return TextWith(L"{1} has a place already: {2}", {Utf8ToWideText(same->name), Utf8ToWideText(same->place)});
    if (old != nullptr) {
        (*names)[static_cast<std::size_t>(old - names->data())] = named;
        return {};
    }
    if (names->size() >= kMostNamesOfProcedure) return Text(L"This procedure has as many names as it can.");
    names->push_back(named);
    return {};
}

PlaceNames ReadPlaceNames(std::string_view utf8) {
    PlaceNames all;
    NamedProcedure made;
    const auto keep = [&] {
        const bool known = made.file.empty() || FindNamedProcedure(all, made.file, made.procedure) != nullptr;
        if (!known && !made.names.empty() && all.size() < kMostNamedProcedures) all.push_back(made);
        made.names.clear();
    };
    if (utf8.starts_with("\xEF\xBB\xBF")) utf8.remove_prefix(3);
    while (!utf8.empty()) {
        const std::string_view line = LineOf(&utf8);
        if (IsNamedDefinition(line)) {
            const NamedInput input = NamedPlaceOf(line, WatchKind::Long, {});
            if (input.problem.empty()) PutName(&made.names, input.named, {});
        } else if (line.starts_with(kFile)) {
            keep();
            made = {.file = Utf8ToWideText(line.substr(kFile.size())), .procedure = {}, .names = {}};
        } else if (line.starts_with(kProcedure)) {
            keep();
            made.procedure = WithoutLeadingBlanks(line.substr(kProcedure.size()));
        }
    }
    keep();
    return all;
}

std::string PlaceNamesText(const PlaceNames& all) {
    std::string text(kHeader);
    for (const NamedProcedure& each : all) {
        text += std::string(kFile) + ToUtf8(each.file) + "\r\n" + std::string(kProcedure);
        text += (each.procedure.empty() ? "" : " " + each.procedure) + "\r\n";
        for (const NamedPlace& named : each.names) text += "  " + NamedPlaceText(named) + "\r\n";
    }
    return text;
}

const DeclaredVariable* FindVariable(const SourceProcedure& procedure, std::string_view name) {
    for (const DeclaredVariable& variable : procedure.variables)
        if (CompareNames(variable.name, WithoutTypeSuffix(name)) == 0) return &variable;
    return nullptr;
}

std::string VariableOfLine(const SourceProcedure& procedure, std::string_view line) {
    while (!line.empty()) {
        const std::string_view name = NameAtStart(line);
        if (!name.empty() && FindVariable(procedure, name) != nullptr) return std::string(name);
        line.remove_prefix(name.empty() ? 1 : name.size());
    }
    return {};
}

std::vector<SourceProcedure> ProceduresOf(const SymbolTable& table) {
    std::vector<SourceProcedure> procedures;
    for (std::uint32_t at = 0; at < table.symbols.size(); ++at) {
        const Symbol& symbol = table.symbols[at];
        if (!IsProcedure(symbol.kind) || symbol.Is(kSymbolDeclare)) continue;
        SourceProcedure made = {
            .name = WholeName(table, symbol), .first = symbol.line + 1, .last = symbol.endLine + 1, .variables = {}};
        for (std::uint32_t inside = at + 1; inside < symbol.next; ++inside) {
            const Symbol& variable = table.symbols[inside];
            if ((variable.kind != SymbolKind::Local && variable.kind != SymbolKind::Parameter) ||
                variable.container != at)
                continue;
            made.variables.push_back(
                {std::string(SymbolName(table, variable)), std::string(SymbolType(table, variable))});
        }
        procedures.push_back(std::move(made));
    }
    return procedures;
}

bool RenameInPlaceNames(PlaceNames* all, std::wstring_view file, std::span<const SourceProcedure> now,
                        const RenamedSymbol& symbol) {
    const auto procedureOf = [&](std::string_view name) {
        const auto found =
            std::ranges::find_if(now, [&](const SourceProcedure& one) { return SameProcedure(one.name, name); });
        return found == now.end() ? nullptr : &*found;
    };
    bool renamed = false;
    for (NamedProcedure& each : *all) {
        if (!PathEqualsIgnoreCase(each.file, file)) continue;
        if (const std::string name = WithPartRenamed(each.procedure, symbol);
            name != each.procedure && procedureOf(each.procedure) == nullptr && procedureOf(name) != nullptr) {
            each.procedure = name;
            renamed = true;
        }
        if (symbol.procedure && !SameProcedure(each.procedure, *symbol.procedure)) continue;
        // A variable of that name which the procedure still has is another one.
        const SourceProcedure* const own = procedureOf(each.procedure);
        const auto isOld = [&](const DeclaredVariable& one) { return SameProcedure(one.name, symbol.before); };
        if (own != nullptr && std::ranges::any_of(own->variables, isOld)) continue;
        renamed = RenamePlace(&each.names, symbol) || renamed;
    }
    return renamed;
}

const SourceProcedure* ProcedureOfLine(std::span<const SourceProcedure> procedures, std::uint32_t line) {
    const SourceProcedure* found = nullptr;
    for (const SourceProcedure& each : procedures)
        if (each.first <= line && line <= each.last && (found == nullptr || each.first >= found->first)) found = &each;
    return found;
}

const NamedProcedure* LostProcedure(const PlaceNames& all, std::wstring_view file,
                                    std::span<const SourceProcedure> procedures) {
    for (const NamedProcedure& each : all) {
        if (each.procedure.empty() || !PathEqualsIgnoreCase(each.file, file)) continue;
        const bool there = std::ranges::any_of(
            procedures, [&](const SourceProcedure& one) { return SameProcedure(one.name, each.procedure); });
        if (!there) return &each;
    }
    return nullptr;
}
