#include "ui/panes.h"

#include "base/events.h"
#include "settings/settings_state.h"
#include "ui/ui_state.h"

#include <algorithm>

namespace {

std::span<const PaneSpec> g_panes;  // empty without a frame, as in tests of one area

const PaneSpec* FindPane(PaneId id) {
    const auto row = std::ranges::find(g_panes, id, &PaneSpec::id);
    return row == g_panes.end() ? nullptr : &*row;
}

bool OwnsWindow(const PaneSpec& pane, HWND window) {
    if (*pane.window == nullptr) return false;
    if (window == *pane.window || IsChild(*pane.window, window) != FALSE) return true;
    return pane.parts != nullptr &&
           std::ranges::any_of(pane.parts({}), [window](const PanePart& part) { return part.window == window; });
}

}  // namespace

void PanesConnect(std::span<const PaneSpec> rows) { g_panes = rows; }

std::span<const PaneSpec> Panes() { return g_panes; }

bool PaneIsShown(PaneId id) {
    const PaneSpec* pane = FindPane(id);
    if (pane != nullptr && pane->setting != nullptr) return g_settings.*pane->setting != 0;
    return (g_ui.panesShown & PaneBit(id)) != 0;
}

std::uint32_t PanesShown() {
    std::uint32_t shown = 0;
    for (const PaneSpec& pane : g_panes) shown |= PaneIsShown(pane.id) ? PaneBit(pane.id) : 0U;
    return shown;
}

void PaneSetShown(PaneId id, bool shown) {
    const PaneSpec* pane = FindPane(id);
    if (pane != nullptr && pane->setting != nullptr)
        SettingsChange([pane, shown](Settings& settings) { settings.*pane->setting = shown ? 1 : 0; });
    else
        g_ui.panesShown = shown ? g_ui.panesShown | PaneBit(id) : g_ui.panesShown & ~PaneBit(id);
}

void PaneShow(PaneId id, bool shown) {
    const bool opened = shown && !PaneIsShown(id);
    PaneSetShown(id, shown);
    g_events.layoutWanted();
    const PaneSpec* pane = FindPane(id);
    if (opened && pane != nullptr && pane->onShown != nullptr) pane->onShown();
}

const PaneSpec* PaneOfCommand(int command) {
    if (command == 0) return nullptr;
    const auto row = std::ranges::find(g_panes, command, &PaneSpec::command);
    return row == g_panes.end() ? nullptr : &*row;
}

const PaneSpec* PaneOfWindow(HWND window) {
    if (window == nullptr) return nullptr;
    const auto row = std::ranges::find_if(g_panes, [window](const PaneSpec& pane) { return OwnsWindow(pane, window); });
    return row == g_panes.end() ? nullptr : &*row;
}

void PanesRestore() {
    const auto shown = static_cast<std::uint32_t>(g_settings.panesShown);
    for (const PaneSpec& pane : g_panes) {
        if (!pane.comesBack || (shown & PaneBit(pane.id)) == 0) continue;
        if (pane.setting != nullptr)
            g_settings.*pane.setting = 1;
        else
            g_ui.panesShown |= PaneBit(pane.id);
    }
    if (g_settings.errorListSize > 0) g_settings.errorListHeight = g_settings.errorListSize;
}

void PanesRemember() {
    std::uint32_t shown = 0;
    for (const PaneSpec& pane : g_panes)
        if (pane.comesBack && PaneIsShown(pane.id)) shown |= PaneBit(pane.id);
    g_settings.panesShown = static_cast<std::int32_t>(shown);
    g_settings.errorListSize = g_settings.errorListHeight;
}
