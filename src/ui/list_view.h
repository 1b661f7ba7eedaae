// A list of rows with columns that shrink to fit, drawn in the colours of the theme. It is a virtual list view: a pane
// gives it the content and is called when the user acts on a row. UI thread only.
#pragma once

#include "ui/inline_edit.h"
#include "ui/list_rows.h"

#include <windows.h>

#include <commctrl.h>

#include <map>
#include <span>
#include <string>
#include <vector>

struct ListColumn {
    const wchar_t* title;
    int characters;   // wanted width; the last column also takes the rest
    int least;        // characters; smallest width
    bool fixedPitch;  // drawn in UiFixedFont
};

// The columns of a list and its reactions: a constant of the pane. Null: no reaction. Indices of rows are those of the
// content.
struct ListKind {
    std::span<const ListColumn> columns;
    bool hasMarks = false;
    void (*activate)(int row, int column) = nullptr;  // Enter (column -1) and double-click
    void (*edit)(int row, int column) = nullptr;      // F2 (column -1) and click on a column but the first
    bool (*key)(int row, int key) = nullptr;          // other keys; returns true when it has handled the key
    void (*typed)(int row, wchar_t character) = nullptr;
    void (*check)(int row) = nullptr;  // Space and click on the mark
    void (*menu)(int row, POINT screen) = nullptr;
    bool menuWithoutRow = false;  // `menu` is also called when no row is selected, with -1
};

// One list. The pane that shows it owns it, and keeps it until its window is destroyed.
struct ListView {
    HWND window = nullptr;
    // Called first for each key; returns true when it has handled the key. May be null.
    bool (*handleKey)(HWND from, WPARAM key) = nullptr;
    bool inDialog = false;  // Tab, Enter and Esc belong to the dialog, which renews it; set before it is created

    // The fields below are private to the list.
    struct Place {
        std::vector<int> widths;  // pixels, as the user has set them; empty: fitted
        bool byUser = false;      // the user has changed the width of a column
        int selected = 0;
        int top = 0;
    };
    const ListKind* kind = nullptr;        // the kind that is shown
    const ListContent* content = nullptr;  // null: no content yet
    std::map<const ListKind*, Place> places;
    HIMAGELIST heightOnly = nullptr;  // image list that sets the height of the rows
};

bool ListViewCreate(ListView& list, HWND parent, int controlId);  // false: it could not be created
// Shows the columns of a kind without rows. The next update scrolls to where the user left this kind. `kind` must
// outlive the list.
void ListViewShow(ListView& list, const ListKind& kind);
void ListViewUpdate(ListView& list, const ListContent& content);  // the content must stay until the next update
// Renews colours and fonts. ListViewShow must follow, because the columns are removed.
void ListViewApplyTheme(ListView& list);
// Renews the colours, the fonts and the columns of the lists in that dialog. Their rows and places stay.
void ListViewsRenew(HWND dialog);
// Handles WM_NOTIFY. Returns true when the notification was for the list; `result` is then the answer if there is one.
bool ListViewHandleNotify(ListView& list, const NMHDR& header, LRESULT* result);
// The same in a dialog: sets DWLP_MSGRESULT, and returns what the dialog's procedure is to return.
INT_PTR ListViewHandleDialogNotify(HWND dialog, ListView& list, const NMHDR& header);

// The ground of a row that is drawn up to its edges: `back`, with the bar of a selection in a list that has the keyboard. A
// selection without it has a frame in the high-contrast mode, where a tint is hardly seen.
void ListRowFill(HDC dc, const RECT& row, COLORREF back, bool selected, bool focused);
// For LVN_ITEMCHANGED of a list view whose rows are drawn up to its edges: the control itself leaves out the edge, where
// a selection that has moved on would stay.
void ListRowRepaint(const NMLISTVIEW& changed);

int ListViewSelected(const ListView& list);  // -1: none
void ListViewSelect(const ListView& list, int row);
// Copies the selected row, or all of them with the titles of the columns, as text with tabs.
void ListViewCopy(const ListView& list, bool all);
RECT ListViewCell(const ListView& list, int row, int column);  // in client coordinates, without the mark
// Opens an edit field over the cell (ui/inline_edit.h).
void ListViewEditCell(ListView& list, int row, int column, const std::wstring& text, bool append, InlineCommit commit);
// The same over the whole row.
void ListViewEditRow(ListView& list, int row, const std::wstring& text, bool append, InlineCommit commit);
