// The locals view as rows: the variables that the source of the procedure declares, with their values when they have a
// place, and the other names of the procedure. Pure.
#pragma once

#include "debugui/place_names.h"
#include "ui/list_rows.h"

#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <vector>

enum LocalColumn : int { kLocalName, kLocalKind, kLocalPlace, kLocalValue };
enum class LocalMeaning : std::uint8_t {
    Heading,
    Named,
    Declared,  // a variable without a place
    Lost,      // offers the names of a procedure that is gone
    New,       // to type a definition into
};
struct LocalRow {
    LocalMeaning meaning = LocalMeaning::Heading;
    std::size_t index = 0;  // Named: of the name; Declared: of the variable
};

// The values as they were shown at the last two stops in a procedure, by name.
struct LocalValues {
    std::uint64_t serial = 0;  // of the stop
    std::wstring owner;        // file and procedure
    std::map<std::string, std::wstring> now, before;
};

struct LocalsNow {
    std::uint64_t serial = 0;
    std::wstring owner;
    std::wstring heading;
    bool x64 = true;  // of the program
    std::span<const NamedPlace> names;
    std::span<const DeclaredVariable> variables;
    const NamedProcedure* lost = nullptr;  // null: none
    // The value of a name as text, or why there is none.
    std::function<std::wstring(const NamedPlace& named, bool* problem)> read;
};
struct LocalRows {
    std::vector<ListRow> rows;
    std::vector<LocalRow> meanings;  // of each row
};
LocalRows LocalRowsOf(const LocalsNow& now, LocalValues* values);

// What Enter (column -1) or a double click on a column does.
enum class LocalAction : std::uint8_t { None, EditName, ChooseKind, EditPlace, EditValue, EditDefinition, TakeOver };
LocalAction LocalActionOf(LocalMeaning meaning, int column);
