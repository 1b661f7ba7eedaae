// Reads for the views what they know of the program: once a refresh, and only from a program that is stopped. UI thread
// only.
#include "debugui/pane_internal.h"

#include "base/handles.h"
#include "base/path.h"
#include "base/texts.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugger/expressions.h"
#include "debugger/program_places.h"
#include "debugui/location.h"
#include "debugui/pane_watches.h"
#include "documents/documents_state.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "scintilla/sci.h"

#include <psapi.h>

#include <algorithm>
#include <map>
#include <optional>

namespace {

PaneProgram g_program;
std::map<std::uint64_t, std::wstring> g_modules;  // by base, of the process that is debugged

constexpr DWORD kMostSource = 16 << 20;  // reading more would be felt; lines of such a file are shown once it is open
std::map<std::wstring, SourceLines> g_sources;  // by path: of files that no editor has, each read once a session

DebuggerState* State() { return &g_debugger; }

std::optional<RegisterSet> RegistersOf(std::uint32_t thread) {
    RegisterSet registers;
    return DebugGetRegisters(State(), thread, &registers) ? std::optional(registers) : std::nullopt;
}

const std::wstring& ModuleName(std::uint64_t base) {
    const auto known = g_modules.find(base);
    if (known != g_modules.end()) return known->second;
    wchar_t path[kPathCapacity] = {};
    wchar_t name[kPathCapacity] = {};
    GetModuleFileNameExW(State()->process, reinterpret_cast<HMODULE>(base), path, kPathCapacity);
    PathGetFile(path, name, kPathCapacity);
    return g_modules.emplace(base, name).first->second;
}

std::wstring ModulePlace(std::uint64_t address) {
    MEMORY_BASIC_INFORMATION info = {};
    if (VirtualQueryEx(State()->process, reinterpret_cast<const void*>(address), &info, sizeof(info)) == 0 ||
        info.Type != MEM_IMAGE)
        return {};
    const auto base = reinterpret_cast<std::uint64_t>(info.AllocationBase);
    return ModulePlaceText(ModuleName(base), address - base);
}

bool IsLarge(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    return GetFileAttributesExW(PathForSystem(path.c_str()).c_str(), GetFileExInfoStandard, &data) != FALSE &&
           (data.nFileSizeHigh != 0 || data.nFileSizeLow > kMostSource);
}

const SourceLines& FileOf(const std::wstring& path) {
    const auto [place, isNew] = g_sources.try_emplace(path);
    if (!isNew || !PathAnswers(path.c_str()) || IsLarge(path)) return place->second;
    std::size_t length = 0;
    const HeapBlock<char> bytes(ReadSourceFileForEditor(path.c_str(), &length, nullptr, nullptr));
    if (bytes) place->second = SourceLinesOf({bytes.get(), length});
    return place->second;
}

std::wstring EditorLine(HWND editor, std::uint32_t line) {
    const auto index = static_cast<WPARAM>(line - 1);
    if (static_cast<LRESULT>(line) > SciSend(editor, SCI_GETLINECOUNT)) return {};
    std::string bytes(static_cast<std::size_t>(SciSend(editor, SCI_LINELENGTH, index)), '\0');
    SciSend(editor, SCI_GETLINE, index, reinterpret_cast<LPARAM>(bytes.data()));
    return ShownSource(bytes);
}

std::optional<PaneFrame> g_frame;  // of the refresh; nothing: not asked for yet

PaneFrame ReadFrame() {
    PaneFrame frame = {
        .index = g_program.chosenFrame, .registers = *g_program.registers, .memory = DebugMemory(*State())};
    DebugFrame place;
    const std::uint64_t ip = frame.registers.ip;
    if (frame.index != 0 || !DebugLineAt(State(), ip, &place.fileId, &place.line)) {
        const std::vector<DebugFrame> frames = DebugFrames(State(), g_program.thread);
        if (frame.index == 0) {
            const auto onLine = std::ranges::find_if(frames, [](const DebugFrame& each) { return each.line != 0; });
            if (onLine != frames.end()) frame.index = static_cast<std::size_t>(onLine - frames.begin());
        }
        if (frame.index < frames.size()) place = frames[frame.index];
        frame.registers = RegistersOfFrame(frame.registers, frames, frame.index, frame.memory.read);
    } else {
        frame.registers = RegistersOfFrame(frame.registers, {}, 0, frame.memory.read);
    }
    frame.scope = ScopeOfLine(place.fileId, place.line <= kLastMapLine ? place.line : 0);
    return frame;
}

}  // namespace

const PaneProgram& PaneProgramNow() { return g_program; }

void PaneProgramRead() {
    const DebuggerState& state = g_debugger;
    const PaneSession session = {.active = state.active != 0,
                                 .stopped = state.run == DebugRun::Stopped,
                                 .serial = state.stopSerial,
                                 .processId = state.processId,
                                 .stopThread = state.stopThreadId,
                                 .mainThread = state.mainThreadId};
    g_frame.reset();
    if (!PaneProgramFollow(&g_program, session, RegistersOf)) return;
    g_modules.clear();
    g_sources.clear();
}

