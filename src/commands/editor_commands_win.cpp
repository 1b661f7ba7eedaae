#include "commands/editor_commands.h"

#include "commands/keyboard_map.h"
#include "documents/documents_state.h"
#include "documents/file_form_commands.h"
#include "editor/caret_set.h"
#include "editor/fold_commands.h"
#include "editor/line_commands.h"
#include "resources/ids.h"
#include "settings/settings_state.h"
#include "ui/ui_state.h"

namespace {

void ChangeLines(int command) { EditorLineCommand(g_documents.hEditor, command); }

void FoldToLevel(int command) { EditorFoldLevel(g_documents.hEditor, command - IDM_FOLD_LEVEL_FIRST + 1); }

void SetTabWidth(int command) {
    static constexpr int kWidths[] = {2, 3, 4, 8};
    SettingsChange([command](Settings& settings) { settings.tabWidth = kWidths[command - IDM_TAB_WIDTH_2]; });
    SettingsSave(nullptr);
}

void SetTabKey(int command) {
    SettingsChange([command](Settings& settings) { settings.useTabs = command == IDM_TAB_INSERTS_TAB ? 1 : 0; });
    SettingsSave(nullptr);
}

constexpr CommandHandler kEditorHandlers[] = {
    {IDM_EDIT_COMMENT, [](int) { EditorToggleComment(g_documents.hEditor); }},
    {IDM_LINES_DUPLICATE, ChangeLines},
    {IDM_LINES_DELETE, ChangeLines},
    {IDM_LINES_UP, ChangeLines},
    {IDM_LINES_DOWN, ChangeLines},
    {IDM_LINES_JOIN, ChangeLines},
    {IDM_LINES_SORT, ChangeLines},
    {IDM_LINES_SORT_DOWN, ChangeLines},
    {IDM_LINES_UNIQUE, ChangeLines},
    {IDM_LINES_TRIM, ChangeLines},
    {IDM_TABS_TO_BLANKS, ChangeLines},
    {IDM_BLANKS_TO_TABS, ChangeLines},
    {IDM_CASE_UPPER, ChangeLines},
    {IDM_CASE_LOWER, ChangeLines},
    {IDM_CASE_TITLE, ChangeLines},
    {IDM_CARET_ABOVE, [](int) { CaretAddBeside(g_documents.hEditor, true); }},
    {IDM_CARET_BELOW, [](int) { CaretAddBeside(g_documents.hEditor, false); }},
    {IDM_SELECT_NEXT, [](int) { CaretSelectNext(g_documents.hEditor); }},
    {IDM_SELECT_EACH, [](int) { CaretSelectEach(g_documents.hEditor); }},
    {IDM_SELECT_COLUMNS, [](int) { CaretsToggleColumns(g_documents.hEditor); }},
    {IDM_FOLD, [](int) { EditorFoldAtCaret(g_documents.hEditor, true); }},
    {IDM_UNFOLD, [](int) { EditorFoldAtCaret(g_documents.hEditor, false); }},
    {IDM_FOLD_ALL, [](int) { EditorFoldAll(g_documents.hEditor, true); }},
    {IDM_UNFOLD_ALL, [](int) { EditorFoldAll(g_documents.hEditor, false); }},
    {IDM_FOLD_LEVEL_FIRST, FoldToLevel},
    {IDM_FOLD_LEVEL_2, FoldToLevel},
    {IDM_FOLD_LEVEL_3, FoldToLevel},
    {IDM_FOLD_LEVEL_4, FoldToLevel},
    {IDM_ENCODE_UTF8, DocumentEncode},
    {IDM_ENCODE_ANSI, DocumentEncode},
    {IDM_ENCODE_UTF16_LE, DocumentEncode},
    {IDM_ENCODE_UTF16_BE, DocumentEncode},
    {IDM_REOPEN_UTF8, DocumentReopen},
    {IDM_REOPEN_ANSI, DocumentReopen},
    {IDM_REOPEN_UTF16_LE, DocumentReopen},
    {IDM_REOPEN_UTF16_BE, DocumentReopen},
    {IDM_ENDING_CRLF, DocumentSetEnding},
    {IDM_ENDING_LF, DocumentSetEnding},
    {IDM_ENDING_CR, DocumentSetEnding},
    {IDM_TAB_WIDTH_2, SetTabWidth},
    {IDM_TAB_WIDTH_3, SetTabWidth},
    {IDM_TAB_WIDTH_4, SetTabWidth},
    {IDM_TAB_WIDTH_8, SetTabWidth},
    {IDM_TAB_INSERTS_TAB, SetTabKey},
    {IDM_TAB_INSERTS_BLANKS, SetTabKey},
    {IDM_HELP_KEYS, [](int) { KeyboardMapShow(g_ui.hMainWnd); }},
};

}  // namespace

std::span<const CommandHandler> EditorCommandHandlers() { return kEditorHandlers; }
