#include "files/keep_aside.h"

#include "base/path.h"
#include "files/file_io.h"

#include <string_view>

namespace {

constexpr std::size_t kMostCompared = 64 << 20;  // bytes
constexpr int kNames = 9;

bool HaveSameBytes(const std::wstring& a, const std::wstring& b) {
    std::string first, second;
    return ReadSharedFile(a, kMostCompared, &first) && ReadSharedFile(b, kMostCompared, &second) && first == second;
}

}  // namespace

std::wstring KeepAside(const std::wstring& path) {
    for (int i = 1; i <= kNames; ++i) {
        const std::wstring aside = path + L".bad" + (i > 1 ? std::to_wstring(i) : std::wstring());
        if (FileExists(aside.c_str()) && i < kNames && !HaveSameBytes(path, aside)) continue;
        const bool kept = CopyFileW(PathForSystem(path.c_str()).c_str(), PathForSystem(aside.c_str()).c_str(), FALSE);
        return kept ? aside : std::wstring();
    }
    return {};
}
