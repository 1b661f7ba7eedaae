// Messages to a Scintilla editor as values, so that pure code can decide which messages an editor gets. Pure.
#pragma once

#include <cstdint>
#include <vector>

struct EditorMessage {
    unsigned message;
    std::intptr_t wParam = 0;
    std::intptr_t lParam = 0;
    bool operator==(const EditorMessage&) const = default;
};
using EditorMessages = std::vector<EditorMessage>;
