// Any bytes as session and workspace files. A session that is composed again must give back what was read from it.
#include "session/session_text.h"
#include "session/workspace_text.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace {

struct FileList {
    wchar_t paths[kWorkspaceMaxFiles][kPathCapacity];
    int cursors[kWorkspaceMaxFiles];
};

void Require(bool condition) {
    if (!condition) std::abort();
}

void ReadSession(std::string_view text) {
    bool hasPath = false;
    for (const SessionItem& item : SessionParse(text)) {
        Require((item.file < 0) == (item.key < SessionKey::Path));
        hasPath = hasPath || (item.key == SessionKey::Path && !item.text.empty());
        SessionParseLines(item.text);
    }
    Require(!hasPath || SessionListsFiles(text));
}

void ReadWorkspace(std::string_view bytes) {
    const std::wstring text{bytes.begin(), bytes.end()};
    static const auto files = std::make_unique<FileList>();
    const int count = JsonParseFiles(text.c_str(), files->paths, files->cursors, kWorkspaceMaxFiles);
    Require(count >= 0 && count <= kWorkspaceMaxFiles);
    wchar_t value[32];
    JsonExtractString(text.c_str(), L"compiler", value, 32);
    JsonExtractInt(text.c_str(), L"activeFile", 0);

    // Escaping and extracting give back any text that is not too long for a path.
    wchar_t escaped[2048];
    JsonEscape(text.c_str(), escaped, 2048);
    wchar_t back[kPathCapacity];
    const std::wstring quoted = L"\"path\":\"" + std::wstring{escaped} + L"\"";
    Require(JsonExtractString(quoted.c_str(), L"path", back, kPathCapacity) == 1);
    const std::wstring original = text.c_str();
    Require(original.size() >= kPathCapacity || original == back);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text{reinterpret_cast<const char*>(data), size};
    ReadSession(text);
    ReadWorkspace(text);
    return 0;
}
