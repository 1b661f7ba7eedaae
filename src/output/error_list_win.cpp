// The error list: the records of `g_output.errors` in a list with their signs. UI thread only.
#include "output/output_pane.h"

#include "base/texts.h"
#include "documents/document_row.h"
#include "output/error_columns.h"
#include "output/mark_view.h"
#include "output/output_state.h"
#include "ui/clipboard.h"
#include "ui/list_view.h"
#include "ui/ui_state.h"

#include <iterator>
#include <string>

namespace {

struct ErrorListState {
    ListView list;
    ListContent content;
};
ErrorListState g_errorList;

constexpr ListColumn kColumns[] = {{English(L"Severity"), 10, 7, false},
                                   {English(L"Message"), 60, 20, false},
                                   {English(L"File"), 50, 12, false},
                                   {English(L"Line"), 6, 5, false},
                                   {English(L"Column"), 8, 6, false}};
static_assert(std::size(kColumns) == kErrorColumnCount);

// Also of a list without a row.
bool OnErrorListKey(HWND, WPARAM key) {
    if (key != VK_ESCAPE) return false;
    FocusEditorFromPane();
    return true;
}

// The main window shows the menu.
void PassErrorListMenu(int, POINT at) {
    SendMessageW(g_ui.hMainWnd, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(g_output.hErrorList), MAKELPARAM(at.x, at.y));
}

constexpr ListKind kErrorList = {.columns = kColumns,
                                 .hasMarks = true,
                                 .activate = [](int row, int) { CompilerNavigateToError(row); },
                                 .menu = PassErrorListMenu,
                                 .menuWithoutRow = true};

void FillErrorList() {
    ListContent content;
    for (CompilerError error : g_output.errors.items) {
        error.line = SourceMarkLineOf(error);
        ListRow row = {.mark = error.severity == 0 ? ListMark::Error : ListMark::Warning};
        for (int column = 0; column < kErrorColumnCount; ++column) row.cells.push_back(ErrorCellText(error, column));
        content.rows.push_back(std::move(row));
    }
    g_errorList.content = std::move(content);
    ListViewUpdate(g_errorList.list, g_errorList.content);
}

}  // namespace

HWND ErrorListCreate(HWND parent, int controlId) {
    if (!ListViewCreate(g_errorList.list, parent, controlId)) return nullptr;
    g_errorList.list.handleKey = OnErrorListKey;
    ListViewApplyTheme(g_errorList.list);
    ListViewShow(g_errorList.list, kErrorList);
    FillErrorList();
    ShowWindow(g_errorList.list.window, SW_SHOWNA);
    return g_errorList.list.window;
}

int ErrorListSelected() { return g_output.hErrorList != nullptr ? ListViewSelected(g_errorList.list) : -1; }

void ErrorListRefresh() {
    if (g_output.hErrorList != nullptr) FillErrorList();
}

void ErrorListShowLines() {
    if (g_output.hErrorList == nullptr || g_output.errors.items.empty()) return;
    const std::size_t column = 3;  // of kColumns
    bool moved = false;
    for (std::size_t i = 0; i < g_errorList.content.rows.size() && i < g_output.errors.items.size(); ++i) {
        std::wstring& shown = g_errorList.content.rows[i].cells[column];
        std::wstring line = std::to_wstring(SourceMarkLineOf(g_output.errors.items[i]));
        moved = moved || line != shown;
        shown = std::move(line);
    }
    if (moved) InvalidateRect(g_errorList.list.window, nullptr, FALSE);
}

void ErrorListApplyTheme() {
    if (g_output.hErrorList == nullptr) return;
    ListViewApplyTheme(g_errorList.list);
    ListViewShow(g_errorList.list, kErrorList);
    FillErrorList();
}

void ErrorListShowCurrent() {
    if (g_output.hErrorList == nullptr || g_output.errors.current >= ErrorCount(g_output.errors)) return;
    ListViewSelect(g_errorList.list, g_output.errors.current);
    SendMessageW(g_output.hErrorList, LVM_ENSUREVISIBLE, static_cast<WPARAM>(g_output.errors.current), FALSE);
}

void ErrorListCopyAll() {
    std::wstring text;
    for (const ListRow& row : g_errorList.content.rows) {
        for (std::size_t i = 0; i < row.cells.size(); ++i) text += (i > 0 ? L"\t" : L"") + row.cells[i];
        text += L"\r\n";
    }
    ClipboardPutText(g_ui.hMainWnd, text);
}

bool ErrorListHandleNotify(const NMHDR& header, LRESULT* result) {
    return g_output.hErrorList != nullptr && ListViewHandleNotify(g_errorList.list, header, result);
}
