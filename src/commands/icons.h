// Draws the toolbar's icons, which are strokes and shapes on a grid of 16 x 16 units, at any size. Pure.
#pragma once

#include <cstdint>
#include <vector>

enum class Icon : std::uint8_t {
    New,
    Open,
    Save,
    SaveAll,
    Undo,
    Redo,
    Cut,
    Copy,
    Paste,
    Find,
    Build,
    Run,
    Stop,
    SyntaxCheck,
    PreviousError,
    NextError,
    AsmPane,
    Output,
    Ai,
    Dictate,
    DebugStart,
    Breakpoint,
    DebugStop,
    Continue,
    Pause,
    StepOver,
    StepInto,
    StepOut,
    RunToCursor,
    More,
    Count
};

// The colours of an icon, 0x00RRGGBB.
struct IconInks {
    std::uint32_t line;    // outlines
    std::uint32_t accent;  // the part by which an icon differs from others
    std::uint32_t go;      // run, ok
    std::uint32_t stop;    // stop, error
    std::uint32_t fill;    // inside of paper shapes
};

// An icon of `size` x `size` pixels, top row first, as 0xAARRGGBB. The colours are not multiplied by the opacity.
std::vector<std::uint32_t> RenderIcon(Icon icon, int size, const IconInks& inks);
// The same pixel with its colours multiplied by its opacity.
std::uint32_t PremultipliedPixel(std::uint32_t pixel);
