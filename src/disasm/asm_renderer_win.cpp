// Runs on the worker thread of the ASM pane, on copies. Uses no window and no part of `g_app`.
#include "disasm/asm_renderer.h"

#include "base/handles.h"
#include "files/file_io.h"
#include "files/text_encoding.h"

#include <windows.h>

namespace {

constexpr std::size_t kMostSourceText = std::size_t{32} << 20;

std::string Utf8OfWide(std::wstring_view wide) {
    const HeapBlock<char> text(WideToUtf8(std::wstring(wide).c_str()));
    return text != nullptr ? text.get() : "";
}

// Reads a source as UTF-8; text that is not UTF-8 is converted from the ANSI code page.
std::string ReadSourceText(const std::wstring& path) {
    std::string bytes;
    if (!ReadSharedFile(path, kMostSourceText, &bytes) || IsValidUtf8Bytes(bytes.data(), bytes.size())) return bytes;
    const int size = static_cast<int>(bytes.size());
    std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, wide.data(), static_cast<int>(wide.size()));
    return Utf8OfWide(wide);
}

bool IsOlderFile(const std::wstring& a, const std::wstring& b) {
    WIN32_FILE_ATTRIBUTE_DATA first = {};
    WIN32_FILE_ATTRIBUTE_DATA second = {};
    return GetFileAttributesExW(PathForSystem(a.c_str()).c_str(), GetFileExInfoStandard, &first) != FALSE &&
           GetFileAttributesExW(PathForSystem(b.c_str()).c_str(), GetFileExInfoStandard, &second) != FALSE &&
           CompareFileTime(&first.ftLastWriteTime, &second.ftLastWriteTime) < 0;
}

}  // namespace

void AsmRender(AsmFeed& feed, const AsmRequest& request, const std::string* listing) {
    AsmRenderIn({.exists = [](const std::wstring& path) { return FileExists(path.c_str()); },
                 .read = ReadSharedFile,
                 .sourceText = ReadSourceText,
                 .isOlder = IsOlderFile,
                 .mapFile = PathOfMapFile,
                 .utf8 = Utf8OfWide,
                 .beginPart = [&feed](std::string_view heading) { AsmFeedBeginPart(feed, heading); },
                 .put = [&feed](std::string_view text) { return AsmFeedPut(feed, text); },
                 .markPlace = [&feed] { AsmFeedMarkPlace(feed); },
                 .cancelled = [&feed] { return AsmFeedIsCancelled(feed); }},
                request, listing);
}
