// What the views know of the program: the registers of the thread they show, names of places, lines of source. Read once
// a refresh, and only from a program that is stopped. UI thread only.
#include "debugui/pane_internal.h"

#include "base/handles.h"
#include "base/path.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_state.h"
#include "debugger/expressions.h"
#include "debugui/location.h"
#include "documents/documents_state.h"
#include "files/file_io.h"
#include "scintilla/sci.h"

#include <psapi.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>

namespace {

PaneProgram g_program;
std::map<std::uint64_t, std::wstring> g_modules;  // by base, of the process that is debugged

// A file that no editor has, read once a session: its text in UTF-8 and where its lines begin.
struct SourceFile {
    std::string text;
    std::vector<std::uint32_t> starts;
};
constexpr DWORD kMostSource = 16 << 20;  // reading more would be felt; lines of such a file are shown once it is open
std::map<std::wstring, SourceFile> g_sources;  // by path

DebuggerState* State() { return &g_debugger; }

void ForgetSession() {
    g_modules.clear();
    g_sources.clear();
    g_program.registers.reset();
    g_program.before.reset();
    g_program.serial = 0;
    g_program.chosenThread = 0;
}

void ReadRegisters() {
    const std::uint64_t serial = State()->stopSerial;
    const bool newStop = serial != g_program.serial;
    if (newStop) g_program.chosenThread = 0;
    const std::uint32_t thread = g_program.chosenThread != 0  ? g_program.chosenThread
                                 : State()->stopThreadId != 0 ? State()->stopThreadId
                                                              : State()->mainThreadId;
    if (thread != g_program.thread)
        g_program.before.reset();  // another thread's registers say nothing about a change
    else if (newStop)
        g_program.before = g_program.registers;
    g_program.thread = thread;
    g_program.serial = serial;
    RegisterSet registers;
    g_program.registers.reset();
    if (DebugGetRegisters(State(), thread, &registers)) g_program.registers = registers;
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
    const std::wstring& name = ModuleName(base);
    return name.empty() ? std::wstring{} : name + L"+0x" + HexText(address - base, 1);
}

std::wstring TrimmedSource(std::wstring text) {
    const std::size_t first = text.find_first_not_of(L" \t\r\n");
    if (first == std::wstring::npos) return {};
    text = text.substr(first, text.find_last_not_of(L" \t\r\n") - first + 1);
    std::ranges::replace(text, L'\t', L' ');
    return text;
}

bool IsLarge(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    return GetFileAttributesExW(PathForSystem(path.c_str()).c_str(), GetFileExInfoStandard, &data) != FALSE &&
           (data.nFileSizeHigh != 0 || data.nFileSizeLow > kMostSource);
}

const SourceFile& FileOf(const std::wstring& path) {
    const auto [place, isNew] = g_sources.try_emplace(path);
    SourceFile& file = place->second;
    if (!isNew || IsLarge(path)) return file;
    std::size_t length = 0;
    const HeapBlock<char> bytes(ReadSourceFileForEditor(path.c_str(), &length, nullptr, nullptr));
    if (!bytes) return file;
    file.text.assign(bytes.get(), length);
    for (std::size_t at = 0; at < length; at = std::min(file.text.find('\n', at), length - 1) + 1)
        file.starts.push_back(static_cast<std::uint32_t>(at));
    return file;
}

std::wstring FileLine(const SourceFile& file, std::uint32_t line) {
    if (line > file.starts.size()) return {};
    const std::size_t from = file.starts[line - 1];
    const std::size_t to = line < file.starts.size() ? file.starts[line] : file.text.size();
    return TrimmedSource(Utf8ToWideText(std::string_view(file.text).substr(from, to - from)));
}

std::wstring EditorLine(HWND editor, std::uint32_t line) {
    const auto index = static_cast<WPARAM>(line - 1);
    if (static_cast<LRESULT>(line) > SciSend(editor, SCI_GETLINECOUNT)) return {};
    std::string bytes(static_cast<std::size_t>(SciSend(editor, SCI_LINELENGTH, index)), '\0');
    SciSend(editor, SCI_GETLINE, index, reinterpret_cast<LPARAM>(bytes.data()));
    return TrimmedSource(Utf8ToWideText(bytes));
}

}  // namespace

const PaneProgram& PaneProgramNow() { return g_program; }

void PaneProgramRead() {
    const DebuggerState& state = g_debugger;
    if (state.active == 0 || state.processId != g_program.processId) ForgetSession();
    g_program.session = state.active != 0;
    g_program.stopped = g_program.session && state.run == DebugRun::Stopped;
    g_program.processId = state.processId;
    if (g_program.stopped) ReadRegisters();
}

void PaneChooseThread(std::uint32_t id) {
    g_program.chosenThread = id;
    DebugPaneInvalidate();
}

std::wstring PanePlaceText(std::uint64_t address) {
    std::uint32_t file = 0;
    std::uint32_t line = 0;
    if (!DebugLineAt(State(), address, &file, &line) || line > kLastMapLine) return ModulePlace(address);
    wchar_t name[kPathCapacity] = {};
    PathGetFile(DebugFilePath(State(), file).c_str(), name, kPathCapacity);
    return (*name != L'\0' ? std::wstring(name) + L":" : L"line ") + std::to_wstring(line);
}

std::wstring PaneSourceLine(std::uint32_t fileId, std::uint32_t line) {
    const std::wstring path = DebugFilePath(State(), fileId);
    if (path.empty() || line == 0) return {};
    for (const DocumentTab& tab : g_documents.tabs)
        if (tab.path[0] != L'\0' && PathEqualsIgnoreCase(tab.path, path)) return EditorLine(tab.editor, line);
    return FileLine(FileOf(path), line);
}

void PaneGoTo(std::uint32_t fileId, std::uint32_t line) {
    if (line != 0) DebugGoTo(State(), fileId, static_cast<int>(line));
}

std::string PaneUtf8(const std::wstring& text) {
    const HeapBlock<char> utf8(WideToUtf8(text.c_str()));
    return utf8 ? utf8.get() : "";
}

Evaluation PaneEvaluate(const std::wstring& expression) {
    if (!g_program.registers) return {.value = {}, .problem = L"No stopped program"};
    return EvaluatePaneExpression(*g_program.registers, PaneUtf8(expression));
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
