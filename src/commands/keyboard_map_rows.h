// The rows of the keyboard map, and which of them a filter leaves. Pure.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

struct KeyMapRow {
    int command = 0;                 // 0: a key of the editor itself or of a pane
    std::wstring keys, name, place;  // "Ctrl+S", "Save", "File"
};

// What the editing control does by itself, with keys that no command has.
struct EditorKey {
    const wchar_t* keys;
    const wchar_t* what;
};
std::span<const EditorKey> EditorKeys();

// A key of a pane or a bar, which counts while the keyboard is there. Each does what is said in the procedure of its
// window, so who changes a key there changes it here; a test compares them.
struct PaneKey {
    const wchar_t* place;  // "in the project tree"
    const wchar_t* keys;
    const wchar_t* what;
};
std::span<const PaneKey> PaneKeys();

// The whole map: the menu's commands that have keys, those that are in no menu, the editor's keys and the panes'.
std::vector<KeyMapRow> AllKeyRows(std::vector<KeyMapRow> ofMenu);

// The rows in which each word of the filter stands somewhere, without regard to case. "ctrl+d" finds only that key.
std::vector<KeyMapRow> FilteredKeyRows(std::span<const KeyMapRow> rows, std::wstring_view filter);
