#include "app/tab_commands.h"

#include "app/app_state.h"
#include "base/texts.h"
#include "commands/status_bar.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "resources/ids.h"
#include "session/closed_tabs.h"
#include "tabs/tab_switcher.h"
#include "ui/clipboard.h"
#include "ui/message.h"

#include <shellapi.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string>

namespace {

constexpr int kNumberedTabs = 9;

void SelectTabBeside(int command) {
    TabBarActivate((g_app.activeTab + (command == IDM_NEXT_TAB ? 1 : TabCount() - 1)) % TabCount());
}

void ReopenClosed(int) {
    const int before = TabCount();
    if (!ClosedTabsReopen() && TabCount() == before) StatusBarSetText(Text(L"No closed tab to open again"));
}

void OpenFolderOfFile(int) {
    const std::wstring parameters = L"/select,\"" + std::wstring(TabAt(g_app.activeTab).path) + L"\"";
    const auto result = reinterpret_cast<INT_PTR>(
        ShellExecuteW(g_app.hMainWnd, L"open", L"explorer.exe", parameters.c_str(), nullptr, SW_SHOWNORMAL));
    if (result <= 32) ErrorMessage(Text(L"The Explorer could not be started (error %d)."), static_cast<int>(result));
}

constexpr CommandHandler kTabHandlers[] = {
    {IDM_TAB_CLOSE_OTHERS, [](int) { FileCloseDocuments(CloseRange::Others, ActiveDocumentId()); }},
    {IDM_TAB_CLOSE_RIGHT, [](int) { FileCloseDocuments(CloseRange::Right, ActiveDocumentId()); }},
    {IDM_TAB_CLOSE_SAVED, [](int) { FileCloseDocuments(CloseRange::Saved, ActiveDocumentId()); }},
    {IDM_TAB_REOPEN, ReopenClosed},
    {IDM_TAB_PIN, [](int) { TabBarPin(g_app.activeTab, !TabAt(g_app.activeTab).pinned); }},
    {IDM_TAB_COPY_PATH, [](int) { ClipboardPutText(g_app.hMainWnd, TabAt(g_app.activeTab).path); }},
    {IDM_TAB_COPY_NAME, [](int) { ClipboardPutText(g_app.hMainWnd, TabAt(g_app.activeTab).label); }},
    {IDM_TAB_OPEN_FOLDER, OpenFolderOfFile},
    {IDM_NEXT_TAB, SelectTabBeside},
    {IDM_PREVIOUS_TAB, SelectTabBeside},
    {IDM_TAB_RECENT, [](int) { TabSwitch(false); }},
    {IDM_TAB_RECENT_BACK, [](int) { TabSwitch(true); }},
    {IDM_TAB_LAST, [](int) { TabBarActivate(TabCount() - 1); }},
};

// And one for each of the numbered tabs; one that is not there changes nothing.
constexpr auto AllTabHandlers() {
    std::array<CommandHandler, std::size(kTabHandlers) + kNumberedTabs> all = {};
    auto* next = std::ranges::copy(kTabHandlers, all.begin()).out;
    for (int i = 0; i < kNumberedTabs; ++i)
        *next++ = {IDM_TAB_NUMBER_FIRST + i, [](int command) { TabBarActivate(command - IDM_TAB_NUMBER_FIRST); }};
    return all;
}
constexpr auto kAllTabHandlers = AllTabHandlers();

}  // namespace

std::span<const CommandHandler> TabCommandHandlers() { return kAllTabHandlers; }
