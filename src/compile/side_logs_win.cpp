#include "compile/side_logs.h"

#include "base/decode.h"
#include "base/handles.h"
#include "files/file_io.h"
#include "output/output_feed.h"
#include "output/output_pane.h"

#include <algorithm>

namespace {

constexpr std::size_t kShownBytes = 256 * 1024;  // shown at most of one file

bool IsLogOfThisBuild(const std::wstring& path, std::uint64_t startTime) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (!GetFileAttributesExW(PathForSystem(path.c_str()).c_str(), GetFileExInfoStandard, &data)) return false;
    const FILETIME& written = data.ftLastWriteTime;
    return SideLogIsFresh({.isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
                           .bytes = std::uint64_t{data.nFileSizeHigh} << 32 | data.nFileSizeLow,
                           .written = std::uint64_t{written.dwHighDateTime} << 32 | written.dwLowDateTime},
                          startTime);
}

}  // namespace

void SideLogsShow(const std::wstring& source, std::uint64_t startTime) {
    for (const std::wstring& path : SideLogPaths(source)) {
        if (!IsLogOfThisBuild(path, startTime)) continue;
        std::size_t length = 0;
        const HeapBlock<char> bytes(ReadFileUtf8(path.c_str(), &length));
        wchar_t* text = bytes ? DecodeCompilerText(bytes.get(), std::min(length, kShownBytes)) : nullptr;
        if (text == nullptr) continue;
        OutputPaneAppend((L"--- " + path + L" ---\r\n").c_str(), 0);
        OutputFeedBegin({.log = path});
        OutputFeedStream(text, 0);
        OutputFeedStreamEnd();
        while (!OutputFeedIsEmpty()) OutputFeedShowNext();
    }
}
