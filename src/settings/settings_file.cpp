#include "settings/settings_file.h"

#include "settings/ini_text.h"
#include "settings/ini_value.h"

#include <cstddef>

namespace {

constexpr std::size_t kSealedCapacity = 512;  // characters of a protected key
constexpr wchar_t kVersion[] = L"2";

// The key of a row of a list: "File%d" becomes "File3".
std::wstring ListKey(const wchar_t* format, int index) {
    std::wstring key = format;
    return key.replace(key.find(L"%d"), 2, std::to_wstring(index));
}

ForeignKey* ForeignPlaceOf(ForeignKeys& foreign, const SettingRow* row) {
    for (ForeignKey& key : foreign)
        if (key.row == row) return &key;
    return nullptr;
}

// ------------------------------------------------------------------------------------------------------------ parse

void ParseSecret(const SettingsSource& source, const SettingRow& row, Settings& settings, ForeignKeys& foreign) {
    wchar_t* const field = SettingText(settings, row);
    const std::wstring stored = DecodeIniValue(source.text(row.section, row.key, row.text));
    if (ForeignKey* known = ForeignPlaceOf(foreign, &row)) *known = {};
    if (source.unprotect(stored.c_str(), field, row.capacity)) return;
    if (SafeCopyW(field, row.capacity, stored)) return;
    if (ForeignKey* place = ForeignPlaceOf(foreign, nullptr)) *place = {.row = &row, .stored = stored};
}

void ParseText(const SettingsSource& source, const SettingRow& row, const wchar_t* key, wchar_t* out) {
    SafeCopyW(out, row.capacity, DecodeIniValue(source.text(row.section, key, row.text)));
}

void ParseRow(const SettingsSource& source, const SettingRow& row, Settings& settings, ForeignKeys& foreign) {
    if ((row.flags & kSettingSaveOnly) != 0) return;
    switch (row.type) {
        case SettingType::Text:
            if ((row.flags & kSettingSecret) != 0)
                ParseSecret(source, row, settings, foreign);
            else
                ParseText(source, row, row.key, SettingText(settings, row));
            break;
        case SettingType::Bool:
            SettingNumber(settings, row.offset) = source.number(row.section, row.key, row.number) != 0 ? 1 : 0;
            break;
        case SettingType::Int: {
            const auto value = static_cast<std::int32_t>(source.number(row.section, row.key, row.number));
            SettingNumber(settings, row.offset) =
                (row.flags & kSettingLateClamp) != 0 ? value : ApplyLimits(row.limits, value);
            break;
        }
        case SettingType::List:
            for (int i = 0; i < SettingNumber(settings, row.countOffset) && i < row.rows; ++i)
                ParseText(source, row, ListKey(row.key, i).c_str(), SettingText(settings, row, i));
            break;
    }
}

void ParseGroup(const SettingsSource& source, SettingGroup group, Settings& settings, ForeignKeys& foreign) {
    for (const SettingRow& row : SettingRows()) {
        if (row.group != group) continue;
        ParseRow(source, row, settings, foreign);
        // The state of both services is known here, before their keys are read.
        if (row.offset == offsetof(Settings, lmStudioEnabled)) UpdateAssistantEnabled(settings);
    }
}

// ---------------------------------------------------------------------------------------------------------- compose

void ComposeSecret(IniText& ini, const SettingRow& row, const wchar_t* key, const ForeignKeys& foreign,
                   const SettingsTarget& target) {
    for (const ForeignKey& other : foreign) {
        if (other.row == &row && std::wstring_view{other.stored}.starts_with(key) && key[0] != L'\0') {
            ini.Add(row.section, row.key, other.stored);
            return;
        }
    }
    wchar_t sealed[kSealedCapacity];
    if (target.protect(row, key, sealed, kSealedCapacity))
        ini.Add(row.section, row.key, sealed);
    else
        ini.AddText(row.section, row.key, key);
}

void ComposeRow(IniText& ini, const SettingRow& row, const Settings& settings, const ForeignKeys& foreign,
                const SettingsTarget& target) {
    switch (row.type) {
        case SettingType::Text:
            if ((row.flags & kSettingSecret) != 0) {
                ComposeSecret(ini, row, SettingText(settings, row), foreign, target);
            } else if ((row.flags & kSettingExeRelative) != 0) {
                wchar_t relative[kPathCapacity];
                MakeFolderRelative(target.programFolder, SettingText(settings, row), relative, kPathCapacity);
                ini.AddText(row.section, row.key, relative);
            } else {
                ini.AddText(row.section, row.key, SettingText(settings, row));
            }
            break;
        case SettingType::Bool:
            ini.AddNumber(row.section, row.key, SettingNumber(settings, row.offset) != 0 ? 1 : 0);
            break;
        case SettingType::Int: ini.AddNumber(row.section, row.key, SettingNumber(settings, row.offset)); break;
        case SettingType::List:
            // The file is composed anew, so rows past the count need not be deleted.
            for (int i = 0; i < SettingNumber(settings, row.countOffset) && i < row.rows; ++i)
                ini.AddText(row.section, ListKey(row.key, i), SettingText(settings, row, i));
            break;
    }
}

void ComposePlace(IniText& ini, const WindowPlace& place) {
    if (!place.known) return;
    ini.AddNumber(L"Window", L"Left", place.left);
    ini.AddNumber(L"Window", L"Top", place.top);
    ini.AddNumber(L"Window", L"Width", place.width);
    ini.AddNumber(L"Window", L"Height", place.height);
    ini.AddNumber(L"Window", L"Max", place.maximised ? 1 : 0);
}

}  // namespace

