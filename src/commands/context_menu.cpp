#include "commands/context_menu.h"

#include "resources/ids.h"

namespace {

constexpr ContextItem kSeparator = {};

constexpr ContextItem kTextItems[] = {
    {IDM_EDIT_UNDO, L"&Undo"},
    {IDM_EDIT_REDO, L"&Redo"},
    kSeparator,
    {IDM_EDIT_CUT, L"Cu&t"},
    {IDM_EDIT_COPY, L"&Copy"},
    {IDM_EDIT_PASTE, L"&Paste"},
    {IDM_EDIT_SELECT_ALL, L"Select &All"},
    kSeparator,
    {IDM_AI_EXPLAIN, L"E&xplain This Error", true},
    {IDM_AI_FIX, L"&Fix This Error", true},
    {IDM_ERROR_NEXT, L"&Next Error", true},
    kSeparator,
    {IDM_SYMBOL_DEFINITION, L"Go to &Definition"},
    {IDM_SYMBOL_REFERENCES, L"Find All R&eferences"},
    {IDM_SYMBOL_RENAME, L"Rena&me Symbol..."},
    kSeparator,
    {IDM_DEBUG_BREAKPOINT, L"Toggle &Breakpoint"},
    {IDM_DEBUG_RUN_TO_CURSOR, L"Run to Cur&sor"},
    {IDM_DEBUG_NAME_PLACE, L"Name a P&lace..."},
    kSeparator,
    {IDM_AI_OPENAI, L"Ask About Select&ion"},
};

constexpr ContextItem kMarginItems[] = {
    {IDM_DEBUG_BREAKPOINT, L"Toggle &Breakpoint"},
    {IDM_DEBUG_ENABLE_BREAKPOINT, L"&Enable or Disable Breakpoint"},
    {IDM_DEBUG_CONDITIONAL, L"&Conditional Breakpoint..."},
    {IDM_DEBUG_RUN_TO_CURSOR, L"&Run to Line"},
    kSeparator,
    {IDM_BOOKMARK_TOGGLE, L"&Toggle Bookmark"},
    {IDM_VIEW_FOLD, L"F&old or Unfold Block"},
    kSeparator,
    {IDM_AI_EXPLAIN, L"E&xplain This Error", true},
    {IDM_AI_FIX, L"&Fix This Error", true},
};

constexpr ContextItem kOutputItems[] = {
    {IDM_EDIT_COPY, L"&Copy"},
    {IDM_OUTPUT_COPY_ALL, L"C&opy All"},
    {IDM_EDIT_SELECT_ALL, L"Select &All"},
    kSeparator,
    {IDM_ERROR_SOURCE, L"&Go to Source", true},
    {IDM_ERROR_NEXT, L"&Next Error"},
    {IDM_ERROR_PREVIOUS, L"&Previous Error"},
    kSeparator,
    {IDM_AI_EXPLAIN, L"E&xplain This Error", true},
    {IDM_AI_FIX, L"&Fix This Error", true},
    kSeparator,
    {IDM_OUTPUT_CLEAR, L"C&lear"},
};

constexpr ContextItem kErrorItems[] = {
    {IDM_ERROR_SOURCE, L"&Go to Source", true},
    {IDM_ERROR_NEXT, L"&Next Error"},
    {IDM_ERROR_PREVIOUS, L"&Previous Error"},
    kSeparator,
    {IDM_EDIT_COPY, L"&Copy"},
    {IDM_OUTPUT_COPY_ALL, L"C&opy All"},
    kSeparator,
    {IDM_AI_EXPLAIN, L"E&xplain This Error", true},
    {IDM_AI_FIX, L"&Fix This Error", true},
};

}  // namespace

std::span<const ContextItem> ContextItemsOf(ContextPlace place) {
    switch (place) {
        case ContextPlace::Text: return kTextItems;
        case ContextPlace::Margin: return kMarginItems;
        case ContextPlace::Output: return kOutputItems;
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
