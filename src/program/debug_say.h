// Messages of the debugger and the line maps in the output pane. UI thread only.
#pragma once

#include <windows.h>

#include <string>

inline constexpr COLORREF kDebugRed = 200;
inline constexpr COLORREF kDebugTeal = 0x808000;
inline constexpr COLORREF kDebugOrange = 0x0064C8;
// Adds a line to the output pane, after the text that waits there.
void DebugSay(COLORREF colour, const wchar_t* format, ...);
using DebugSink = void (*)(const std::wstring& text, COLORREF colour);
void DebugSetSink(DebugSink sink);  // the lines go there instead of the output pane; null: to the pane again
