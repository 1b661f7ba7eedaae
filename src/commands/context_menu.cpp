#include "commands/context_menu.h"

#include "base/texts.h"
#include "resources/ids.h"

namespace {

constexpr ContextItem kSeparator = {};

constexpr ContextItem kTextItems[] = {
    {IDM_EDIT_UNDO, English(L"&Undo")},
    {IDM_EDIT_REDO, English(L"&Redo")},
    kSeparator,
    {IDM_EDIT_CUT, English(L"Cu&t")},
    {IDM_EDIT_COPY, English(L"&Copy")},
    {IDM_EDIT_PASTE, English(L"&Paste")},
    {IDM_EDIT_SELECT_ALL, English(L"Select &All")},
    kSeparator,
    {IDM_AI_EXPLAIN, English(L"E&xplain This Error"), true},
    {IDM_AI_FIX, English(L"&Fix This Error"), true},
    {IDM_ERROR_NEXT, English(L"&Next Error"), true},
    kSeparator,
    {IDM_SYMBOL_DEFINITION, English(L"Go to &Definition")},
    {IDM_SYMBOL_REFERENCES, English(L"Find All R&eferences")},
    {IDM_SYMBOL_RENAME, English(L"Rena&me Symbol...")},
    kSeparator,
    {IDM_DEBUG_BREAKPOINT, English(L"Toggle &Breakpoint")},
    {IDM_DEBUG_RUN_TO_CURSOR, English(L"Run to Cur&sor")},
    {IDM_DEBUG_NAME_PLACE, English(L"Name a P&lace...")},
    kSeparator,
    {IDM_AI_OPENAI, English(L"Ask About Select&ion")},
};

constexpr ContextItem kMarginItems[] = {
    {IDM_DEBUG_BREAKPOINT, English(L"Toggle &Breakpoint")},
    {IDM_DEBUG_ENABLE_BREAKPOINT, English(L"&Enable or Disable Breakpoint")},
    {IDM_DEBUG_CONDITIONAL, English(L"&Conditional Breakpoint...")},
    {IDM_DEBUG_RUN_TO_CURSOR, English(L"&Run to Line")},
    kSeparator,
    {IDM_BOOKMARK_TOGGLE, English(L"&Toggle Bookmark")},
    {IDM_VIEW_FOLD, English(L"F&old or Unfold Block")},
    kSeparator,
    {IDM_AI_EXPLAIN, English(L"E&xplain This Error"), true},
    {IDM_AI_FIX, English(L"&Fix This Error"), true},
};

constexpr ContextItem kOutputItems[] = {
    {IDM_EDIT_COPY, English(L"&Copy")},
    {IDM_OUTPUT_COPY_ALL, English(L"C&opy All")},
    {IDM_EDIT_SELECT_ALL, English(L"Select &All")},
    kSeparator,
    {IDM_ERROR_SOURCE, English(L"&Go to Source"), true},
    {IDM_ERROR_NEXT, English(L"&Next Error")},
    {IDM_ERROR_PREVIOUS, English(L"&Previous Error")},
    kSeparator,
    {IDM_AI_EXPLAIN, English(L"E&xplain This Error"), true},
    {IDM_AI_FIX, English(L"&Fix This Error"), true},
    kSeparator,
    {IDM_OUTPUT_CLEAR, English(L"C&lear")},
};

constexpr ContextItem kListingItems[] = {
    {IDM_EDIT_COPY, English(L"&Copy")},
    {IDM_EDIT_SELECT_ALL, English(L"Select &All")},
};

constexpr ContextItem kErrorItems[] = {
    {IDM_ERROR_SOURCE, English(L"&Go to Source"), true},
    {IDM_ERROR_NEXT, English(L"&Next Error")},
    {IDM_ERROR_PREVIOUS, English(L"&Previous Error")},
    kSeparator,
    {IDM_EDIT_COPY, English(L"&Copy")},
    {IDM_OUTPUT_COPY_ALL, English(L"C&opy All")},
    kSeparator,
    {IDM_AI_EXPLAIN, English(L"E&xplain This Error"), true},
    {IDM_AI_FIX, English(L"&Fix This Error"), true},
};

}  // namespace

std::span<const ContextItem> ContextItemsOf(ContextPlace place) {
    switch (place) {
        case ContextPlace::Text: return kTextItems;
        case ContextPlace::Margin: return kMarginItems;
        case ContextPlace::Output: return kOutputItems;
        case ContextPlace::Listing: return kListingItems;
        case ContextPlace::Errors: break;
    }
    return kErrorItems;
}

std::vector<ContextItem> ContextItemsNow(ContextPlace place, bool onDiagnostic, int aiCommand) {
    std::vector<ContextItem> items;
    for (ContextItem item : ContextItemsOf(place)) {
        if (item.ofDiagnostic && !onDiagnostic) continue;
        if (item.command == 0 && (items.empty() || items.back().command == 0)) continue;
        if (item.command == IDM_AI_OPENAI) item.command = aiCommand;
        items.push_back(item);
    }
    while (!items.empty() && items.back().command == 0) items.pop_back();
    return items;
}
