// The documents that were closed last, so that each can be opened again with its place. They are kept in memory only: the
// text of an untitled document that the user did not want to save is nowhere on the disk. The rules are pure, the rest is
// in closed_tabs_win.cpp. UI thread only.
#pragma once

#include "base/events.h"
#include "files/text_encoding.h"
#include "session/session_text.h"

#include <cstdint>
#include <string>
#include <vector>

struct ClosedTab {
    std::wstring path;  // empty: a document without a file
    std::wstring label;
    int index = 0;  // in the row
    bool pinned = false;
    SessionFile place;
    std::string text;  // UTF-8, of a document without a file
    LineEnding lineEnding = LineEnding::CrLf;
};

// The last one is the one that is opened again next. Keeps so many, and so much text.
inline constexpr std::size_t kMostClosedTabs = 50;
inline constexpr std::size_t kMostClosedText = std::size_t{32} << 20;  // bytes
void ClosedTabsAdd(std::vector<ClosedTab>& closed, ClosedTab tab);

void ClosedTabsOnClosing(DocumentId document);  // the event documentClosing
bool ClosedTabsAny();
// Opens the document that was closed last and is not open. False when there is none, or it could not be opened.
bool ClosedTabsReopen();
// The program ends: what is closed from now on is not kept.
void ClosedTabsEnd();
