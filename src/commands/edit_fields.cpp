// Edit commands of windows that are no editor. Must not know a window.
#include "commands/edit_fields.h"

#include "commands/command_table.h"

#include <string>

// Systems write the names of the classes with different letters.
EditFieldKind EditFieldKindOf(std::wstring_view windowClass) {
    std::wstring name(windowClass);
    for (wchar_t& c : name)
        if (c >= L'A' && c <= L'Z') c = static_cast<wchar_t>(c | 0x20);
    if (name.starts_with(L"richedit")) return EditFieldKind::Rich;
    if (name == L"edit") return EditFieldKind::Line;
    return name == L"syslistview32" || name == L"kvxedebugmemory" ? EditFieldKind::Rows : EditFieldKind::Other;
}

std::uint32_t EditConditionsOf(const EditField& field) {
    if (field.kind == EditFieldKind::Other) return 0;
    if (field.kind == EditFieldKind::Rows) return field.hasSelection ? static_cast<std::uint32_t>(kCanCopy) : 0;
    std::uint32_t conditions = kCanSelectAll;
    const auto add = [&](bool holds, CommandCondition condition) {
        conditions |= holds ? static_cast<std::uint32_t>(condition) : 0U;
    };
    add(field.hasSelection, kCanCopy);
    add(field.hasSelection && !field.readOnly, kCanCut);
    add(field.canUndo && !field.readOnly, kCanUndo);
    add(field.canRedo && !field.readOnly, kCanRedo);
    add(!field.readOnly, kCanPaste);
    return conditions;
}
