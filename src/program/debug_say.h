// What the debugger and its line maps have to say, as lines of the output pane. UI thread only.
#pragma once

#include <windows.h>

#include <string>

inline constexpr COLORREF kDebugRed = 200;
inline constexpr COLORREF kDebugTeal = 0x808000;
inline constexpr COLORREF kDebugOrange = 0x0064C8;
// A line for the output pane, shown after what waits there.
void DebugSay(COLORREF colour, const wchar_t* format, ...);
using DebugSink = void (*)(const std::wstring& text, COLORREF colour);
void DebugSetSink(DebugSink sink);  // instead of the output pane; null: the pane again
