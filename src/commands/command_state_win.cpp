// Collects the state of the program for the command table and applies the table's answers to menus and toolbar. UI
// thread.
#include "commands/command_state.h"

#include "ai/ai_requests.h"
#include "ai/chat_view.h"
#include "commands/edit_target.h"
#include "commands/toolbar.h"
#include "compile/build.h"
#include "compile/build_source.h"
#include "debugui/debug_run.h"
#include "documents/document_row.h"
#include "documents/file_form.h"
#include "documents/save_rules.h"
#include "editor/caret_set.h"
#include "language/lexer_table.h"
#include "output/output_state.h"
#include "project/project.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "session/closed_tabs.h"
#include "settings/settings_state.h"
#include "ui/chrome.h"
#include "ui/panes.h"
#include "ui/progress.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <string>

namespace {

std::uint32_t BitIf(bool holds, std::uint32_t conditions) { return holds ? conditions : 0; }

// What the commands that close several documents would find.
std::uint32_t TabConditions() {
    std::uint32_t conditions = 0;
    for (int i = 0; i < TabCount(); ++i) {
        if (TabAt(i).pinned) continue;
        conditions |= BitIf(i != g_documents.activeTab, kHasOtherTabs) | BitIf(!TabAt(i).modified, kHasSaved) |
                      BitIf(i > g_documents.activeTab, kHasTabsRight);
    }
    return conditions;
}

std::uint32_t EditorConditions() {
    const DocumentTab& tab = TabAt(g_documents.activeTab);
    const bool selects = SciSend(tab.editor, SCI_GETSELECTIONEMPTY) == 0;
    return kHasTab | BitIf(selects, kHasSelection) | BitIf(selects || CaretsAreColumns(tab.editor), kHasCorners) |
           TabConditions() | BitIf(tab.hasFile, kHasFile) |
           BitIf(LexerFromExtension(tab.path) == Language::Basic, kBasicSource);
}

// Of the Edit commands, when they go to the editor.
std::uint32_t EditConditionsOfEditor(std::uint32_t conditions) {
    const HWND editor = TabAt(g_documents.activeTab).editor;
    return kCanPaste | kCanSelectAll | BitIf((conditions & kHasSelection) != 0, kCanCut | kCanCopy) |
           BitIf(SciSend(editor, SCI_CANUNDO) != 0, kCanUndo) | BitIf(SciSend(editor, SCI_CANREDO) != 0, kCanRedo);
}

std::uint32_t DebugConditions() {
    const DebugFlow& flow = DebugFlowNow();
    if (flow.phase == DebugPhase::None) return kNoSession;
    if (FlowIsStopped(flow)) return kSession | kProgramStopped;
    return FlowIsRunning(flow) ? kSession | kProgramRunning
                               : static_cast<std::uint32_t>(kSession);  // otherwise only Stop is enabled
}

}  // namespace

