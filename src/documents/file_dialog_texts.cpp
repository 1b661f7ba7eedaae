#include "documents/file_dialog_texts.h"

#include "settings/file_type_table.h"

std::wstring FileDialogFilter() {
    std::wstring text;
    for (const FileTypeFilter& filter : FileDialogFilters()) {
        text.append(filter.description).push_back(L'\0');
        text.append(filter.pattern).push_back(L'\0');
    }
    text.push_back(L'\0');
    return text;
}
