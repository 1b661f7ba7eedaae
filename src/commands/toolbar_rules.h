// What the toolbar shows: which buttons have room, their tips and the colours of their pictures. Pure.
#pragma once

#include "commands/icons.h"
#include "commands/toolbar_table.h"
#include "settings/compiler_table.h"
#include "ui/high_contrast.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// A button for which there is no room.
struct HiddenButton {
    int command = 0;  // 0: a gap between groups
    Icon icon = Icon::New;
    bool showsState = false;  // has a check mark
    std::wstring text;        // of a menu item: "Save\tCtrl+S"
};

struct ToolbarShare {
    std::vector<bool> shown;           // for each row but the last, which is the button for the hidden ones
    bool more = false;                 // that button is shown
    std::vector<HiddenButton> hidden;  // in the order of the rows, with a gap between groups
};

// `rows` ends with the button for the hidden ones. `width` gives a row's width; `room` is that of the bar. Pixels.
ToolbarShare ShareToolbar(std::span<const ButtonRow> rows, std::uint32_t conditions, int room,
                          const std::function<int(const ButtonRow&)>& width,
                          const std::function<std::wstring(const ButtonRow&)>& text);

// A tooltip from a menu text: "Save A&ll\tCtrl+Shift+S" -> "Save All (Ctrl+Shift+S)". Removes dots at the end of the
// name. `key` is shown when the text names none; it may be empty.
std::wstring CommandTip(std::wstring_view menuText, std::wstring_view key);
// The same as an item of another menu: "Save All\tCtrl+Shift+S".
std::wstring CommandItem(std::wstring_view menuText, std::wstring_view key);

IconInks ToolbarInks(bool dark, bool enabled);
// In the high-contrast mode the pictures have the one colour in which the system writes on its buttons.
IconInks HighContrastInks(const SystemColours& colours, bool enabled);

// The menu of the compiler button.
struct CompilerMenuRow {
    int command = 0;  // 0: a separator
    std::wstring text;
    bool enabled = true;
    bool checked = false;
};
std::vector<CompilerMenuRow> CompilerMenuRows(int activeCompiler, int profile, bool canBuildAll,
                                              const CompilerProbe& installed);
