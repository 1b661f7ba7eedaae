// Export, import and reset of the settings dialog. UI thread only.
#include "settingsui/settings_dialog_internal.h"

#include "base/system_error.h"
#include "base/texts.h"
#include "settings/settings_state.h"
#include "settings/settings_store.h"
#include "ui/message.h"
#include "ui/path_dialog.h"

#include <algorithm>

namespace {

bool AskIniPath(const SettingsDialog& dialog, bool save, std::wstring& path) {
    return AskFilePath(
        {.owner = dialog.window, .filter = English(L"INI Files (*.ini)\0*.ini\0"), .extension = L"ini", .save = save},
        path);
}

void TellFailure(const wchar_t* caption, const wchar_t* text, DWORD error) {
    const std::wstring reason =
        error == ERROR_INVALID_DATA ? Text(L"The file holds no setting of this editor.") : SystemErrorText(error);
    TellUser(caption, (std::wstring{text} + (reason.empty() ? L"" : L"\n\n") + reason).c_str(), AskIcon::Error);
}

}  // namespace

void SettingsDialogExport(const SettingsDialog& dialog) {
    std::wstring path;
    if (!AskIniPath(dialog, true, path)) return;
    SettingsSave(nullptr);  // the file that is copied may lack what has changed without a save
    if (!SettingsExport(path.c_str())) return TellFailure(Text(L"Export"), Text(L"Export failed."), GetLastError());
    std::wstring text = Text(L"Settings exported successfully.");
    if (g_settings.openAIKey[0] != L'\0' || g_settings.lmStudioKey[0] != L'\0')
        text += Text(L"\n\nThe file holds the AI keys, protected: only this Windows account can read them.");
    if (FormIsEdited(dialog.form)) text += Text(L"\n\nWhat was changed here and not applied yet is not in it.");
    TellUser(Text(L"Export"), text.c_str(), AskIcon::Information);
}

void SettingsDialogImport(SettingsDialog& dialog) {
    constexpr std::size_t kMostNamed = 12;
    std::wstring path;
    if (!AskIniPath(dialog, false, path)) return;
    std::vector<std::wstring> strange;
    if (!SettingsImport(path.c_str(), &strange))
        return TellFailure(Text(L"Import"), Text(L"Import failed."), GetLastError());
    FormRenew(dialog.form, g_settings);
    SettingsShowAllTexts(dialog);
    SettingsApplyEnable(dialog);
    std::wstring text = Text(L"Settings imported successfully. Restart dialog to see changes.");
    if (!strange.empty()) text += Text(L"\n\nNot understood, so your own settings stay:");
    for (std::size_t i = 0; i < std::min(strange.size(), kMostNamed); ++i) text += L"\n" + strange[i].substr(0, 80);
    if (strange.size() > kMostNamed)
        text += TextWith(L"\nand {1} more", {std::to_wstring(strange.size() - kMostNamed)});
    if (FormIsEdited(dialog.form)) text += Text(L"\n\nWhat was changed here and not applied yet stays as you left it.");
    TellUser(Text(L"Import"), text.c_str(), strange.empty() ? AskIcon::Information : AskIcon::Warning);
}

void SettingsDialogReset(const SettingsDialog& dialog) {
    if (AskUser({.caption = Text(L"Reset All Settings"),
                 .text = Text(
                     L"Reset ALL settings to factory defaults?\n\nThis will clear all compiler paths, AI keys, and "
                     L"preferences."),
                 .buttons = AskButtons::YesNo,
                 .icon = AskIcon::Warning,
                 .inSelftest = Answer::No,
                 .enterIsNo = true,
                 .loses = Answer::Yes}) != Answer::Yes)
        return;
    SettingsResetAll();
    EndDialog(dialog.window, IDOK);
    TellUser(Text(L"Reset Complete"), Text(L"Settings reset. Please restart the editor."), AskIcon::Information);
}