void ParseSettings(const SettingsSource& source, Settings& settings, ForeignKeys& foreign) {
    ParseGroup(source, SettingGroup::Compilers, settings, foreign);
    for (CompilerSettings& compiler : settings.compilers)
        ResolveAgainstFolder(source.programFolder, compiler.path, compiler.path, kPathCapacity);
    ParseGroup(source, SettingGroup::Preferences, settings, foreign);
    FillEmptyDescriptions(settings);
    // [Meta] "Version" is not read, because every key has a default.
    for (CompilerSettings& compiler : settings.compilers)
        if (!source.fileExists(compiler.path)) compiler.path[0] = L'\0';  // so that no build uses a stale path
    CheckAssistantKeys(settings);
    ParseGroup(source, SettingGroup::Assistant, settings, foreign);
    ParseGroup(source, SettingGroup::Recent, settings, foreign);
    ParseGroup(source, SettingGroup::Window, settings, foreign);
    for (const SettingRow& row : SettingRows())
        if ((row.flags & kSettingLateClamp) != 0)
            SettingNumber(settings, row.offset) = ApplyLimits(row.limits, SettingNumber(settings, row.offset));
}

std::string ComposeSettings(const Settings& settings, const ForeignKeys& foreign, const SettingsTarget& target) {
    IniText ini;
    const auto compose = [&](SettingGroup group, bool late) {
        for (const SettingRow& row : SettingRows()) {
            const bool isLate = (row.flags & kSettingLateSave) != 0;
            if (row.group == group && isLate == late && (row.flags & kSettingLoadOnly) == 0)
                ComposeRow(ini, row, settings, foreign, target);
        }
    };
    compose(SettingGroup::Compilers, false);
    compose(SettingGroup::Preferences, false);
    compose(SettingGroup::Recent, false);
    compose(SettingGroup::Compilers, true);
    compose(SettingGroup::Assistant, false);
    ComposePlace(ini, target.windowPlace);
    compose(SettingGroup::Window, false);
    ini.Add(L"Meta", L"Version", kVersion);
    // The sessions are written together with the rest, so that there is never a settings file without them and no
    // second write that could fail.
    ini.AddNumber(L"Session", L"MRUCount", settings.sessionMruCount);
    for (int i = 0; i < settings.sessionMruCount; ++i)
        ini.AddText(L"Session", ListKey(L"MRU%d", i), settings.sessionMruFiles[i]);
    return ini.Bytes();
}

bool IsCutCopy(std::string_view found, std::string_view whole) {
    if (found.size() > whole.size()) return false;
    while (found.ends_with('\0')) found.remove_suffix(1);
    return whole.starts_with(found);
}
