// Rows of the locals view. Must not know a process or a window.
#include "debugui/pane_locals.h"

#include "base/texts.h"
#include "base/utf8.h"

#include <utility>

namespace {

std::wstring NamesCount(std::size_t count) {
    return count == 1 ? Text(L"name") : TextWith(L"{1} names", {std::to_wstring(count)});
}

ListRow NamedRow(const NamedPlace& named, const LocalsNow& now, LocalValues* values) {
    bool problem = false;
    const std::wstring value = now.read(named, &problem);
    ListRow row;
    row.cells = {Utf8ToWideText(named.name), WatchKindName(named.kind), Utf8ToWideText(named.place), value};
    if (problem) row.tone = ListTone::Problem;
    const auto before = values->before.find(named.name);
    if (before != values->before.end() && before->second != value && !problem) row.changed = 1U << kLocalValue;
    if (!problem) values->now[named.name] = value;
    return row;
}

ListRow DeclaredRow(const DeclaredVariable& variable, bool x64) {
    const auto kind = WatchKindOfType(variable.type);
    return {.cells = {Utf8ToWideText(variable.name), kind ? WatchKindName(*kind) : Utf8ToWideText(variable.type), L"?",
                      TextWith(L"Type its place, such as {1}-4", {FramePointerName(x64)})},
            .tone = ListTone::Quiet};
}

}  // namespace

LocalRows LocalRowsOf(const LocalsNow& now, LocalValues* values) {
    if (values->owner != now.owner) *values = {.serial = now.serial, .owner = now.owner, .now = {}, .before = {}};
    if (values->serial != now.serial) values->before = std::exchange(values->now, {});
    values->serial = now.serial;
    LocalRows made;
    const auto add = [&made](ListRow row, LocalMeaning meaning, std::size_t index) {
        made.rows.push_back(std::move(row));
        made.meanings.push_back({.meaning = meaning, .index = index});
    };
    add({.cells = {now.heading}, .tone = ListTone::Source}, LocalMeaning::Heading, 0);
    // A variable keeps its row when it gets a place.
    std::vector<bool> shown(now.names.size());
    const auto addNamed = [&](std::size_t index) {
        shown[index] = true;
        add(NamedRow(now.names[index], now, values), LocalMeaning::Named, index);
    };
    for (std::size_t i = 0; i < now.variables.size(); ++i) {
        const NamedPlace* const named = FindNamedPlace(now.names, now.variables[i].name);
        if (named == nullptr)
            add(DeclaredRow(now.variables[i], now.x64), LocalMeaning::Declared, i);
        else
            addNamed(static_cast<std::size_t>(named - now.names.data()));
    }
    for (std::size_t i = 0; i < now.names.size(); ++i)
        if (!shown[i]) addNamed(i);
    if (now.lost != nullptr && now.names.empty())
        add({.cells = {TextWith(L"Take over the {1} of {2}, which is no longer in this file",
                                {NamesCount(now.lost->names.size()), Utf8ToWideText(now.lost->procedure)})},
             .tone = ListTone::Source},
            LocalMeaning::Lost, 0);
    add({.cells = {TextWith(L"Type a name and its place here: i = {1}-4, LONG", {FramePointerName(now.x64)})},
         .tone = ListTone::Source},
        LocalMeaning::New, 0);
    return made;
}

LocalAction LocalActionOf(LocalMeaning meaning, int column) {
    switch (meaning) {
        case LocalMeaning::Heading: return LocalAction::None;
        case LocalMeaning::Declared: return LocalAction::EditPlace;
        case LocalMeaning::Lost: return LocalAction::TakeOver;
        case LocalMeaning::New: return LocalAction::EditDefinition;
        case LocalMeaning::Named: break;
    }
    switch (column) {
        case kLocalName: return LocalAction::EditName;
        case kLocalKind: return LocalAction::ChooseKind;
        case kLocalPlace: return LocalAction::EditPlace;
        default: return LocalAction::EditValue;
    }
}
