// The menus below the toolbar's buttons, and the pictures of both. UI thread only.
#include "commands/toolbar_internal.h"

#include "base/handles.h"
#include "base/wide_format.h"
#include "commands/command_state.h"
#include "resources/ids.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"
#include "ui/ui_state.h"

#include <cstring>
#include <vector>

namespace {

void ShowBelow(HWND bar, const RECT& button, HMENU menu, UINT side) {
    POINT at = {side == TPM_RIGHTALIGN ? button.right : button.left, button.bottom};
    ClientToScreen(bar, &at);
    TrackPopupMenu(menu, side | TPM_TOPALIGN, at.x, at.y, 0, g_ui.hMainWnd, nullptr);
    DestroyMenu(menu);
}

// "Save (Ctrl+S)" -> "Save\tCtrl+S".
std::wstring MenuTextOfTip(std::wstring tip) {
    const std::size_t key = tip.rfind(L" (");
    if (key == std::wstring::npos || !tip.ends_with(L')')) return tip;
    tip.pop_back();
    return tip.replace(key, 2, L"\t");
}

void AppendButton(HMENU menu, const HiddenButton& button, HBITMAP picture) {
    const std::wstring text = MenuTextOfTip(button.tip);
    const UINT id = static_cast<UINT>(button.command);
    AppendMenuW(menu, MF_STRING, id, text.c_str());
    if (button.showsState || picture == nullptr) return;  // its check mark stands where a picture would
    MENUITEMINFOW item = {};
    item.cbSize = sizeof(item);
    item.fMask = MIIM_BITMAP;
    item.hbmpItem = picture;
    SetMenuItemInfoW(menu, id, FALSE, &item);
}

}  // namespace

IconInks ToolbarInks(bool dark, bool enabled) {
    if (!enabled) {
        const std::uint32_t grey = dark ? 0x5C6068 : 0xB4BAC6;
        const std::uint32_t fill = dark ? 0x2A2D33 : 0xF1F3F9;
        return {.line = grey, .accent = grey, .go = grey, .stop = grey, .fill = fill};
    }
    if (dark) return {.line = 0xC8CCD4, .accent = 0x6CB2F5, .go = 0x6CC77A, .stop = 0xF07470, .fill = 0x33373E};
    return {.line = 0x4A5468, .accent = 0x1F6FD0, .go = 0x238A3A, .stop = 0xCC3A33, .fill = 0xFFFFFF};
}

HBITMAP ToolbarPicture(Icon icon, int size, const IconInks& inks) {
    const std::vector<std::uint32_t> pixels = RenderIcon(icon, size, inks);
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = size;
    info.bmiHeader.biHeight = -size;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (bitmap != nullptr) std::memcpy(bits, pixels.data(), pixels.size() * sizeof(pixels[0]));
    return bitmap;
}

std::wstring ToolbarCompilerText() {
    const auto id = static_cast<std::uint32_t>(g_settings.activeCompiler);
    return FormatW(CompilerExists(id) ? L"%s" : L"%s (not found)", CompilerName(id));
}

void ToolbarShowCompilerMenu(HWND bar, const RECT& button) {
    HMENU menu = CreatePopupMenu();
    for (std::uint32_t id = 0; id < kCompilerCount; ++id) {
        const std::wstring text = FormatW(CompilerExists(id) ? L"%s" : L"%s (not found)", CompilerName(id));
        const UINT checked = static_cast<int>(id) == g_settings.activeCompiler ? MF_CHECKED : MF_UNCHECKED;
        AppendMenuW(menu, MF_STRING | checked, static_cast<UINT_PTR>(CompilerEntry(id).command), text.c_str());
    }
    AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    constexpr struct {
        int command;
        const wchar_t* text;
    } kProfiles[] = {{IDM_PROFILE_DEBUG, L"Profile: Debug"},
                     {IDM_PROFILE_RELEASE, L"Profile: Release"},
                     {IDM_PROFILE_FAST, L"Profile: Fast"}};
    for (const auto& profile : kProfiles) {
        const bool checked = profile.command - IDM_PROFILE_DEBUG == g_settings.profile;
        AppendMenuW(menu, MF_STRING | (checked ? MF_CHECKED : MF_UNCHECKED), static_cast<UINT_PTR>(profile.command),
                    profile.text);
    }
    AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    const bool canBuild = CommandStateOf(IDM_BUILD_ALL, CurrentCommandView()).enabled;
    AppendMenuW(menu, MF_STRING | (canBuild ? MF_ENABLED : MF_GRAYED), IDM_BUILD_ALL, L"Build All Open Sources");
    ShowBelow(bar, button, menu, TPM_LEFTALIGN);
}

void ToolbarShowHiddenMenu(HWND bar, const RECT& button, std::span<const HiddenButton> buttons) {
    HMENU menu = CreatePopupMenu();
    if (menu == nullptr) return;
    // A menu is light in either theme. Its states come when it opens, as those of every other menu.
    const IconInks inks = ToolbarInks(false, true);
    std::vector<UniqueBitmap> pictures;
    for (const HiddenButton& hidden : buttons) {
        if (hidden.command == 0) {
            AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
            continue;
        }
        pictures.emplace_back(ToolbarPicture(hidden.icon, GetSystemMetrics(SM_CXMENUCHECK), inks));
        AppendButton(menu, hidden, pictures.back().Get());
    }
    ShowBelow(bar, button, menu, TPM_RIGHTALIGN);
}
