// Shared by the toolbar and the menus below its buttons. Private to these files. UI thread only.
#pragma once

#include "commands/icons.h"
#include "commands/toolbar_rules.h"

#include <windows.h>

#include <span>
#include <string>

std::wstring ToolbarCompilerText();  // text of the compiler button
// Show a menu below a button and post the chosen command to the main window. `button` is in client coordinates of the
// bar.
void ToolbarShowCompilerMenu(HWND bar, const RECT& button);
void ToolbarShowHiddenMenu(HWND bar, const RECT& button, std::span<const HiddenButton> buttons);

IconInks ToolbarInksNow(bool enabled);

// What an image list and what a menu expects of the colours of a bitmap with opacity.
enum class PictureUse : std::uint8_t { ImageList, Menu };
// A 32-bit bitmap of `size` x `size` pixels with opacity, which the caller deletes; null when there is no memory.
HBITMAP ToolbarPicture(Icon icon, int size, const IconInks& inks, PictureUse use);
