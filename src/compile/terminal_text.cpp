#include "compile/terminal_text.h"

void TerminalRemember(TerminalHistory& history, const std::wstring& command) {
    std::erase(history.commands, command);
    history.commands.push_back(command);
    if (history.commands.size() > kTerminalHistory) history.commands.erase(history.commands.begin());
    history.at = history.commands.size();
}

bool TerminalRecall(TerminalHistory& history, bool older, std::wstring* shown) {
    const std::size_t count = history.commands.size();
    if (older ? history.at == 0 : history.at >= count) return false;
    history.at = older ? history.at - 1 : history.at + 1;
    *shown = history.at < count ? history.commands[history.at] : std::wstring();
    return true;
}

std::wstring TerminalCommandLine(std::wstring_view systemFolder, std::wstring_view command) {
    const std::wstring folder = systemFolder.empty() ? std::wstring() : std::wstring(systemFolder) + L"\\";
    return L"\"" + folder + L"cmd.exe\" /d /s /c \"" + std::wstring(command) + L"\"";
}

std::wstring TerminalEndText(const StageResult& result) {
    if (result.end == BuildEnd::Stopped) return L"--- Command stopped ---\r\n";
    return result.exitCode == 0 ? std::wstring() : L"--- Exit code " + std::to_wstring(result.exitCode) + L" ---\r\n";
}
