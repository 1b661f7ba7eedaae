// Keys that were put off while a debugged program started. UI thread only.
#include "app/main_window.h"
#include "commands/command_table.h"
#include "documents/documents_state.h"
#include "resources/ids.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <vector>

namespace {

struct KeyHeld {
    bool control = false;
    bool shift = false;
    bool alt = false;
    bool operator==(const KeyHeld&) const = default;
};

int CommandOfAccelerator(std::uint32_t key, KeyHeld held) {
    HACCEL table = LoadAcceleratorsW(g_ui.hInstance, MAKEINTRESOURCEW(IDR_ACCELERATORS));
    const int count = table != nullptr ? CopyAcceleratorTableW(table, nullptr, 0) : 0;
    std::vector<ACCEL> rows(static_cast<std::size_t>(count));
    if (count > 0) CopyAcceleratorTableW(table, rows.data(), count);
    const auto row = std::ranges::find_if(rows, [&](const ACCEL& one) {
        const KeyHeld wanted = {(one.fVirt & FCONTROL) != 0, (one.fVirt & FSHIFT) != 0, (one.fVirt & FALT) != 0};
        return (one.fVirt & FVIRTKEY) != 0 && one.key == key && wanted == held;
    });
    return row != rows.end() ? row->cmd : 0;
}

}  // namespace

void MainWnd_OnLateKey(std::uint32_t key, LPARAM bits) {
    const KeyHeld held = {(bits & LATE_KEY_CONTROL) != 0, (bits & LATE_KEY_SHIFT) != 0, (bits & LATE_KEY_ALT) != 0};
    int command = CommandOfAccelerator(key, held);
    if (command == 0)
        command = CommandOfExtraKey(key, held.control, held.shift, held.alt, GetFocus() == g_documents.hEditor);
    if (command != 0)
        SendMessageW(g_ui.hMainWnd, WM_COMMAND, MAKEWPARAM(command, 1), 0);
    else if (held == KeyHeld{} && GetFocus() != nullptr)  // with a modifier it would mean something else by now
        SendMessageW(GetFocus(), WM_KEYDOWN, key, 1);
}
