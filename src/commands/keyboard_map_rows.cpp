#include "commands/keyboard_map_rows.h"

#include "base/texts.h"

#include <algorithm>

namespace {

constexpr EditorKey kEditorKeys[] = {
    {L"Ctrl+L", English(L"Cut the line")},
    {L"Ctrl+[", English(L"To the paragraph before")},
    {L"Ctrl+]", English(L"To the paragraph behind")},
    {L"Ctrl+Left", English(L"To the word before")},
    {L"Ctrl+Right", English(L"To the word behind")},
    {L"Ctrl+\\", English(L"To the next part of the word")},
    {L"Ctrl+Up", English(L"Scroll a line, the caret stays")},
    {L"Ctrl+Down", English(L"Scroll a line back")},
    {L"Ctrl+Home", English(L"To the start of the text")},
    {L"Ctrl+End", English(L"To the end of the text")},
    {L"Alt+Home", English(L"To the start of the row on the screen")},
    {L"Alt+End", English(L"To the end of the row on the screen")},
    {L"Ctrl+Backspace", English(L"Delete the word before")},
    {L"Ctrl+Del", English(L"Delete the word behind")},
    {L"Ctrl+Shift+Backspace", English(L"Delete to the start of the line")},
    {L"Ctrl+Shift+Del", English(L"Delete to the end of the line")},
    {L"Alt+Backspace", English(L"Undo")},
    {L"Ctrl+Ins", English(L"Copy")},
    {L"Shift+Ins", English(L"Paste")},
    {L"Shift+Del", English(L"Cut")},
    {L"Ins", English(L"Type over the text, or between it")},
    {L"Alt+Shift+Up", English(L"Select a column upwards")},
    {L"Alt+Shift+Down", English(L"Select a column downwards")},
    {L"Alt+Shift+Left", English(L"Select a column to the left")},
    {L"Alt+Shift+Right", English(L"Select a column to the right")},
    {L"Tab", English(L"Indent the selected lines")},
    {L"Shift+Tab", English(L"Take an indentation back")},
};

std::wstring Lower(std::wstring_view text) {
    std::wstring lower(text);
    for (wchar_t& c : lower)
        if (c >= L'A' && c <= L'Z') c = static_cast<wchar_t>(c | 0x20);
    return lower;
}

bool IsOneOf(std::wstring_view keys, std::wstring_view key) {
    for (;;) {
        const std::size_t comma = keys.find(L", ");
        if (keys.substr(0, comma) == key) return true;
        if (comma == std::wstring_view::npos) return false;
        keys.remove_prefix(comma + 2);
    }
}

bool Fits(const KeyMapRow& row, std::wstring_view word) {
    const std::wstring keys = Lower(row.keys);
    const bool isKey = word.find(L'+') != std::wstring_view::npos && !word.ends_with(L'+');
    if (isKey) return IsOneOf(keys, word);
    return keys.find(word) != std::wstring::npos || Lower(row.name).find(word) != std::wstring::npos ||
           Lower(row.place).find(word) != std::wstring::npos;
}

}  // namespace

std::span<const EditorKey> EditorKeys() { return kEditorKeys; }

std::vector<KeyMapRow> FilteredKeyRows(std::span<const KeyMapRow> rows, std::wstring_view filter) {
    const std::wstring lower = Lower(filter);
    std::vector<std::wstring_view> words;
    for (std::size_t at = 0; (at = lower.find_first_not_of(L' ', at)) != std::wstring::npos;) {
        const std::size_t end = std::min(lower.find(L' ', at), lower.size());
        words.push_back(std::wstring_view(lower).substr(at, end - at));
        at = end;
    }
    std::vector<KeyMapRow> left;
    for (const KeyMapRow& row : rows)
        if (std::ranges::all_of(words, [&row](std::wstring_view word) { return Fits(row, word); })) left.push_back(row);
    return left;
}
