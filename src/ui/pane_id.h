// Which panes there are around the editor, and the areas that they share. Pure.
#pragma once

#include <cstddef>
#include <cstdint>

enum class PaneId : std::uint8_t { Output, ErrorList, Terminal, Debug, Asm, Ai, Tree };
inline constexpr int kPaneCount = 7;
constexpr std::size_t PaneIndex(PaneId id) { return static_cast<std::size_t>(id); }
// One bit for each pane.
constexpr std::uint32_t PaneBit(PaneId id) { return 1U << static_cast<unsigned>(id); }

// Several panes of one area share it evenly, but for those on the right, which have one width each.
enum class PaneArea : std::uint8_t {
    Left,         // beside the editor, one above the other
    Right,        // beside the editor, beside each other
    Bottom,       // below the editor, beside each other
    BelowBottom,  // a line or list below those at the bottom, and only with them
    BottomRight,  // below the editor, right of the bottom, or alone
};

// Pixels, in client coordinates of the main window.
struct PaneRect {
    int left = 0, top = 0, right = 0, bottom = 0;
    int width() const { return right - left; }
    int height() const { return bottom - top; }
    bool empty() const { return right <= left || bottom <= top; }
    bool operator==(const PaneRect&) const = default;
};