void PaneChooseThread(std::uint32_t id) {
    g_program.chosenThread = id;
    g_program.chosenFrame = 0;
    DebugPaneInvalidate();
}

std::wstring PanePlaceText(std::uint64_t address) {
    std::uint32_t file = 0;
    std::uint32_t line = 0;
    if (!DebugLineAt(State(), address, &file, &line) || line > kLastMapLine) return ModulePlace(address);
    wchar_t name[kPathCapacity] = {};
    PathGetFile(DebugFilePath(State(), file).c_str(), name, kPathCapacity);
    return LinePlaceText(name, line);
}

std::wstring PaneSourceLine(std::uint32_t fileId, std::uint32_t line) {
    const std::wstring path = DebugFilePath(State(), fileId);
    if (path.empty() || line == 0) return {};
    for (const DocumentTab& tab : g_documents.tabs)
        if (tab.editor != nullptr && tab.path[0] != L'\0' && PathEqualsIgnoreCase(tab.path, path))
            return EditorLine(tab.editor, line);
    return SourceLineText(FileOf(path), line);
}

void PaneGoTo(std::uint32_t fileId, std::uint32_t line) {
    if (line != 0) DebugGoTo(State(), fileId, static_cast<int>(line));
}

std::string PaneUtf8(const std::wstring& text) {
    const HeapBlock<char> utf8(WideToUtf8(text.c_str()));
    return utf8 ? utf8.get() : "";
}

NameScope PaneFrame::Names() const {
    return {.names = NamesOfProcedure(scope.file, scope.Name()), .registers = registers, .memory = memory};
}

const PaneFrame* PaneFrameNow() {
    if (!g_program.stopped || !g_program.registers) return nullptr;
    if (!g_frame) g_frame = ReadFrame();
    return &*g_frame;
}

void PaneChooseFrame(std::size_t index) {
    g_program.chosenFrame = index;
    g_frame.reset();
    DebugPaneInvalidate();
}

Evaluation PaneEvaluate(const std::wstring& expression) {
    const PaneFrame* const frame = PaneFrameNow();
    if (frame == nullptr) return {.value = {}, .problem = Text(L"No stopped program")};
    return EvaluateWithNames(PaneUtf8(expression), frame->Names());
}

Evaluation PaneEvaluatePlace(const std::wstring& expression) {
    const PaneFrame* const frame = PaneFrameNow();
    if (frame == nullptr) return {.value = {}, .problem = Text(L"No stopped program")};
    const NameScope names = frame->Names();
    const NamedPlace* const named = FindNamedPlace(names.names, PaneUtf8(expression));
    return named != nullptr ? AddressOfName(*named, names) : PaneEvaluate(expression);
}

std::optional<WatchKind> PaneKindOf(const std::wstring& expression) {
    const PaneFrame* const frame = PaneFrameNow();
    if (frame == nullptr) return {};
    const std::string text = PaneUtf8(expression);
    const NameScope names = frame->Names();
    if (const NamedPlace* named = FindNamedPlace(names.names, text); named != nullptr) return named->kind;
    return MentionsName(text, names.names) ? std::optional(WatchKind::Value) : std::nullopt;
}

std::wstring PaneWriteValue(WatchKind kind, const Evaluation& address, const std::wstring& text) {
    if (!g_program.stopped) return Text(L"The program is not stopped");
    if (!address.value) return address.problem;
    const ProgramMemory memory = DebugMemory(g_debugger);
    std::uint64_t at = *address.value;
    if (kind == WatchKind::TextPointer) {
        at = AddressOfText(at, memory).value_or(0);
        if (at == 0) return Text(L"There is no text that could be written over");
        kind = WatchKind::Text;
    }
    const WatchBytes typed = WatchInput(kind, {.value = at, .problem = {}}, PaneUtf8(text), memory);
    if (!typed.problem.empty()) return typed.problem;
    if (!typed.bytes.empty() && !DebugWriteMem(&g_debugger, at, typed.bytes.data(), typed.bytes.size()))
        return Text(L"The memory cannot be written");
    return {};
}

bool DebugRegisterTip(const wchar_t* word, wchar_t* out, int capacity) {
    const DebuggerState& state = g_debugger;
    if (word == nullptr || out == nullptr || capacity < 1 || state.active == 0 || state.run != DebugRun::Stopped)
        return false;
    // The pane may be hidden: it reads nothing then.
    PaneProgramRead();
    if (!g_program.registers) return false;
    const std::wstring text = RegisterTipText(*g_program.registers, word);
    if (text.empty()) return false;
    lstrcpynW(out, text.c_str(), capacity);
    return true;
}
