#include "settings/settings_file.h"

#include "settings/ini_text.h"
#include "settings/ini_value.h"
#include "settings/secret_text.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr wchar_t kVersion[] = L"2";

// The key of a row of a list: "File%d" becomes "File3".
std::wstring ListKey(const wchar_t* format, int index) {
    std::wstring key = format;
    return key.replace(key.find(L"%d"), 2, std::to_wstring(index));
}

StoredKey* StoredKeyOf(StoredKeys& keys, const SettingRow* row) {
    const auto found = std::ranges::find(keys, row, &StoredKey::row);
    return found != keys.end() ? &*found : nullptr;
}

void NoteStoredKey(StoredKeys& keys, const SettingRow& row, std::wstring_view held, std::wstring_view stored) {
    StoredKey* place = StoredKeyOf(keys, &row);
    if (place == nullptr) place = StoredKeyOf(keys, nullptr);
    if (place != nullptr) *place = {.row = &row, .held = std::wstring{held}, .stored = std::wstring{stored}};
}

// ------------------------------------------------------------------------------------------------------------ parse

std::wstring JoinedSecret(const SettingsSource& source, const SettingRow& row) {
    std::wstring whole = DecodeIniValue(source.text(row.section, row.key, row.text));
    std::size_t last = IsSecretText(whole) ? whole.size() : 0;
    for (int piece = 2; last == kSecretPiece && piece <= kSecretPieces; ++piece) {
        const std::wstring next = source.text(row.section, SecretPieceKey(row.key, piece).c_str(), L"");
        whole += next;
        last = next.size();
    }
    return whole;
}

void ParseSecret(const SettingsSource& source, const SettingRow& row, Settings& settings, StoredKeys& keys) {
    wchar_t* const field = SettingText(settings, row);
    const std::wstring stored = JoinedSecret(source, row);
    if (StoredKey* known = StoredKeyOf(keys, &row)) *known = {};
    if (!source.unprotect(stored.c_str(), field, row.capacity)) SafeCopyW(field, row.capacity, stored);
    if (IsSecretText(stored)) NoteStoredKey(keys, row, field, stored);
}

void ParseText(const SettingsSource& source, const SettingRow& row, const wchar_t* key, wchar_t* out) {
    SafeCopyW(out, row.capacity, DecodeIniValue(source.text(row.section, key, row.text)));
}

void ParseRow(const SettingsSource& source, const SettingRow& row, Settings& settings, StoredKeys& keys) {
    if ((row.flags & kSettingSaveOnly) != 0) return;
    switch (row.type) {
        case SettingType::Text:
            if ((row.flags & kSettingSecret) != 0)
                ParseSecret(source, row, settings, keys);
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

void ParseGroup(const SettingsSource& source, SettingGroup group, Settings& settings, StoredKeys& keys) {
    for (const SettingRow& row : SettingRows()) {
        if (row.group != group) continue;
        ParseRow(source, row, settings, keys);
        // The state of both services is known here, before their keys are read.
        if (row.offset == offsetof(Settings, lmStudioEnabled)) UpdateAssistantEnabled(settings);
    }
}

// ---------------------------------------------------------------------------------------------------------- compose

void ComposeSecret(IniText& ini, const SettingRow& row, const wchar_t* key, StoredKeys& keys,
                   const SettingsTarget& target) {
    const StoredKey* const known = StoredKeyOf(keys, &row);
    std::wstring stored;
    if (known != nullptr && known->held == key)
        stored = known->stored;
    else if (key[0] != L'\0')
        stored = target.protect(row, key);
    if (!stored.empty()) NoteStoredKey(keys, row, key, stored);
    ForEachSecretPiece(row.key, stored,
                       [&](const std::wstring& name, std::wstring_view piece) { ini.Add(row.section, name, piece); });
}

void ComposeRow(IniText& ini, const SettingRow& row, const Settings& settings, StoredKeys& keys,
                const SettingsTarget& target) {
    switch (row.type) {
        case SettingType::Text:
            if ((row.flags & kSettingUnlessEmpty) != 0 && SettingText(settings, row)[0] == L'\0') break;
            if ((row.flags & kSettingSecret) != 0) {
                ComposeSecret(ini, row, SettingText(settings, row), keys, target);
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

void ParseSettings(const SettingsSource& source, Settings& settings, StoredKeys& keys) {
    ParseGroup(source, SettingGroup::Compilers, settings, keys);
    for (CompilerSettings& compiler : settings.compilers)
        ResolveAgainstFolder(source.programFolder, compiler.path, compiler.path, kPathCapacity);
    ParseGroup(source, SettingGroup::Preferences, settings, keys);
    FillEmptyDescriptions(settings);
    // [Meta] "Version" is not read, because every key has a default.
    for (CompilerSettings& compiler : settings.compilers)
        if (!source.fileExists(compiler.path)) compiler.path[0] = L'\0';  // so that no build uses a stale path
    CheckAssistantKeys(settings);
    ParseGroup(source, SettingGroup::Assistant, settings, keys);
    ParseGroup(source, SettingGroup::Recent, settings, keys);
    ParseGroup(source, SettingGroup::Window, settings, keys);
    for (const SettingRow& row : SettingRows())
        if ((row.flags & kSettingLateClamp) != 0)
            SettingNumber(settings, row.offset) = ApplyLimits(row.limits, SettingNumber(settings, row.offset));
}

std::string ComposeSettings(const Settings& settings, StoredKeys& keys, const SettingsTarget& target) {
    IniText ini;
    const auto compose = [&](SettingGroup group, bool late) {
        for (const SettingRow& row : SettingRows()) {
            const bool isLate = (row.flags & kSettingLateSave) != 0;
            if (row.group == group && isLate == late && (row.flags & kSettingLoadOnly) == 0)
                ComposeRow(ini, row, settings, keys, target);
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

void ForEachSecretPiece(const wchar_t* key, std::wstring_view stored,
                        const std::function<void(const std::wstring& key, std::wstring_view piece)>& add) {
    int piece = 1;
    do {
        add(SecretPieceKey(key, piece++), stored.substr(0, kSecretPiece));
        stored.remove_prefix(std::min(stored.size(), kSecretPiece));
    } while (!stored.empty());
}
