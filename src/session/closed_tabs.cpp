#include "session/closed_tabs.h"

#include <utility>

void ClosedTabsAdd(std::vector<ClosedTab>& closed, ClosedTab tab) {
    if (tab.text.size() > kMostClosedText) return;
    closed.push_back(std::move(tab));
    std::size_t bytes = 0;
    for (const ClosedTab& kept : closed) bytes += kept.text.size();
    while (closed.size() > kMostClosedTabs || bytes > kMostClosedText) {
        bytes -= closed.front().text.size();
        closed.erase(closed.begin());
    }
}
