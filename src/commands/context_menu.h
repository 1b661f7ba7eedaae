// The context menus of the editor, its margin, the output pane, the error list and the ASM pane: which commands they
// offer. Pure.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

enum class ContextPlace : std::uint8_t { Text, Margin, Output, Errors, Listing };

struct ContextItem {
    int command = 0;                // 0: a separator
    const wchar_t* text = nullptr;  // with its mnemonic, without its key
    bool ofDiagnostic = false;      // only where a diagnostic is
};

// All items of a menu, for whoever checks them.
std::span<const ContextItem> ContextItemsOf(ContextPlace place);
// Those that are offered, without separators beside nothing. `aiService`: the command that asks about the selection.
std::vector<ContextItem> ContextItemsNow(ContextPlace place, bool onDiagnostic, int aiCommand);