CommandView CurrentCommandView() {
    CommandView view;
    const bool hasTab = IsTabIndex(g_documents.activeTab);
    if (hasTab) {
        const DocumentTab& tab = TabAt(g_documents.activeTab);
        view.conditions |= EditorConditions();
        view.columns = CaretsAreColumns(tab.editor);
        view.fileForm = static_cast<int>(FileFormOf(tab));
        view.lineEnding = SaveUnifiesBreaks(tab) ? -1 : static_cast<int>(tab.lineEnding);  // none is checked
    }
    if (const HWND target = EditTargetNow(); target != nullptr)
        view.conditions |= EditTargetConditions(target);
    else if (hasTab)
        view.conditions |= EditConditionsOfEditor(view.conditions);
    if (std::ranges::any_of(g_documents.tabs, &DocumentTab::modified)) view.conditions |= kAnyModified;
    view.conditions |= BitIf(ClosedTabsAny(), kHasClosed);
    view.tab = g_documents.activeTab;
    view.pinned = hasTab && TabAt(g_documents.activeTab).pinned;
    if (BuildCanBeStopped()) view.conditions |= kBuilding;
    view.conditions |= BitIf(!ProjectFilePath().empty(), kProjectOpen) | BitIf(!BuildSourceNow().empty(), kCanBuild);
    if (!CompilerIsBuilding()) view.conditions |= kIdle;
    view.conditions |= BitIf(ProgressRuns(ProgressOf::Search), kSearching);
    view.conditions |= DebugConditions();
    view.conditions |= BitIf(AiRequestsRun(), kAiRunning) | BitIf(g_ai.aiDoPending, kAiPending) |
                       BitIf(g_ai.aiReply.state != AiReplyState::None, kAiReply) | BitIf(ChatViewHasCode(), kAiCode);
    if (ErrorCount(g_output.errors) > 0) view.conditions |= kHasErrors;
    const Settings& settings = g_settings;
    view.toolbar = settings.showToolbar != 0;
    view.statusBar = settings.showStatusbar != 0;
    view.panes = PanesShown();
    view.whitespace = settings.showWhitespace != 0;
    view.wrap = settings.wordWrap != 0;
    view.errorTexts = settings.showErrorTexts != 0;
    view.tabWidth = settings.tabWidth;
    view.tabKeyInsertsTab = settings.useTabs != 0;
    view.stepsFollow = settings.stepsFollowProgram != 0;
    view.keepsConsole = settings.keepConsoleOpen != 0;
    view.theme = ThemeChosenDark() ? 1 : 0;
    view.style = settings.editorStylePreset;
    view.compiler = static_cast<int>(CompilerNow());
    view.profile = settings.profile;
    return view;
}

void MenuApplyState(HMENU menu, const CommandView& view) {
    const int count = GetMenuItemCount(menu);
    for (int i = 0; i < count; ++i) {
        const UINT id = GetMenuItemID(menu, i);
        if (id == static_cast<UINT>(-1) || FindCommand(static_cast<int>(id)) == nullptr)
            continue;  // a submenu or a separator
        const CommandState state = CommandStateOf(static_cast<int>(id), view);
        EnableMenuItem(menu, static_cast<UINT>(i), MF_BYPOSITION | (state.enabled ? MF_ENABLED : MF_GRAYED));
        CheckMenuItem(menu, static_cast<UINT>(i), MF_BYPOSITION | (state.checked ? MF_CHECKED : MF_UNCHECKED));
    }
}

void MenuShowKeys(HMENU menu) {
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        const UINT id = GetMenuItemID(menu, i);
        const std::wstring key = id != static_cast<UINT>(-1) ? FirstExtraKeyOf(static_cast<int>(id)) : std::wstring();
        wchar_t text[256] = {};
        if (key.empty() ||
            GetMenuStringW(menu, static_cast<UINT>(i), text, static_cast<int>(std::size(text)), MF_BYPOSITION) == 0 ||
            std::wcschr(text, L'\t') != nullptr)
            continue;
        std::wstring shown = std::wstring(text) + L"\t" + key;
        MENUITEMINFOW info = {};
        info.cbSize = sizeof(info);
        info.fMask = MIIM_STRING;
        info.dwTypeData = shown.data();
        SetMenuItemInfoW(menu, static_cast<UINT>(i), TRUE, &info);
    }
}

static void ApplyToMenuTree(HMENU menu, const CommandView& view) {
    MenuApplyState(menu, view);
    for (int i = 0; i < GetMenuItemCount(menu); ++i)
        if (HMENU child = GetSubMenu(menu, i); child != nullptr) ApplyToMenuTree(child, view);
}

void MenuUpdateState() {
    if (g_ui.hMainWnd == nullptr) return;
    const CommandView view = CurrentCommandView();
    if (HMENU menu = GetMenu(g_ui.hMainWnd); menu != nullptr) ApplyToMenuTree(menu, view);
    ToolbarApplyState(view);
}
