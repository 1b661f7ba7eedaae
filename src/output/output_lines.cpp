#include "output/output_lines.h"

#include "output/line_colours.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace {

constexpr int kClockEvery = 256;  // the time is checked after so many lines

// Empty: it is not known.
std::wstring_view ProgramOfBuild(const CompilerErrors& errors, std::int32_t build) {
    const auto index = static_cast<std::size_t>(build);
    return index > 0 && index <= errors.builds.size() ? std::wstring_view(errors.builds[index - 1].output) : L"";
}

void RecordDiagnostic(CompilerErrors& errors, const std::wstring& line, const OutputLines& lines) {
    CompilerError next = {};
    if (ParseErrorLine(line, &next) == 0) return;
    next.compilerId = lines.compilerId;
    next.build = lines.build;
    if (HasPlaceInSource(next, ProgramOfBuild(errors, next.build))) SourceMarksAdd(errors.marks, next);
    if (ErrorCount(errors) < kMaxCompilerErrors) errors.items.push_back(next);
}

// The line's number in the log of its process; 0 for a line of the editor.
std::uint64_t TakeLogLine(OutputLines& lines, const QueuedLine& line) {
    const std::uint64_t number = line.stream ? lines.source.logLines + 1 : 0;
    if (line.ended) ++lines.source.logLines;
    return number;
}

// Handles one line of the queue. Returns false when there is nothing to show for it now.
bool LetThrough(OutputLines& lines, CompilerErrors& errors, QueuedLine& line, PaneLine* shown) {
    if (line.streamEnd) {
        OutputLinesRelease(lines);
        return false;
    }
    const std::uint64_t logLine = TakeLogLine(lines, line);
    if (!OutputLineSort(lines, errors, line)) return false;
    *shown = {.text = std::move(line.text), .colour = line.colour, .lineBreak = line.lineBreak};
    return KeepLine(lines.kept, *shown, logLine);
}

}  // namespace

bool OutputLineSort(OutputLines& lines, CompilerErrors& errors, QueuedLine& line) {
    if (line.stream && !OutputFilterPasses(lines.filter, line.text)) return false;
    const bool error = IsErrorLine(line.text);
    const bool warning = !error && IsWarningLine(line.text);
    if (error || warning) {
        line.colour = error ? kLineRed : kLineYellow;
        if (lines.source.diagnostics) {
            ++(error ? lines.counts.errors : lines.counts.warnings);
            RecordDiagnostic(errors, line.text, lines);
        }
    }
    lines.counts.lines += line.stream && !line.text.empty();
    return true;
}

void OutputLinesRelease(OutputLines& lines) {
    lines.leftOut = lines.leftOut || lines.kept.leftOut > 0;
    std::deque<PaneLine> held = TakeHeldLines(lines.kept, lines.source.log);
    std::move(held.begin(), held.end(), std::back_inserter(lines.ready));
    lines.kept = {};
}

void OutputLinesBegin(OutputLines& lines, OutputSource source) {
    lines.source = std::move(source);
    lines.leftOut = false;
    if (!LinesAreHeld(lines.kept)) lines.kept = {};
}

std::wstring OutputLinesUnfinished(const OutputLines& lines) {
    return LinesAreHeld(lines.kept) ? HeldLinesText(lines.kept) : lines.queue.partial;
}

bool OutputLinesNext(OutputLines& lines, CompilerErrors& errors, const std::function<bool()>& timeIsUp, PaneLine* shown,
                     int* chunksDone) {
    QueuedLine line;
    for (int seen = 1; lines.ready.empty(); ++seen) {
        if ((seen % kClockEvery == 0 && timeIsUp()) || !OutputQueueNext(lines.queue, &line, chunksDone)) return false;
        if (LetThrough(lines, errors, line, shown)) return true;
    }
    *shown = std::move(lines.ready.front());
    lines.ready.pop_front();
    return true;
}

bool OutputLinesWait(const OutputLines& lines) { return !lines.queue.chunks.empty() || !lines.ready.empty(); }

int OutputLinesDrop(OutputLines& lines) {
    const auto chunks = std::count_if(lines.queue.chunks.begin(), lines.queue.chunks.end(),
                                      [](const OutputChunk& chunk) { return chunk.kind == ChunkKind::Stream; });
    lines.queue = {};
    lines.kept = {};
    lines.ready.clear();
    return static_cast<int>(chunks);
}

void OutputLinesAgain(OutputLines& lines, std::deque<PaneLine> shown) {
    std::move(lines.ready.begin(), lines.ready.end(), std::back_inserter(shown));
    lines.ready = std::move(shown);
}
