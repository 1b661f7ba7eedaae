#include "compile/program_run.h"

#include "base/hex_text.h"

std::wstring RunDoubt(const BuildRecord& last, bool sourceModified) {
    if (!last.source.empty() && !last.programWritten)
        return L"The last build wrote no program; this one is of an earlier build.\r\n";
    return sourceModified ? L"The source was changed after this program was built.\r\n" : L"";
}

std::wstring ProgramEndText(const StageResult& result) {
    if (result.end == BuildEnd::Stopped) return L"--- Program stopped ---\r\n";
    // The codes of a crash are known by their hexadecimal form.
    const bool crash = result.exitCode >= 0x80000000;
    const std::wstring code = crash ? L"0x" + HexText(result.exitCode, 8) : std::to_wstring(result.exitCode);
    return L"--- Program ended (exit code " + code + L") ---\r\n";
}
