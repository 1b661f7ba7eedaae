// What the views know of the program. Must not know a process or an editor.
#include "debugui/pane_program.h"

#include "base/hex_text.h"
#include "base/texts.h"
#include "base/utf8.h"

#include <algorithm>
#include <utility>

namespace {

std::uint32_t ThreadToShow(const PaneProgram& program, const PaneSession& session) {
    if (program.chosenThread != 0) return program.chosenThread;
    return session.stopThread != 0 ? session.stopThread : session.mainThread;
}

void ForgetProgram(PaneProgram* program) {
    program->registers.reset();
    program->before.reset();
    program->serial = 0;
    program->chosenThread = 0;
    program->chosenFrame = 0;
}

void NoteStop(PaneProgram* program, const PaneSession& session, const RegisterReader& read) {
    const bool newStop = session.serial != program->serial;
    if (newStop) program->chosenThread = 0;
    const std::uint32_t thread = ThreadToShow(*program, session);
    if (newStop || thread != program->thread) program->chosenFrame = 0;
    if (thread != program->thread)
        program->before.reset();  // another thread's registers say nothing about a change
    else if (newStop)
        program->before = program->registers;
    program->thread = thread;
    program->serial = session.serial;
    program->registers = read(thread);
}

}  // namespace

PaneShows PaneShowsNow(const PaneProgram& program, bool ofStop, std::uint32_t readOf) {
    if (!ofStop) return PaneShows::Now;
    if (!program.session) return PaneShows::NoSession;
    if (program.stopped) return PaneShows::Now;
    return readOf == program.processId ? PaneShows::Stale : PaneShows::Running;
}

bool PaneProgramFollow(PaneProgram* program, const PaneSession& session, const RegisterReader& read) {
    const bool other = !session.active || session.processId != program->processId;
    if (other) ForgetProgram(program);
    program->session = session.active;
    program->stopped = session.active && session.stopped;
    program->processId = session.processId;
    if (program->stopped) NoteStop(program, session, read);
    return other;
}

SourceLines SourceLinesOf(std::string text) {
    SourceLines source;
    for (std::size_t at = 0; at < text.size(); at = std::min(text.find('\n', at), text.size() - 1) + 1)
        source.starts.push_back(static_cast<std::uint32_t>(at));
    source.text = std::move(text);
    return source;
}

std::wstring SourceLineText(const SourceLines& source, std::uint32_t line) {
    if (line == 0 || line > source.starts.size()) return {};
    const std::size_t from = source.starts[line - 1];
    const std::size_t to = line < source.starts.size() ? source.starts[line] : source.text.size();
    return ShownSource(std::string_view(source.text).substr(from, to - from));
}

std::wstring ShownSource(std::string_view utf8) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t first = utf8.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    std::wstring text = Utf8ToWideText(utf8.substr(first, utf8.find_last_not_of(kBlanks) - first + 1));
    std::ranges::replace(text, L'\t', L' ');
    return text;
}

std::wstring LinePlaceText(const std::wstring& fileName, std::uint32_t line) {
    const std::wstring number = std::to_wstring(line);
    return fileName.empty() ? TextWith(L"line {1}", {number}) : fileName + L":" + number;
}

std::wstring ModulePlaceText(const std::wstring& moduleName, std::uint64_t offset) {
    return moduleName.empty() ? std::wstring{} : moduleName + L"+0x" + HexText(offset, 1);
}
