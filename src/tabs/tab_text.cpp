#include "tabs/tab_text.h"

#include "base/texts.h"

#include <cwctype>

std::wstring TabStateText(const TabState& state) {
    const struct {
        bool holds;
        const wchar_t* words;
    } rows[] = {{state.modified, Text(L"unsaved changes")},
                {!state.modified && state.hasFile, Text(L"saved")},
                {!state.modified && !state.hasFile, Text(L"never saved")},
                {state.gone, Text(L"gone from the disk")},
                {state.changed, Text(L"changed on the disk")},
                {state.readOnly, Text(L"read-only")},
                {state.building, Text(L"is being built")},
                {state.failed && !state.building, Text(L"last build failed")},
                {state.built && !state.building, Text(L"built without errors")},
                {state.debugged, Text(L"is being debugged")}};
    std::wstring text;
    for (const auto& row : rows)
        if (row.holds) text += (text.empty() ? L"" : L", ") + std::wstring(row.words);
    if (!text.empty()) text[0] = static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(text[0])));
    return text;
}

std::wstring TabMenuText(int index, std::wstring_view name) {
    std::wstring text = index < 9 ? L"&" + std::to_wstring(index + 1) + L" " : L"";
    for (const wchar_t c : name) text.append(c == L'&' ? 2 : 1, c);  // a single & would be an access key
    return text;
}

std::wstring TabFullName(std::wstring_view name, std::wstring_view folder) {
    std::wstring text(name);
    if (!folder.empty()) text.append(L" (").append(folder).append(L")");
    return text;
}
