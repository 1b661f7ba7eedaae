// Reads and writes the file of the names, and asks the sources for their procedures. UI thread only.
#include "debugui/kept_names.h"

#include "base/handles.h"
#include "base/log.h"
#include "base/path.h"
#include "base/system_error.h"
#include "base/texts.h"
#include "debugger/debug_state.h"
#include "debugui/location.h"
#include "documents/document_row.h"
#include "editor/editor_pane.h"
#include "files/file_io.h"
#include "files/session_file.h"
#include "files/share_probe.h"
#include "language/basic_words.h"
#include "output/last_build.h"
#include "scintilla/sci.h"
#include "settings/settings_place.h"
#include "settings/settings_state.h"

#include <algorithm>
#include <map>
#include <utility>

namespace {

constexpr DWORD kLargestFile = 4 << 20;      // bytes, of the names
constexpr LRESULT kLargestSource = 8 << 20;  // whose symbols are read while the window waits

struct KeptNames {
    PlaceNames all;
    bool read = false;
    bool mayWrite = false;  // false: the file is there and could not be read
    unsigned serial = 0;
};
KeptNames g_kept;

std::wstring NamesPath() { return SettingsFolder() + L"DebugNames.txt"; }

// False: the file is there and cannot be read.
bool ReadNamesFile(PlaceNames* all) {
    const std::wstring path = NamesPath();
    const UniqueHandle file(CreateFileW(path.c_str(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return GetLastError() == ERROR_FILE_NOT_FOUND || GetLastError() == ERROR_PATH_NOT_FOUND;
    LARGE_INTEGER size = {};
    if (!GetFileSizeEx(file.Get(), &size) || size.QuadPart > kLargestFile) return false;
    std::string bytes(static_cast<std::size_t>(size.QuadPart), '\0');
    DWORD got = 0;
    if (!ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &got, nullptr)) return false;
    bytes.resize(got);
    *all = ReadPlaceNames(bytes);
    return true;
}

void ReadNames() {
    PlaceNames all;
    g_kept.read = true;
    g_kept.mayWrite = ReadNamesFile(&all);
    if (!g_kept.mayWrite) {
        AppLogMsg(L"FAIL: ReadNames %s error=%lu", NamesPath().c_str(), GetLastError());
        return;  // what is known of it stays
    }
    if (all.empty() && g_kept.all.empty()) return;
    g_kept.all = std::move(all);
    ++g_kept.serial;
}

bool WriteNames() {
    const std::string text = PlaceNamesText(g_kept.all);
    if (ReplaceFileWhole(NamesPath().c_str(), text)) return true;
    // Where the program's folder takes no files, a save of the settings changes over to the user's own.
    const std::wstring folder = SettingsFolder();
    SettingsSave(nullptr);
    return SettingsFolder() != folder && ReplaceFileWhole(NamesPath().c_str(), text);
}

void NamesChanged() {
    ++g_kept.serial;
    if (g_kept.mayWrite && !WriteNames()) AppLogMsg(L"FAIL: NamesChanged error=%lu", GetLastError());
}

// --- Sources

std::map<std::wstring, std::vector<SourceProcedure>> g_sources;  // by path, of the session

std::string TextOfEditor(HWND editor) {
    if (editor == nullptr || SciSend(editor, SCI_GETLENGTH) > kLargestSource) return {};
    std::size_t length = 0;
    const HeapBlock<char> text(EditorPaneGetText(editor, &length));
    return text ? std::string(text.get(), length) : std::string();
}

std::string TextOfSource(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (!PathAnswers(path.c_str()) ||
        !GetFileAttributesExW(PathForSystem(path.c_str()).c_str(), GetFileExInfoStandard, &data) ||
        data.nFileSizeHigh != 0 || data.nFileSizeLow > kLargestSource)
        return {};
    std::size_t length = 0;
    const HeapBlock<char> text(ReadSourceFileForEditor(path.c_str(), &length, nullptr, nullptr));
    return text ? std::string(text.get(), length) : std::string();
}

// From the editor, unless it has edits that the program does not know.
const std::vector<SourceProcedure>& ProceduresOfFile(const std::wstring& path) {
    const auto [place, isNew] = g_sources.try_emplace(PathKey(path));
    if (!isNew) return place->second;
    const int tab = TabBarFindPath(path.c_str());
    const bool fromEditor = tab >= 0 && TabAt(tab).editor != nullptr && !TabAt(tab).modified;
    const std::uint32_t compiler = tab >= 0 ? TabAt(tab).compilerId : LastBuild().compilerId;
    const std::string text = fromEditor ? TextOfEditor(TabAt(tab).editor) : TextOfSource(path);
    place->second = ProceduresOf(SymbolsOfText(text, DialectOf(compiler)));
    return place->second;
}

// The names at the last stop that was asked about: a breakpoint may be hit thousands of times in a second.
struct StopNames {
    std::uint32_t fileId = 0, processId = 0;
    std::int32_t line = -1;
    unsigned serial = 0;
    std::span<const NamedPlace> names;
};
StopNames g_stop;

}  // namespace

const PlaceNames& AllPlaceNames() {
    if (!g_kept.read) ReadNames();
    return g_kept.all;
}

const NamedPlaces& NamesOfProcedure(const std::wstring& file, const std::string& procedure) {
    static const NamedPlaces none;
    if (file.empty()) return none;
    const NamedProcedure* const found = FindNamedProcedure(AllPlaceNames(), file, procedure);
    return found != nullptr ? found->names : none;
}

std::wstring KeepNames(const std::wstring& file, const std::string& procedure, NamedPlaces names) {
    ReadNames();
    SetPlaceNames(&g_kept.all, {.file = file, .procedure = procedure, .names = std::move(names)});
    ++g_kept.serial;
    if (!g_kept.mayWrite)
        return TextWith(L"{1} cannot be read, and therefore is not written: the names hold until the program ends.",
                        {NamesPath()});
    if (WriteNames()) return {};
    const DWORD error = GetLastError();
    AppLogMsg(L"FAIL: KeepNames %s error=%lu", NamesPath().c_str(), error);
    return TextWith(L"{1} cannot be written: the names hold until the program ends. {2}",
                    {NamesPath(), SystemErrorText(error)});
}

void NamesReadAgain() {
    if (g_kept.read) ReadNames();
}

void NamesFollowRename(const std::wstring& from, const std::wstring& to) {
    ReadNames();
    if (MovePlaceNames(&g_kept.all, from, to)) NamesChanged();
}

void NamesFollowCopy(const std::wstring& from, const std::wstring& to) {
    ReadNames();
    if (CopyPlaceNames(&g_kept.all, from, to)) NamesChanged();
}

void NamesFollowSymbol(DocumentId document, const std::string& before, const std::string& after,
                       std::uint32_t procedureLine) {
    const int tab = TabBarFindDocument(document);
    if (tab < 0 || !TabAt(tab).hasFile) return;
    ReadNames();
    const std::wstring path = TabAt(tab).path;
    const auto isOfFile = [&path](const NamedProcedure& each) { return PathEqualsIgnoreCase(each.file, path); };
    if (std::ranges::none_of(g_kept.all, isOfFile)) return;
    const std::vector<SourceProcedure> procedures = ProceduresOfDocument(document);
    RenamedSymbol symbol = {.before = before, .after = after, .procedure = {}};
    if (procedureLine != 0) {
        const SourceProcedure* const procedure = ProcedureOfLine(procedures, procedureLine);
        symbol.procedure = procedure != nullptr ? procedure->name : std::string();
    }
    if (RenameInPlaceNames(&g_kept.all, path, procedures, symbol)) NamesChanged();
}

unsigned NamesSerial() { return g_kept.serial; }

std::vector<SourceProcedure> ProceduresOfDocument(DocumentId document) {
    const int tab = TabBarFindDocument(document);
    if (tab < 0) return {};
    return ProceduresOf(SymbolsOfText(TextOfEditor(TabAt(tab).editor), DialectOf(TabAt(tab).compilerId)));
}

NamedPlaces NamesAtLine(DocumentId document, int line) {
    const int tab = TabBarFindDocument(document);
    if (tab < 0 || !TabAt(tab).hasFile || AllPlaceNames().empty()) return {};
    const std::vector<SourceProcedure> procedures = ProceduresOfDocument(document);
    const SourceProcedure* const procedure = ProcedureOfLine(procedures, static_cast<std::uint32_t>(line));
    return NamesOfProcedure(TabAt(tab).path, procedure != nullptr ? procedure->name : std::string());
}

SourceScope ScopeOfLine(std::uint32_t fileId, std::uint32_t line) {
    SourceScope scope = {.file = DebugFilePath(&g_debugger, fileId)};
    if (scope.file.empty() || line == 0) return {};
    scope.all = ProceduresOfFile(scope.file);
    scope.procedure = ProcedureOfLine(scope.all, line);
    return scope;
}

void ScopesForget() {
    g_sources.clear();
    g_stop = {};
}

std::span<const NamedPlace> NamesAtStop(const DebuggerState& state) {
    if (AllPlaceNames().empty() || state.currentLine <= 0) return {};
    const bool same = g_stop.line == state.currentLine && g_stop.fileId == state.currentFileId &&
                      g_stop.processId == state.processId && g_stop.serial == g_kept.serial;
    if (same) return g_stop.names;
    const SourceScope scope = ScopeOfLine(state.currentFileId, static_cast<std::uint32_t>(state.currentLine));
    g_stop = {.fileId = state.currentFileId,
              .processId = state.processId,
              .line = state.currentLine,
              .serial = g_kept.serial,
              .names = NamesOfProcedure(scope.file, scope.Name())};
    return g_stop.names;
}
