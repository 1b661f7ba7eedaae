// What the user must be told in a box, but not in the middle of a start or a save. The frame shows it once the message
// queue is empty, so no other box is open then. UI thread.
#include "app/main_window.h"
#include "compile/build.h"
#include "compile/products.h"
#include "debugui/debug_commands.h"
#include "documents/file_work.h"
#include "documents/outside.h"
#include "session/session.h"
#include "ui/long_work.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <string>
#include <utility>

static std::vector<std::wstring> g_notices;

void MainWnd_OnNoticeWanted(const wchar_t* text) {
    if (std::ranges::find(g_notices, text) == g_notices.end()) g_notices.emplace_back(text);
}

void MainWnd_ShowNotices() {
    if (g_notices.empty()) return;
    // Taken out first, because a box handles messages that may add another.
    const std::vector<std::wstring> notices = std::exchange(g_notices, {});
    for (const std::wstring& notice : notices) TellUser(kProgramCaption, notice.c_str(), AskIcon::Warning);
}

void MainWnd_AskAboutFiles() {
    if (!OutsideWantsToAsk() || IsWindowEnabled(g_ui.hMainWnd) == FALSE) return;
    // A build saves, and moves files aside; what it has done is seen once it has ended.
    if (LongWorkRuns() || FileWorkRuns() || CompilerIsBuilding() || DebugIsWaiting() || !SessionSavesAllowed()) return;
    OutsideAsk(IsBuildProduct);
}
