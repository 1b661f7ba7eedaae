// The names that the user has given to places of programs, by the file and the procedure that they belong to; their text
// in the file that keeps them; and the procedures of a source. Pure.
#pragma once

#include "debugger/named_places.h"
#include "language/symbols.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct NamedProcedure {
    std::wstring file;      // full path
    std::string procedure;  // "Twice", "Stack.Push"; empty: outside procedures
    NamedPlaces names;      // never empty
};
// The one that was changed last stands first.
using PlaceNames = std::vector<NamedProcedure>;
inline constexpr std::size_t kMostNamedProcedures = 2000, kMostNamesOfProcedure = 200;

const NamedProcedure* FindNamedProcedure(const PlaceNames& all, std::wstring_view file, std::string_view procedure);
// Replaces what the procedure has; without names it has none any more. The oldest go when there are too many.
void SetPlaceNames(PlaceNames* all, NamedProcedure made);
// A file, or a folder with files, has got another name. True when names belong to it.
bool MovePlaceNames(PlaceNames* all, std::wstring_view from, std::wstring_view to);

// A copy of a file takes the names of the file along, in place of those that it has. True when the file has some.
bool CopyPlaceNames(PlaceNames* all, std::wstring_view from, std::wstring_view to);

// Puts a name into the names of a procedure: in the place of the name `before`, or at the end when that is empty.
// Returns why it is refused, else an empty text.
std::wstring PutName(NamedPlaces* names, const NamedPlace& named, std::string_view before);

// --- The file
// Leaves out what it does not understand.
PlaceNames ReadPlaceNames(std::string_view utf8);
std::string PlaceNamesText(const PlaceNames& all);

// --- Procedures of a source
struct DeclaredVariable {
    std::string name;
    std::string type;  // as it is written, or a type suffix; empty: none
};
struct SourceProcedure {
    std::string name;
    std::uint32_t first = 0, last = 0;  // lines from 1
    std::vector<DeclaredVariable> variables;
};
std::vector<SourceProcedure> ProceduresOf(const SymbolTable& table);
const DeclaredVariable* FindVariable(const SourceProcedure& procedure, std::string_view name);  // null: none
// The first variable of the procedure that a line of it names; empty: there is none.
std::string VariableOfLine(const SourceProcedure& procedure, std::string_view line);
// A symbol that has got another name.
struct RenamedSymbol {
    std::string before, after;
    // The only procedure that knows it, as it is called now. Nothing: others may know it, too.
    std::optional<std::string> procedure;
};
// Takes over a renaming for the names of one file, of which `now` are the procedures after it. True when names changed.
bool RenameInPlaceNames(PlaceNames* all, std::wstring_view file, std::span<const SourceProcedure> now,
                        const RenamedSymbol& symbol);
// The innermost one around the line (from 1); null: none.
const SourceProcedure* ProcedureOfLine(std::span<const SourceProcedure> procedures, std::uint32_t line);
// Of the file, the last changed procedure with names that its source does not have any more; null: none.
const NamedProcedure* LostProcedure(const PlaceNames& all, std::wstring_view file,
                                    std::span<const SourceProcedure> procedures);
