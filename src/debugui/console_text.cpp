// The rows of a console as text.
#include "debugui/console_text.h"

std::wstring ConsoleText(const std::vector<std::wstring>& rows) {
    std::wstring text;
    std::size_t end = 0;  // behind the last row that holds something
    for (const std::wstring& row : rows) {
        const std::size_t last = row.find_last_not_of(std::wstring_view(L" \0", 2));
        text += row.substr(0, last == std::wstring::npos ? 0 : last + 1) + L"\n";
        if (last != std::wstring::npos) end = text.size();
    }
    return text.substr(0, end);
}
