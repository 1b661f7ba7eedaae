// Names that the user has given to places of the program's memory, because the compilers write no names of variables:
// "i = RBP-4, LONG". What they are worth in a stopped frame, in expressions and in conditions. Pure.
#pragma once

#include "debugger/expressions.h"
#include "debugger/watch_value.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct NamedPlace {
    std::string name;   // ASCII or UTF-8, as it was typed
    std::string place;  // an address, as the debug pane takes it: "RBP-4", "[RBP+16]"
    WatchKind kind = WatchKind::Long;
    bool operator==(const NamedPlace&) const = default;
};
using NamedPlaces = std::vector<NamedPlace>;  // of one procedure, in the order in which they were given

// In any letter case; null: there is none.
const NamedPlace* FindNamedPlace(std::span<const NamedPlace> names, std::string_view name);

// --- What a person types
enum class NamedField : std::uint8_t { None, Name, Place, Kind };
struct NamedInput {
    NamedPlace named;
    NamedField field = NamedField::None;  // the one that is wrong
    std::wstring problem;                 // empty: all is right
};
std::wstring PlaceNameProblem(std::string_view name);
// `x64`: of the program; nothing: not known, and either kind's registers will do.
std::wstring PlaceProblem(std::string_view place, std::optional<bool> x64);
// What the brackets around a whole place mean, because assemblers mean the place itself by them; empty: there are none.
std::wstring PlaceNotice(std::string_view place);
// "LONG", "asciiz"; nothing for any other text.
std::optional<WatchKind> WatchKindNamed(std::string_view text);
// The kind of a variable that is declared AS this, or has this type suffix.
std::optional<WatchKind> WatchKindOfType(std::string_view type);
// True for "i = ...", which gives a name, but not for "i == 1".
bool IsNamedDefinition(std::string_view text);
// "i = RBP-4, LONG". Without a kind it becomes `kind`.
NamedInput NamedPlaceOf(std::string_view text, WatchKind kind, std::optional<bool> x64);
std::string NamedPlaceText(const NamedPlace& named);  // "i = RBP-4, LONG"

// --- In a stopped frame
// The spans and references must outlive the scope.
struct NameScope {
    std::span<const NamedPlace> names;
    const RegisterSet& registers;
    const ProgramMemory& memory;
};
// Where the named place is. For the kind Value, what its expression comes to.
Evaluation AddressOfName(const NamedPlace& named, const NameScope& scope);
// Whether a name occurs in the text outside quotation marks.
bool MentionsName(std::string_view text, std::span<const NamedPlace> names);
// EvaluatePaneExpression, where names of whole numbers are their values and VARPTR(name) is the place.
Evaluation EvaluateWithNames(std::string_view text, const NameScope& scope);
// A condition that mentions a name: comparisons (>= <= <> != == = > <), joined by AND and OR, of whole numbers with
// their sign, of other numbers, and of texts in quotation marks. Without a comparison a number other than 0 holds.
struct NamedVerdict {
    bool holds = true;     // also when there is a problem, so that the program stops and shows it
    std::wstring problem;  // empty: it could be told
};
NamedVerdict NamedConditionHolds(std::string_view condition, const NameScope& scope);
// What cannot be told in any part of it, also in those that the values of this moment leave undecided; empty: nothing.
std::wstring NamedConditionProblem(std::string_view condition, const NameScope& scope);
