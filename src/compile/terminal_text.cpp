#include "compile/terminal_text.h"

#include "base/texts.h"
#include "base/utf8.h"

#include <algorithm>

void TerminalRemember(TerminalHistory& history, const std::wstring& command) {
    std::erase(history.commands, command);
    history.commands.push_back(command);
    if (history.commands.size() > kTerminalHistory) history.commands.erase(history.commands.begin());
    history.at = history.commands.size();
    history.typed.clear();
}

bool TerminalRecall(TerminalHistory& history, bool older, std::wstring* shown) {
    const std::size_t count = history.commands.size();
    if (older ? history.at == 0 : history.at >= count) return false;
    if (history.at == count) history.typed = *shown;
    history.at = older ? history.at - 1 : history.at + 1;
    *shown = history.at < count ? history.commands[history.at] : history.typed;
    return true;
}

bool TerminalIsKept(std::wstring_view command) {
    const auto isControl = [](wchar_t c) { return c < L' '; };
    return !command.empty() && command.size() <= kLongestKeptCommand && command[0] != L' ' &&
           std::ranges::none_of(command, isControl);
}

std::string TerminalHistoryBytes(const std::vector<std::wstring>& commands) {
    std::string bytes;
    for (const std::wstring& command : commands)
        if (TerminalIsKept(command)) bytes += ToUtf8(command) + "\r\n";
    return bytes;
}

std::vector<std::wstring> TerminalHistoryOf(std::string_view bytes) {
    TerminalHistory history;
    while (!bytes.empty()) {
        const std::size_t end = std::min(bytes.find_first_of("\r\n"), bytes.size());
        if (const std::wstring command = Utf8ToWideText(bytes.substr(0, end)); TerminalIsKept(command))
            TerminalRemember(history, command);
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
    }
    return history.commands;
}

std::wstring TerminalCommandLine(std::wstring_view systemFolder, std::wstring_view command) {
    const std::wstring folder = systemFolder.empty() ? std::wstring() : std::wstring(systemFolder) + L"\\";
    return L"\"" + folder + L"cmd.exe\" /d /s /c \"" + std::wstring(command) + L"\"";
}

std::wstring TerminalEndText(const StageResult& result) {
    if (result.end == BuildEnd::Stopped) return Text(L"--- Command stopped ---\r\n");
    return result.exitCode == 0 ? std::wstring()
                                : TextWith(L"--- Exit code {1} ---\r\n", {std::to_wstring(result.exitCode)});
}
