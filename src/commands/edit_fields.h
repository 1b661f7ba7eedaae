// Which Edit commands a window with the keyboard can carry out. Pure.
#pragma once

#include <cstdint>
#include <string_view>

enum class EditFieldKind : std::uint8_t {
    Line,   // an edit control, which has no redo
    Rich,   // a Rich Edit
    Rows,   // a list or the memory window: the selected row can be copied
    Other,  // takes no Edit command
};
EditFieldKind EditFieldKindOf(std::wstring_view windowClass);

struct EditField {
    EditFieldKind kind = EditFieldKind::Other;
    bool readOnly = false;
    bool hasSelection = false;
    bool canUndo = false, canRedo = false;
};
std::uint32_t EditConditionsOf(const EditField& field);  // CommandCondition bits
