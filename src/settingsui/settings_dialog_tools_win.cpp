// What the settings dialog asks the machine: whether a path is there, what a compiler answers, which keys there are. UI
// thread only; what may take long is asked on another thread.
#include "settingsui/settings_dialog_internal.h"

#include "base/decode.h"
#include "base/path.h"
#include "base/texts.h"
#include "commands/menu_commands.h"
#include "compile/child_process.h"
#include "documents/file_commands.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "settings/compiler_table.h"
#include "settings/file_type_table.h"
#include "settings/file_types.h"
#include "settings/settings_state.h"
#include "settings/settings_store.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <memory>

namespace {

// ------------------------------------------------------------------------------------------------------------ paths

struct LookRequest {
    HWND dialog;
    bool folder;
    std::wstring path;
    std::unique_ptr<PathSight> sight;
};

void LookAtPath(LookRequest& request, const WorkerCancel&) {
    request.sight->found = request.folder ? DirectoryExists(request.path.c_str()) : FileExists(request.path.c_str());
    WorkerPost(request.dialog, MSG_SETTINGS_LOOKED, std::move(request.sight));
}

// ------------------------------------------------------------------------------------------------------------- test

constexpr DWORD kTestMs = 10000;
constexpr std::size_t kTestBytes = 16 * 1024;  // of the answer are read

struct TestRequest {
    HWND dialog;
    std::wstring path;
    std::unique_ptr<CompilerReply> reply;
};

// Reads what the process prints until it is silent for good, the time is over or the dialog closes. Returns false when
// it was still printing or running.
bool ReadAnswer(const ChildProcess& child, const WorkerCancel& cancel, std::string& answer) {
    const UniqueHandle done{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    const ULONGLONG end = GetTickCount64() + kTestMs;
    const HANDLE either[] = {cancel.Event(), done.Get()};
    while (done && answer.size() < kTestBytes) {
        char bytes[1024];
        DWORD count = 0;
        OVERLAPPED read = {};
        read.hEvent = done.Get();
        if (!ReadFile(child.pipeRead, bytes, sizeof(bytes), nullptr, &read) && GetLastError() != ERROR_IO_PENDING)
            return true;
        const ULONGLONG now = GetTickCount64();
        const DWORD left = now < end ? static_cast<DWORD>(end - now) : 0;
        const bool came = WaitForMultipleObjects(2, either, FALSE, left) == WAIT_OBJECT_0 + 1;
        if (!came) CancelIo(child.pipeRead);
        const bool ok = GetOverlappedResult(child.pipeRead, &read, &count, TRUE) != FALSE;
        if (!came) return false;
        if (!ok || count == 0) return true;
        answer.append(bytes, count);
    }
    return false;
}

// The first line that is not empty.
std::wstring FirstLineOf(const std::string& answer) {
    const HeapBlock<wchar_t> text(DecodeCompilerText(answer.data(), answer.size()));
    std::wstring whole = text != nullptr ? text.get() : L"";
    const std::size_t from = whole.find_first_not_of(L"\r\n \t");
    if (from == std::wstring::npos) return {};
    return whole.substr(from, std::min<std::size_t>(whole.find_first_of(L"\r\n", from) - from, 200));
}

void TestCompiler(TestRequest& request, const WorkerCancel& cancel) {
    CompilerReply& reply = *request.reply;
    ChildProcess child;
    DWORD error = 0;
    const std::wstring folder = FolderOf(request.path);
    if (!ChildStart(L"\"" + request.path + L"\" --version", folder, &child, &error, false)) {
        reply.text = TextWith(L"It cannot be started: {1}", {ChildStartProblem(error, folder)});
    } else {
        std::string answer;
        const bool whole = ReadAnswer(child, cancel, answer);
        const std::wstring line = FirstLineOf(answer);
        const bool ended = whole && WaitForSingleObject(child.process, 1000) == WAIT_OBJECT_0;
        if (!ended) ChildTerminate(child.job, child.process);
        reply.good = !line.empty();
        reply.text = line.empty() ? (ended ? Text(L"It started, and said nothing.")
                                           : Text(L"It did not answer within ten seconds."))
                                  : line;
        ChildClose(&child);
    }
    WorkerPost(request.dialog, MSG_SETTINGS_TESTED, std::move(request.reply));
}

}  // namespace

void SettingsNoteTell(SettingsDialog& dialog, FormPlace place, const std::wstring& text, NoteKind kind) {
    if (dialog.pages[place.page].window == nullptr) return;
    WindowsAt(dialog, place).seen = text;
    WindowsAt(dialog, place).seenKind = kind;
    SettingsNoteRenew(dialog, place);
}

void SettingsLookForPath(SettingsDialog& dialog, FormPlace place) {
    const std::wstring& text = TextAt(dialog, place);
    if (text.empty() || !SettingItemProblem(ItemAt(place), text).empty())
        return SettingsNoteTell(dialog, place, L"", NoteKind::Help);
    wchar_t path[kPathCapacity] = {};
    ResolveExeRelative(text.c_str(), path, kPathCapacity);
    auto sight = std::make_unique<PathSight>(PathSight{.place = place, .text = text});
    LookRequest request{dialog.window, ItemAt(place).control == SettingControl::Folder, path, std::move(sight)};
    if (!PathIsRemote(path)) {
        request.sight->found = request.folder ? DirectoryExists(path) : FileExists(path);
        return SettingsOnLooked(dialog, *request.sight);
    }
    // One look at a time: when it comes back, the text of that moment is looked for.
    if (WorkerWait(dialog.look, 0)) dialog.look = WorkerStart<LookAtPath>(std::move(request));
}

void SettingsOnLooked(SettingsDialog& dialog, const PathSight& sight) {
    if (sight.text != TextAt(dialog, sight.place)) return SettingsLookForPath(dialog, sight.place);
    const bool folder = ItemAt(sight.place).control == SettingControl::Folder;
    const wchar_t* const missing =
        folder ? Text(L"Not found: there is no such folder.") : Text(L"Not found: there is no such file.");
    SettingsNoteTell(dialog, sight.place, sight.found ? Text(L"Found.") : missing,
                     sight.found ? NoteKind::Good : NoteKind::Bad);
}

void SettingsTestCompiler(SettingsDialog& dialog, FormPlace place) {
    if (!WorkerWait(dialog.test, 0)) return;
    const FormPlace path{place.page, 0};  // the first item of the page of a compiler
    wchar_t program[kPathCapacity] = {};
    ResolveExeRelative(TextAt(dialog, path).c_str(), program, kPathCapacity);
    if (program[0] == L'\0')
        return SettingsNoteTell(dialog, place, Text(L"There is no program to test."), NoteKind::Bad);
    SettingsNoteTell(dialog, place, Text(L"Running..."), NoteKind::Help);
    TestRequest request{dialog.window, program, std::make_unique<CompilerReply>()};
    request.reply->place = place;
    dialog.test = WorkerStart<TestCompiler>(std::move(request));
    if (!dialog.test) SettingsNoteTell(dialog, place, Text(L"It cannot be started."), NoteKind::Bad);
}

void SettingsOnTested(SettingsDialog& dialog, const CompilerReply& reply) {
    SettingsNoteTell(dialog, reply.place, reply.text, reply.good ? NoteKind::Good : NoteKind::Bad);
}

std::wstring SettingsDefaultProgram(FormPlace place, NoteKind* kind) {
    const auto compiler = static_cast<std::uint32_t>(SettingsPages()[place.page].compiler);
    const FileType* type = OwnFileType(compiler);
    const std::wstring files = TextWith(L"Files {1}", {std::wstring(type != nullptr ? type->extension : L"")});
    const std::wstring owner = FileExtClass(compiler);
    *kind = NoteKind::Help;
    if (owner.empty()) return TextWith(L"{1} are opened by no program yet.", {files});
    if (!FileExtIsRegistered(compiler)) return TextWith(L"{1} are opened by another program ({2}).", {files, owner});
    *kind = NoteKind::Good;
    return TextWith(L"{1} are opened by this editor.", {files});
}

void SettingsChangeDefaultProgram(SettingsDialog& dialog, FormPlace place) {
    NoteKind kind = NoteKind::Help;
    const auto compiler = static_cast<std::uint32_t>(SettingsPages()[place.page].compiler);
    const bool ours = FileExtIsRegistered(compiler);
    if (ours || !FileExtClass(compiler).empty()) {
        const std::wstring now = SettingsDefaultProgram(place, &kind);
        const std::wstring text = now + (ours ? Text(L"\n\nRemove that? Windows then knows no program for them.")
                                              : Text(L"\n\nOpen them here instead?"));
        if (AskUser({.caption = Text(L"Default Program"),
                     .text = text.c_str(),
                     .buttons = AskButtons::OkCancel,
                     .icon = AskIcon::Question,
                     .inSelftest = Answer::No,
                     .yes = ours ? Text(L"&Remove") : Text(L"&Open Here")}) != Answer::Yes)
            return;
    }
    const bool done = ours || FileExtRegisterCompiler(compiler) != 0;
    if (ours) {
        FileExtUnregisterCompiler(compiler);
        RegisterFileExtensions();  // the "Open with" list was below the same key
    }
    FileExtNotifyShell();
    const std::wstring now = SettingsDefaultProgram(place, &kind);
    SettingsNoteTell(dialog, place, done ? now : Text(L"The registry refuses it."), done ? kind : NoteKind::Bad);
}

// Only compilers whose path leads nowhere are searched for, as at a start.
void SettingsDetectCompilers(SettingsDialog& dialog, FormPlace place) {
    wchar_t folder[kPathCapacity] = {};
    AppExeDirectory(folder, kPathCapacity);
    int found = 0;
    for (std::size_t page = 0; page < SettingsPages().size(); ++page) {
        const int compiler = SettingsPages()[page].compiler;
        if (compiler == kNoCompiler) continue;
        const FormPlace path{page, 0};
        wchar_t now[kPathCapacity] = {};
        ResolveExeRelative(TextAt(dialog, path).c_str(), now, kPathCapacity);
        if (now[0] != L'\0' && PathAnswers(now) && FileExists(now)) continue;
        const std::wstring candidate = FindCompiler(static_cast<std::uint32_t>(compiler), folder, FileExists);
        if (candidate.empty()) continue;
        ResolveExeRelative(candidate.c_str(), now, kPathCapacity);
        TextAt(dialog, path) = now;
        SettingsItemChanged(dialog, path);
        ++found;
    }
    const std::wstring told = found == 0   ? Text(L"No further compiler was found.")
                              : found == 1 ? Text(L"One compiler was found.")
                                           : TextWith(L"{1} compilers were found.", {std::to_wstring(found)});
    SettingsNoteTell(dialog, place, told, found != 0 ? NoteKind::Good : NoteKind::Help);
}

std::vector<std::wstring> SettingsKeyLines() {
    std::vector<std::wstring> lines;
    for (const MenuCommand& command : MenuCommands(GetMenu(g_ui.hMainWnd)))
        lines.push_back(command.path + command.name + L"\t" + command.keys);
    lines.push_back(TextWith(L"Toolbar > Buttons without room\t{1}", {CommandKeys(IDM_TOOLBAR_MORE)}));
    return lines;
}

std::vector<std::wstring> SettingsKeysFound(const SettingsDialog& dialog, std::size_t page) {
    for (const SettingItem& item : SettingsPages()[page].items)
        if (item.control == SettingControl::Keys && SettingItemMatches(SettingsPages()[page], item, dialog.query))
            return dialog.keyLines;
    return LinesFound(dialog.keyLines, dialog.query);
}
