// Any bytes as a project file: nothing breaks, each fault has a line, and a value that is written is read back.
#include "project/project_file.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

static void RequireOfProject(bool condition) {
    if (!condition) std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes{reinterpret_cast<const char*>(data), size};
    const ProjectFile file = ProjectParse(bytes);
    const auto lines =
        static_cast<int>(std::ranges::count_if(bytes, [](char c) { return c == '\n' || c == '\r'; })) + 1;
    for (const ProjectFault& fault : file.faults) RequireOfProject(fault.line >= 1 && fault.line <= lines);
    RequireOfProject(file.readable || file.faults.size() == 1);
    for (const ProjectValue& include : file.includes) ProjectPath(L"C:\\folder", include.text);
    IsInExcludedFolder(ProjectExcludesOf(file, L"C:\\p\\"), L"C:\\p\\a\\b\\c.bas", false);
    if (!file.readable) return 0;
    const std::string written = ProjectWithValue(bytes, "Project", "Main", L"a/b.bas");
    RequireOfProject(written.size() > kMostProjectBytes || ProjectParse(written).source.text == L"a/b.bas");
    RequireOfProject(ProjectWithValue(written, "Project", "Main", L"a/b.bas") == written);
    return 0;
}
