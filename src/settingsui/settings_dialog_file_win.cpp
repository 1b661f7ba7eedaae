// Export, import and reset of the settings dialog. UI thread only.
#include "settingsui/settings_dialog_internal.h"

#include "base/system_error.h"
#include "settings/settings_state.h"
#include "settings/settings_store.h"
#include "ui/message.h"
#include "ui/path_dialog.h"

#include <algorithm>

namespace {

bool AskIniPath(const SettingsDialog& dialog, bool save, std::wstring& path) {
    return AskFilePath(
        {.owner = dialog.window, .filter = L"INI Files (*.ini)\0*.ini\0", .extension = L"ini", .save = save}, path);
}

void TellFailure(const wchar_t* caption, const wchar_t* text, DWORD error) {
    const std::wstring reason =
        error == ERROR_INVALID_DATA ? L"The file holds no setting of this editor." : SystemErrorText(error);
    TellUser(caption, (std::wstring{text} + (reason.empty() ? L"" : L"\n\n") + reason).c_str(), AskIcon::Error);
}

}  // namespace

void SettingsDialogExport(const SettingsDialog& dialog) {
    std::wstring path;
    if (!AskIniPath(dialog, true, path)) return;
    SettingsSave(nullptr);  // the file that is copied may lack what has changed without a save
    if (!SettingsExport(path.c_str())) return TellFailure(L"Export", L"Export failed.", GetLastError());
    std::wstring text = L"Settings exported successfully.";
    if (g_settings.openAIKey[0] != L'\0' || g_settings.lmStudioKey[0] != L'\0')
        text += L"\n\nThe file holds the AI keys, protected: only this Windows account can read them.";
    if (FormIsEdited(dialog.form)) text += L"\n\nWhat was changed here and not applied yet is not in it.";
    TellUser(L"Export", text.c_str(), AskIcon::Information);
}

void SettingsDialogImport(SettingsDialog& dialog) {
    constexpr std::size_t kMostNamed = 12;
    std::wstring path;
    if (!AskIniPath(dialog, false, path)) return;
    std::vector<std::wstring> strange;
    if (!SettingsImport(path.c_str(), &strange)) return TellFailure(L"Import", L"Import failed.", GetLastError());
    FormRenew(dialog.form, g_settings);
    SettingsShowAllTexts(dialog);
    SettingsApplyEnable(dialog);
    std::wstring text = L"Settings imported successfully. Restart dialog to see changes.";
    if (!strange.empty()) text += L"\n\nNot understood, so your own settings stay:";
    for (std::size_t i = 0; i < std::min(strange.size(), kMostNamed); ++i) text += L"\n" + strange[i].substr(0, 80);
    if (strange.size() > kMostNamed) text += L"\nand " + std::to_wstring(strange.size() - kMostNamed) + L" more";
    if (FormIsEdited(dialog.form)) text += L"\n\nWhat was changed here and not applied yet stays as you left it.";
    TellUser(L"Import", text.c_str(), strange.empty() ? AskIcon::Information : AskIcon::Warning);
}

void SettingsDialogReset(const SettingsDialog& dialog) {
    if (AskUser({.caption = L"Reset All Settings",
                 .text = L"Reset ALL settings to factory defaults?\n\nThis will clear all compiler paths, AI keys, and "
                         L"preferences.",
                 .buttons = AskButtons::YesNo,
                 .icon = AskIcon::Warning,
                 .inSelftest = Answer::No,
                 .enterIsNo = true}) != Answer::Yes)
        return;
    SettingsResetAll();
    EndDialog(dialog.window, IDOK);
    TellUser(L"Reset Complete", L"Settings reset. Please restart the editor.", AskIcon::Information);
}
