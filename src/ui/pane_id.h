// The panes around the editor, and the areas that they share. Pure.
#pragma once

#include <cstddef>
#include <cstdint>

enum class PaneId : std::uint8_t { Output, ErrorList, Terminal, Debug, Asm, Ai, Tree, FilesResults, Outline };
inline constexpr int kPaneCount = 9;
constexpr std::size_t PaneIndex(PaneId id) { return static_cast<std::size_t>(id); }
// One bit for each pane.
constexpr std::uint32_t PaneBit(PaneId id) { return 1U << static_cast<unsigned>(id); }

// Panes of the same area share it evenly, except for those in Right, each of which has a width of its own.
enum class PaneArea : std::uint8_t {
    Left,         // left of the editor, one above the other
    Right,        // right of the editor, side by side
    Bottom,       // below the editor, side by side
    BelowBottom,  // a line or a list below Bottom, shown only with it
    BottomRight,  // below the editor, to the right of Bottom, or alone
};

// Pixels, in client coordinates of the main window.
struct PaneRect {
    int left = 0, top = 0, right = 0, bottom = 0;
    int width() const { return right - left; }
    int height() const { return bottom - top; }
    bool empty() const { return right <= left || bottom <= top; }
    bool operator==(const PaneRect&) const = default;
};
