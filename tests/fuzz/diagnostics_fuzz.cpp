// Any bytes as a compiler's output: split into lines, filtered, parsed, turned into RTF. Checks that lines hold no line
// break, records keep within their bounds, and RTF is plain ASCII with balanced braces.
#include "output/diagnostics.h"
#include "output/output_filter.h"
#include "output/output_queue.h"
#include "ui/rtf_block.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

void CheckRecord(const std::wstring& line) {
    CompilerError record = {};
    if (ParseErrorLine(line, &record) == 0) return;
    Require(IsErrorLine(line) || IsWarningLine(line));
    Require(record.file[0] != L'\0');
    Require(line.starts_with(record.file));
    Require(line.find(record.message) != std::wstring::npos);
    Require(record.severity == (IsErrorLine(line) ? 0 : 1));
}

void CheckRtf(const std::vector<PaneLine>& lines) {
    const std::string rtf = RtfBlock(lines, {.face = L"Consolas"});
    int depth = 0;
    for (std::size_t i = 0; i < rtf.size(); ++i) {
        Require(static_cast<unsigned char>(rtf[i]) < 0x80);
        if (rtf[i] == '\\')
            ++i;
        else
            depth += rtf[i] == '{' ? 1 : rtf[i] == '}' ? -1 : 0;
        Require(depth > 0 || i + 1 == rtf.size());
    }
    Require(depth == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::size_t piece = data[0] + std::size_t{1};  // the first byte is the size of the chunks
    OutputQueue queue;
    for (std::size_t at = 1; at < size; at += piece)
        queue.chunks.push_back(
            {.text = std::wstring(data + at, data + std::min(size, at + piece)), .kind = ChunkKind::Stream});
    queue.chunks.push_back({.kind = ChunkKind::StreamEnd});
    OutputFilter filter;
    std::vector<PaneLine> lines;
    QueuedLine line;
    int chunks = 0;
    while (OutputQueueNext(queue, &line, &chunks)) {
        Require(line.text.find_first_of(L"\r\n") == std::wstring::npos);
        OutputFilterPasses(filter, line.text);
        CheckRecord(line.text);
        lines.push_back({.text = line.text, .colour = line.text.size() % 3 == 0 ? 0x0000FFU : 0U});
    }
    Require(queue.chunks.empty() && queue.partial.empty());
    CheckRtf(lines);
    return 0;
}
