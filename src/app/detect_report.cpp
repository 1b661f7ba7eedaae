#include "app/detect_report.h"

#include "settings/compilers.h"

int DetectCount(const Settings& settings, const std::function<bool(const wchar_t* path)>& isValid) {
    int found = 0;
    for (const CompilerSettings& compiler : settings.compilers)
        if (isValid(compiler.path)) ++found;
    return found;
}

std::wstring DetectReportText(const Settings& settings, int found) {
    std::wstring text = L"Compiler Auto-Detect Results\n================================\n\n";
    for (const std::uint32_t id : g_defaultOrder) {
        const wchar_t* path = settings.compilers[id].path;
        text.append(g_compilers[id].name).append(L": ").append(path[0] != L'\0' ? path : L"(not found)");
        text.append(L"\n\n");
    }
    return text + L"Found: " + std::to_wstring(found) + L"/" + std::to_wstring(kCompilerCount) +
           L"\n\nLog file: Editor_Detect.log";
}
