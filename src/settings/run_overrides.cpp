#include "settings/run_overrides.h"

void OverrideCompiler(RunOverrides& overrides, Settings& settings, std::int32_t compiler) {
    if (!overrides.compiler) overrides.storedCompiler = settings.activeCompiler;
    overrides.compiler = true;
    overrides.usedCompiler = settings.activeCompiler = compiler;
}

void OverrideFont(RunOverrides& overrides, Settings& settings, std::wstring_view face) {
    if (!overrides.font) SafeCopyW(overrides.storedFont, settings.fontName);
    overrides.font = true;
    SafeCopyW(settings.fontName, face);
    SafeCopyW(overrides.usedFont, settings.fontName);
}

void OverrideFontSize(RunOverrides& overrides, Settings& settings, std::int32_t points) {
    if (!overrides.fontSize) overrides.storedFontSize = settings.fontSize;
    overrides.fontSize = true;
    overrides.usedFontSize = settings.fontSize = points;
}

void RestoreStored(const RunOverrides& overrides, Settings& settings) {
    if (overrides.compiler && settings.activeCompiler == overrides.usedCompiler)
        settings.activeCompiler = overrides.storedCompiler;
    if (overrides.fontSize && settings.fontSize == overrides.usedFontSize) settings.fontSize = overrides.storedFontSize;
    if (overrides.font && std::wstring_view(settings.fontName) == overrides.usedFont)
        SafeCopyW(settings.fontName, overrides.storedFont);
}

void EndChangedOverrides(RunOverrides& overrides, const Settings& settings) {
    if (settings.activeCompiler != overrides.usedCompiler) overrides.compiler = false;
    if (settings.fontSize != overrides.usedFontSize) overrides.fontSize = false;
    if (std::wstring_view(settings.fontName) != overrides.usedFont) overrides.font = false;
}
