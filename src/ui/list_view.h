// A list of rows with columns that give way, drawn by the theme: a virtual list view that panes fill and that asks them
// when the user does something. Knows rows and cells, not what they mean. UI thread only.
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
    int characters;   // width; the last column takes what is left
    int least;        // characters that it keeps where there is not room for all columns
    bool fixedPitch;  // in UiFixedFont
};

// What a list shows and what comes of it: a constant of the pane. A null procedure: nothing comes of it.
struct ListKind {
    std::span<const ListColumn> columns;
    bool hasMarks = false;
    void (*activate)(int row, int column) = nullptr;  // Enter (column -1), double-click
    void (*edit)(int row, int column) = nullptr;      // F2 (column -1), click on a cell of the selected row
    bool (*key)(int row, int key) = nullptr;          // further keys; true: taken
    void (*typed)(int row, wchar_t character) = nullptr;
    void (*check)(int row) = nullptr;  // Space, a click on the mark
    void (*menu)(int row, POINT screen) = nullptr;
};

// One list; belongs to the pane that shows it and lives as long as its window.
struct ListView {
    HWND window = nullptr;
    bool (*handleKey)(HWND from, WPARAM key) = nullptr;  // before the list answers it; null: no one

    // The rest is the list's own.
    struct Place {
        std::vector<int> widths;  // as the user left them, pixels; empty: as they fit
        bool byUser = false;      // the columns were drawn to other widths
        int selected = 0;
        int top = 0;
    };
    const ListKind* kind = nullptr;        // that is shown
    const ListContent* content = nullptr;  // null: not yet filled
    std::map<const ListKind*, Place> places;
    HIMAGELIST heightOnly = nullptr;  // a list view takes its row height from its pictures
};

bool ListViewCreate(ListView& list, HWND parent, int controlId);  // false when that fails
// Shows the columns of a kind, later its rows where the user left them. `kind` must outlive the list.
void ListViewShow(ListView& list, const ListKind& kind);
void ListViewUpdate(ListView& list, const ListContent& content);  // the content must outlive the next update
void ListViewApplyTheme(ListView& list);                          // colours and fonts; columns fit anew
bool ListViewHandleNotify(ListView& list, const NMHDR& header, LRESULT* result);

int ListViewSelected(const ListView& list);  // -1: none
void ListViewSelect(const ListView& list, int row);
RECT ListViewCell(const ListView& list, int row, int column);  // client coordinates, without the mark
// An edit field over the cell (ui/inline_edit.h).
void ListViewEditCell(ListView& list, int row, int column, const std::wstring& text, bool append, InlineCommit commit);
