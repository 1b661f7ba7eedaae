// Where the window of the file finder and its parts stand. Pixels. Pure.
#pragma once

struct QuickArea {
    int left = 0, top = 0, right = 0, bottom = 0;
    int Width() const { return right - left; }
    bool operator==(const QuickArea&) const = default;
};

struct QuickSizes {
    QuickArea room;    // of the main window: at the top where the editor begins, at the bottom the status bar
    QuickArea editor;  // empty: there is none
    int dpi = 96;
    int textHeight = 0;  // a line of the field and of the lower edge
    int rowHeight = 0;
    bool preview = false;  // wanted; left out where there is no room
};

struct QuickLayout {
    QuickArea window;  // in the main window; the others are in this one
    QuickArea box;     // the frame around the field
    QuickArea field;
    QuickArea list;
    QuickArea preview;  // empty: none
    QuickArea status;
};
QuickLayout QuickLayoutOf(const QuickSizes& sizes);
