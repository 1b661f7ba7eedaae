#include "compile/side_logs.h"

#include "base/path.h"

static constexpr std::uint64_t kLongestSideLog = 16 * 1024 * 1024;  // bytes

std::vector<std::wstring> SideLogPaths(std::wstring_view source) {
    std::vector<std::wstring> paths;
    for (const wchar_t* extension : {L".log", L".err"}) {
        std::wstring path = ReplaceExtension(source, extension);
        if (!SamePathText(path, source)) paths.push_back(std::move(path));
    }
    return paths;
}

bool SideLogIsFresh(const SideLogFile& file, std::uint64_t startTime) {
    return !file.isFolder && file.bytes > 0 && file.bytes <= kLongestSideLog && file.written >= startTime;
}
