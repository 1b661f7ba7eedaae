// The rows of the keyboard map, and which of them a filter leaves. Pure.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

struct KeyMapRow {
    int command = 0;                 // 0: a key of the editor itself
    std::wstring keys, name, place;  // "Ctrl+S", "Save", "File"
};

// What the editing control does by itself, with keys that no command has.
struct EditorKey {
    const wchar_t* keys;
    const wchar_t* what;
};
std::span<const EditorKey> EditorKeys();

// The rows in which each word of the filter stands somewhere, without regard to case. "ctrl+d" finds only that key.
std::vector<KeyMapRow> FilteredKeyRows(std::span<const KeyMapRow> rows, std::wstring_view filter);
