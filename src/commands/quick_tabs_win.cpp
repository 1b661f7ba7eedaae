// The open documents, in the order of their tabs, for the list of all tabs. UI thread only.
#include "commands/quick_source.h"

#include "base/texts.h"
#include "documents/document_row.h"

#include <memory>
#include <string>
#include <vector>

namespace {

struct TabsState {
    std::vector<DocumentId> documents;
    FuzzyIndices texts;
};
TabsState g_tabList;

void GatherTabs(HWND) {
    g_tabList.documents.clear();
    auto index = std::make_shared<FuzzyIndex>();
    for (const DocumentTab& tab : g_documents.tabs) {
        const std::wstring text = tab.hasFile ? tab.path : tab.label;
        if (FuzzyAdd(index.get(), text, tab.hasFile ? text.rfind(L'\\') + 1 : 0)) g_tabList.documents.push_back(tab.id);
    }
    g_tabList.texts = {index};
}

int IndexOf(const QuickItem& item) { return TabBarFindDocument(g_tabList.documents[item.number]); }

// A dot: unsaved changes.
QuickExtra ExtraOfTab(const QuickItem& item) {
    const int index = IndexOf(item);
    if (index < 0) return {.enabled = false};
    const bool modified = TabAt(index).modified, active = index == g_documents.activeTab;
    return {.keys = index < 8 ? L"Ctrl+" + std::to_wstring(index + 1) : L"",
            .mark = modified ? QuickMark::Dot
                    : active ? QuickMark::Tick
                             : QuickMark::None};
}

void ShowTab(const QuickItem& item, const QuickQuery&) { TabBarActivate(IndexOf(item)); }

QuickPreview PreviewOfTab(const QuickItem& item, const QuickQuery&) {
    const int index = IndexOf(item);
    if (index < 0) return {};
    const bool read = TabAt(index).editor != nullptr;
    return {.document = read ? TabAt(index).id : 0, .path = TabAt(index).path};
}

}  // namespace

const QuickSource kQuickTabs = {
    .prefix = L'<',
    .title = English(L"tabs"),
    .begin = GatherTabs,
    .texts = [](const QuickQuery&) -> const FuzzyIndices& { return g_tabList.texts; },
    .extra = ExtraOfTab,
    .preview = PreviewOfTab,
    .accept = ShowTab,
};
