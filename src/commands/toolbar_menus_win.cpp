// The menus below the toolbar's buttons, and the pictures for buttons and menus. UI thread.
#include "commands/toolbar_internal.h"

#include "base/handles.h"
#include "commands/command_state.h"
#include "commands/toolbar.h"
#include "compile/build_source.h"
#include "resources/ids.h"
#include "settings/compiler_presence.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"
#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/menu.h"
#include "ui/paint.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <vector>

namespace {

constexpr int kMenuPicture = 16;  // at 96 dpi

// The main window is the owner, because it handles WM_INITMENUPOPUP and sets the states of the commands there.
void ShowMenuBelow(HWND bar, const RECT& button, std::span<const MenuItem> items, UINT side) {
    POINT at = {side == TPM_RIGHTALIGN ? button.right : button.left, button.bottom};
    ClientToScreen(bar, &at);
    const UINT chosen = ShowPopupMenu(g_ui.hMainWnd, items, at, side | TPM_TOPALIGN);
    if (chosen != 0) PostMessageW(g_ui.hMainWnd, WM_COMMAND, chosen, 0);
}

}  // namespace

IconInks ToolbarInksNow(bool enabled) {
    return SystemHighContrast() ? HighContrastInks(ThemeUsedSystem().colours, enabled)
                                : ToolbarInks(ThemeIsDark(), enabled);
}

HBITMAP ToolbarPicture(Icon icon, int size, const IconInks& inks, PictureUse use) {
    std::vector<std::uint32_t> pixels = RenderIcon(icon, size, inks);
    // An image list multiplies the colours by the opacity itself; a menu takes them multiplied.
    if (use == PictureUse::Menu) std::ranges::transform(pixels, pixels.begin(), PremultipliedPixel);
    std::uint32_t* bits = nullptr;
    UniqueBitmap bitmap = PixelsNew(size, size, &bits);
    if (bitmap) std::ranges::copy(pixels, bits);
    return bitmap.Release();
}

std::wstring ToolbarCompilerText() {
    const std::uint32_t id = CompilerNow();
    return CompilerLabel(id, CompilerSeemsInstalled(id));
}

static std::vector<CompilerMenuRow> CompilerRowsNow() {
    return CompilerMenuRows(static_cast<int>(CompilerNow()), g_settings.profile,
                            CommandStateOf(IDM_BUILD_ALL, CurrentCommandView()).enabled, CompilerSeemsInstalled);
}

static std::vector<MenuItem> ItemsOf(const std::vector<CompilerMenuRow>& rows) {
    std::vector<MenuItem> items;
    for (const CompilerMenuRow& row : rows)
        items.push_back({.id = static_cast<UINT>(row.command),
                         .text = row.text.c_str(),
                         .enabled = row.enabled,
                         .checked = row.checked});
    return items;
}

void ToolbarShowCompilerMenu(HWND bar, const RECT& button) {
    const std::vector<CompilerMenuRow> rows = CompilerRowsNow();
    ShowMenuBelow(bar, button, ItemsOf(rows), TPM_LEFTALIGN);
}

void ToolbarShowCompilersAt(POINT screen) {
    const std::vector<CompilerMenuRow> rows = CompilerRowsNow();
    const UINT chosen = ShowPopupMenu(g_ui.hMainWnd, ItemsOf(rows), screen, TPM_LEFTALIGN | TPM_BOTTOMALIGN);
    if (chosen != 0) PostMessageW(g_ui.hMainWnd, WM_COMMAND, chosen, 0);
}

void ToolbarShowHiddenMenu(HWND bar, const RECT& button, std::span<const HiddenButton> buttons) {
    // The states are set when it opens, as in every menu.
    const IconInks inks = ToolbarInksNow(true);
    std::vector<UniqueBitmap> pictures;
    std::vector<std::wstring> texts;
    for (const HiddenButton& hidden : buttons) {
        texts.push_back(hidden.text);
        pictures.emplace_back();
        // A command with a check mark gets no picture, because the mark takes its place.
        if (hidden.command != 0 && !hidden.showsState)
            pictures.back().Reset(ToolbarPicture(hidden.icon, UiScaled(kMenuPicture), inks, PictureUse::Menu));
    }
    std::vector<MenuItem> items;
    for (std::size_t i = 0; i < buttons.size(); ++i)
        items.push_back(
            {.id = static_cast<UINT>(buttons[i].command), .text = texts[i].c_str(), .picture = pictures[i].Get()});
    ShowMenuBelow(bar, button, items, TPM_RIGHTALIGN);
}
