#include "commands/edit_target.h"

#include "ai/ai_state.h"
#include "commands/edit_fields.h"
#include "compile/compile_state.h"
#include "debugui/debugui_state.h"
#include "disasm/disasm_state.h"
#include "output/output_state.h"
#include "resources/ids.h"

#include <commctrl.h>
#include <richedit.h>

#include <cwchar>
#include <iterator>

namespace {

EditField FieldOf(HWND window) {
    wchar_t name[32] = {};
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    EditField field = {.kind = EditFieldKindOf(name)};
    if (field.kind == EditFieldKind::Rows)
        field.hasSelection = _wcsicmp(name, WC_LISTVIEWW) != 0 || ListView_GetSelectedCount(window) > 0;
    if (field.kind == EditFieldKind::Rows || field.kind == EditFieldKind::Other) return field;
    field.readOnly = (GetWindowLongW(window, GWL_STYLE) & ES_READONLY) != 0;
    field.canUndo = SendMessageW(window, EM_CANUNDO, 0, 0) != 0;
    DWORD from = 0;
    DWORD to = 0;
    if (field.kind == EditFieldKind::Rich) {
        CHARRANGE range = {};
        SendMessageW(window, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&range));
        from = static_cast<DWORD>(range.cpMin);
        to = static_cast<DWORD>(range.cpMax);
        field.canRedo = SendMessageW(window, EM_CANREDO, 0, 0) != 0;
    } else {
        SendMessageW(window, EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
    }
    field.hasSelection = from != to;
    return field;
}

}  // namespace

HWND EditTargetNow() {
    const HWND focus = GetFocus();
    if (focus == nullptr) return nullptr;
    for (const HWND field :
         {g_output.hOutput, g_output.hErrorList, g_disasm.hAsmPane, g_ai.hAiChat, g_ai.hAiInput, g_compile.hTerminal})
        if (focus == field) return field;
    return IsChild(g_debugUi.hDebugPane, focus) ? focus : nullptr;
}

std::uint32_t EditTargetConditions(HWND target) { return EditConditionsOf(FieldOf(target)); }

void EditTargetDo(HWND target, int command) {
    switch (command) {
        case IDM_EDIT_UNDO: SendMessageW(target, WM_UNDO, 0, 0); break;
        case IDM_EDIT_REDO: SendMessageW(target, EM_REDO, 0, 0); break;
        case IDM_EDIT_CUT: SendMessageW(target, WM_CUT, 0, 0); break;
        case IDM_EDIT_COPY: SendMessageW(target, WM_COPY, 0, 0); break;
        case IDM_EDIT_PASTE: SendMessageW(target, WM_PASTE, 0, 0); break;
        case IDM_EDIT_SELECT_ALL: SendMessageW(target, EM_SETSEL, 0, -1); break;
        default: break;
    }
}
