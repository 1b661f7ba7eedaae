#include "ai/ai_pane_layout.h"

#include "ui/scale.h"

#include <algorithm>

namespace {

constexpr int kInputHeight = 30;  // at 96 dpi
constexpr int kSendWidth = 64;    // at 96 dpi

}  // namespace

AiPaneLayout LayOutAiPane(const PaneRect& area, int dpi) {
    if (area.empty()) return {};
    const int line = area.bottom - std::min(ScaledTo(kInputHeight, dpi), area.height() / 2);
    const int send = area.right - std::min(ScaledTo(kSendWidth, dpi), area.width() / 2);
    return {.chat = {area.left, area.top, area.right, line},
            .input = {area.left, line, send, area.bottom},
            .send = {send, line, area.right, area.bottom}};
}
