// Which compilers are installed, as far as was last seen. The toolbar shows the answer at every step of a resize, and a
// path may lead to a share that answers after half a minute: shares are asked on another thread. UI thread.
#pragma once

#include <windows.h>

#include <cstdint>

// What the last look found. A path that nobody has looked at yet counts as found, because loading and detection keep
// only files that are there; without a path: false.
bool CompilerSeemsInstalled(std::uint32_t id);

// Starts a look unless one is on its way. It ends with a posted `message` to `window`.
void CompilersLook(HWND window, UINT message);
// Handles that message. True when the look found something else than CompilerSeemsInstalled() has told so far.
bool CompilersOnLooked(WPARAM wParam);
