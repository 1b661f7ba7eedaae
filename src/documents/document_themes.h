// The theme and the [Editor] settings of all open documents. UI thread only.
#pragma once

// SyntaxThemeApply (editor/theme.h) for every document.
void SyntaxThemeApplyAll();

// Applies the theme and the [Editor] settings to every open document.
void SettingsApplyToEditor();
