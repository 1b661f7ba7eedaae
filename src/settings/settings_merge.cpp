#include "settings/settings_merge.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <string>
#include <string_view>

namespace {

std::size_t HashOf(std::wstring_view text) { return std::hash<std::wstring_view>{}(text); }

// A list of texts in the record, of which some are in use.
struct RecentTexts {
    std::int32_t* count;
    wchar_t* first;
    std::size_t capacity;  // characters of each
    std::int32_t most;

    wchar_t* At(std::int32_t index) const { return first + static_cast<std::size_t>(index) * capacity; }
    std::vector<std::wstring> All() const {
        std::vector<std::wstring> texts;
        for (std::int32_t i = 0; i < std::clamp(*count, 0, most); ++i) texts.emplace_back(At(i));
        return texts;
    }
    void Set(const std::vector<std::wstring>& texts) const {
        *count = static_cast<std::int32_t>(std::min(texts.size(), static_cast<std::size_t>(most)));
        for (std::int32_t i = 0; i < *count; ++i) SafeCopyW(At(i), capacity, texts[static_cast<std::size_t>(i)]);
    }
};

// The lists are only read through a record that is const.
RecentTexts ListOf(const Settings& settings, const SettingRow& row) {
    auto& record = const_cast<Settings&>(settings);
    return {&SettingNumber(record, row.countOffset), SettingText(record, row), row.rowCapacity, row.rows};
}

RecentTexts SessionsOf(const Settings& settings) {
    auto& record = const_cast<Settings&>(settings);
    return {&record.sessionMruCount, record.sessionMruFiles[0], kPathCapacity, kMruCapacity};
}

SettingsMark::Row MarkOfList(const RecentTexts& list) {
    SettingsMark::Row mark;
    for (const std::wstring& text : list.All()) mark.entries.push_back(HashOf(text));
    return mark;
}

SettingsMark::Row MarkOfRow(const Settings& settings, const SettingRow& row) {
    if (row.type == SettingType::List) return MarkOfList(ListOf(settings, row));
    if (row.type == SettingType::Text) return {.value = HashOf(SettingText(settings, row)), .entries = {}};
    return {.value = static_cast<std::size_t>(static_cast<std::uint32_t>(SettingNumber(settings, row.offset))),
            .entries = {}};
}

bool Contains(const std::vector<std::size_t>& hashes, std::wstring_view text) {
    return std::ranges::find(hashes, HashOf(text)) != hashes.end();
}

void MergeList(const RecentTexts& ours, const SettingsMark::Row& mark, const RecentTexts& theirs) {
    if (MarkOfList(ours).entries == mark.entries) return ours.Set(theirs.All());
    std::vector<std::wstring> texts = ours.All();
    for (const std::wstring& text : theirs.All())
        if (!Contains(mark.entries, text) && std::ranges::find(texts, text) == texts.end()) texts.push_back(text);
    ours.Set(texts);
}

// The count of a list has a row of its own, but belongs to the list.
bool IsCountOfList(const SettingRow& row) {
    return std::ranges::any_of(
        SettingRows(),
        [&row](const SettingRow& list) { return list.type == SettingType::List && list.countOffset == row.offset; });
}

void MergeRow(Settings& ours, const SettingRow& row, const SettingsMark::Row& mark, const Settings& theirs) {
    if ((row.flags & (kSettingLoadOnly | kSettingSaveOnly)) != 0) return;
    if (row.type == SettingType::List) return MergeList(ListOf(ours, row), mark, ListOf(theirs, row));
    if (MarkOfRow(ours, row).value != mark.value || IsCountOfList(row)) return;
    if (row.type == SettingType::Text)
        SafeCopyW(SettingText(ours, row), row.capacity, SettingText(theirs, row));
    else
        SettingNumber(ours, row.offset) = SettingNumber(theirs, row.offset);
}

}  // namespace

SettingsMark MarkOf(const Settings& settings) {
    SettingsMark mark;
    for (const SettingRow& row : SettingRows()) mark.rows.push_back(MarkOfRow(settings, row));
    mark.rows.push_back(MarkOfList(SessionsOf(settings)));
    return mark;
}

void MergeSettings(Settings& ours, const SettingsMark& mark, const Settings& theirs) {
    const std::span<const SettingRow> rows = SettingRows();
    if (mark.rows.size() != rows.size() + 1) return;  // nothing was read yet
    for (std::size_t i = 0; i < rows.size(); ++i) MergeRow(ours, rows[i], mark.rows[i], theirs);
    MergeList(SessionsOf(ours), mark.rows.back(), SessionsOf(theirs));
}

void CopyRecentLists(Settings& to, const Settings& from) {
    for (const SettingRow& row : SettingRows())
        if (row.type == SettingType::List && row.group == SettingGroup::Recent)
            ListOf(to, row).Set(ListOf(from, row).All());
    SessionsOf(to).Set(SessionsOf(from).All());
}
