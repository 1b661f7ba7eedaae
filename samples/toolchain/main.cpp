// Each personality is an executable of its own: KVX_STANDIN_NAME names its row of kProfiles.
#include "driver.h"

#include <cstdio>
#include <exception>
#include <filesystem>

namespace {

template <class Char>
int Run(int count, Char** arguments) {
    constexpr size_t kIndex = standin::FindProfile(KVX_STANDIN_NAME);
    static_assert(kIndex < standin::kProfiles.size(), "no such personality");
    const standin::Profile& profile = standin::kProfiles[kIndex];
    int result = 3;
    std::string messages;
    try {
        std::vector<std::string> args;
        for (int i = 1; i < count; ++i) {
            const std::u8string utf8 = std::filesystem::path(arguments[i]).u8string();
            args.emplace_back(utf8.begin(), utf8.end());
        }
        result = standin::RunCompiler(profile, args, messages);
    } catch (const std::exception& error) {  // no memory, or a name that is not valid Unicode
        messages += std::string(profile.name) + ": fatal error: " + error.what() + "\n";
    }
    std::fwrite(messages.data(), 1, messages.size(), stdout);
    return result;
}

}  // namespace

#ifdef _WIN32
int wmain(int count, wchar_t** arguments) { return Run(count, arguments); }  // names outside the ANSI code page
#else
int main(int count, char** arguments) { return Run(count, arguments); }
#endif
