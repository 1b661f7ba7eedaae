#include "compile/program_run.h"

#include "base/hex_text.h"
#include "base/texts.h"

#include <algorithm>
#include <string_view>

static constexpr const wchar_t* kUseConsole = English(L"stop it (Ctrl+Break) and use Build & Run (F5).\r\n");

std::wstring RunDoubt(const BuildRecord& last, bool sourceModified) {
    if (!last.source.empty() && !last.programWritten)
        return Text(L"The last build wrote no program; this one is of an earlier build.\r\n");
    return sourceModified ? Text(L"The source was changed after this program was built.\r\n") : L"";
}

std::wstring ConsoleKeysText(const PeImage& program) {
    constexpr std::string_view kReadKeys[] = {"ReadConsoleInputA",
                                              "ReadConsoleInputW",
                                              "PeekConsoleInputA",
                                              "PeekConsoleInputW",
                                              "_getch",
                                              "_getche",
                                              "_getwch",
                                              "_getwche",
                                              "_kbhit"};
    const bool reads = std::ranges::any_of(program.imports, [&](const auto& slot) {
        const std::string_view name = slot.second;
        return std::ranges::count(kReadKeys, name.substr(name.find('!') + 1)) != 0;
    });
    if (!reads) return {};
    return TextWith(L"This program can wait for single keys, which do not reach it in the output pane. If it does: {1}",
                    {Text(kUseConsole)});
}

std::wstring UnreadInputText() {
    return TextWith(
        L"The program has not read this input. If it reads the console itself, no input reaches it here: {1}",
        {Text(kUseConsole)});
}

std::wstring RunningText(const std::wstring& program, const std::wstring& arguments) {
    return TextWith(L"--- Running: {1}{2}{3} ---\r\n", {program, (arguments.empty() ? L"" : L" "), arguments});
}

std::wstring RunFailedText(std::uint32_t error, const std::wstring& reason) {
    return TextWith(L"Run failed (Win32 error {1}): {2}\r\n", {std::to_wstring(error), reason});
}

std::wstring ExitCodeText(std::uint32_t exitCode) {
    return exitCode >= 0x80000000 ? L"0x" + HexText(exitCode, 8) : std::to_wstring(exitCode);
}

std::wstring ProgramEndText(const StageResult& result) {
    if (result.end == BuildEnd::Stopped) return Text(L"--- Program stopped ---\r\n");
    return TextWith(L"--- Program ended (exit code {1}) ---\r\n", {ExitCodeText(result.exitCode)});
}
