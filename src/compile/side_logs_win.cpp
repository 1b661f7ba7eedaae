#include "compile/side_logs.h"

#include "base/decode.h"
#include "base/handles.h"
#include "base/path.h"
#include "compile/build_paths.h"
#include "files/file_io.h"
#include "output/output_feed.h"
#include "output/output_pane.h"

#include <algorithm>

namespace {

constexpr std::size_t kShownBytes = 256 * 1024;
constexpr DWORD kLargestLog = 16 * 1024 * 1024;  // bytes read at most to show those

bool IsFresh(const std::wstring& path, const FILETIME& startTime) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    return GetFileAttributesExW(PathForSystem(path.c_str()).c_str(), GetFileExInfoStandard, &data) &&
           (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 && data.nFileSizeHigh == 0 &&
           data.nFileSizeLow > 0 && data.nFileSizeLow <= kLargestLog &&
           CompareFileTime(&data.ftLastWriteTime, &startTime) >= 0;
}

}  // namespace

void SideLogsShow(const std::wstring& source, const FILETIME& startTime) {
    for (const wchar_t* extension : {L".log", L".err"}) {
        const std::wstring path = ReplaceExtension(source, extension);
        if (SamePathText(path, source) || !IsFresh(path, startTime)) continue;
        std::size_t length = 0;
        const HeapBlock<char> bytes(ReadFileUtf8(path.c_str(), &length));
        wchar_t* text = bytes ? DecodeCompilerText(bytes.get(), std::min(length, kShownBytes)) : nullptr;
        if (text == nullptr) continue;
        OutputPaneAppend((L"--- " + path + L" ---\r\n").c_str(), 0);
        OutputFeedStream(text, 0);
        OutputFeedStreamEnd();
        while (!OutputFeedIsEmpty()) OutputFeedShowNext();
    }
}
