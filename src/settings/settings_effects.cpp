#include "settings/settings_effects.h"

#include <cwchar>
#include <span>

namespace {

using Number = std::int32_t Settings::*;

constexpr Number kEditorNumbers[] = {
    &Settings::fontSize,         &Settings::showWhitespace, &Settings::wordWrap,         &Settings::editorZoom,
    &Settings::tabWidth,         &Settings::useTabs,        &Settings::showLineNumbers,  &Settings::edgeColumn,
    &Settings::showIndentGuides, &Settings::showEdgeLine,   &Settings::showChangeMargin, &Settings::enableVirtualSpace,
};
constexpr Number kLookNumbers[] = {&Settings::theme, &Settings::editorStylePreset};
constexpr Number kLayoutNumbers[] = {
    &Settings::showToolbar,   &Settings::showStatusbar,   &Settings::showTerminal,    &Settings::showErrorList,
    &Settings::showAiSidebar, &Settings::aiSidebarWidth,  &Settings::showProjectTree, &Settings::projectTreeWidth,
    &Settings::splitter,      &Settings::errorListHeight,
};

bool AnyDiffers(std::span<const Number> fields, const Settings& a, const Settings& b) {
    for (const Number field : fields)
        if (a.*field != b.*field) return true;
    return false;
}

bool ColoursDiffer(const Settings& a, const Settings& b) {
    for (int i = 0; i < kColorOverrides; ++i)
        if (a.colors[i] != b.colors[i]) return true;
    return false;
}

}  // namespace

SettingsEffects SettingsEffectsOf(const Settings& before, const Settings& now) {
    const bool look = AnyDiffers(kLookNumbers, before, now);
    return {.editors = look || AnyDiffers(kEditorNumbers, before, now) || ColoursDiffer(before, now) ||
                       std::wcscmp(before.fontName, now.fontName) != 0,
            .frame = look || before.outputFontSize != now.outputFontSize ||
                     std::wcscmp(before.outputFont, now.outputFont) != 0,
            .layout = AnyDiffers(kLayoutNumbers, before, now),
            .compiler = before.activeCompiler != now.activeCompiler};
}
