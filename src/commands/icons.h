// The toolbar's pictures: strokes and shapes on a grid of 16 x 16 units, drawn at whatever size the screen asks for.
// Pure.
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

// Inks of a theme, 0x00RRGGBB.
struct IconInks {
    std::uint32_t line;    // outlines
    std::uint32_t accent;  // the part that tells the icon apart
    std::uint32_t go;      // run, ok
    std::uint32_t stop;    // stop, error
    std::uint32_t fill;    // inside of paper shapes
};

// `size` x `size` pixels, top row first, premultiplied 0xAARRGGBB.
std::vector<std::uint32_t> RenderIcon(Icon icon, int size, const IconInks& inks);
