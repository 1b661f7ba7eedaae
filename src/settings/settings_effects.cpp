#include "settings/settings_effects.h"

#include "settings/settings_schema.h"

#include <algorithm>
#include <cwchar>

namespace {

bool Differs(const SettingRow& row, const Settings& a, const Settings& b) {
    switch (row.type) {
        case SettingType::Text: return std::wcscmp(SettingText(a, row), SettingText(b, row)) != 0;
        case SettingType::Bool:
        case SettingType::Int: return SettingNumber(a, row.offset) != SettingNumber(b, row.offset);
        case SettingType::List: return false;  // a list is read whenever it is shown
    }
    return false;
}

}  // namespace

std::uint32_t SettingsEffectsOf(const Settings& before, const Settings& now) {
    std::uint32_t effects = 0;
    for (const SettingRow& row : SettingRows())
        if (row.effects != 0 && Differs(row, before, now)) effects |= row.effects;
    return effects;
}

std::uint32_t AutoSaveInterval(std::int32_t minutes) {
    constexpr std::uint32_t kMinute = 60000;
    constexpr std::uint32_t kLongestTimer = 0x7FFFFFFF;  // SetTimer turns a longer time into a few milliseconds
    if (minutes <= 0) return 0;
    return std::min(static_cast<std::uint32_t>(minutes), kLongestTimer / kMinute) * kMinute;
}
