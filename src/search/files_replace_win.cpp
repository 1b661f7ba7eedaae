// Replacing in files: open documents on the UI thread, each as one undo step, and then the other files on a worker, each
// by a safe save.
#include "search/files_replace.h"

#include "base/count_text.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/worker.h"
#include "documents/document_row.h"
#include "documents/save_rules.h"
#include "files/file_io.h"
#include "files/recovery.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "search/files_internal.h"
#include "search/find_editor.h"
#include "ui/long_work.h"
#include "ui/message.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

namespace {

constexpr std::size_t kMostTold = 10;  // files with a fault

struct ReplaceTask {
    std::wstring path, key;
    std::vector<FileHit> hits;
    std::vector<bool> ticked;
};

struct ReplaceOutcome {
    std::wstring path, key;
    std::size_t replaced = 0;
    std::wstring fault;         // a sentence; empty: it was written
    std::vector<FileHit> hits;  // those to replace and the others, as they are now
};
using ReplaceOutcomes = std::vector<ReplaceOutcome>;

struct ReplaceRequest {
    HWND window = nullptr;
    FilesQuery query;
    std::vector<ReplaceTask> tasks;
};

struct ReplaceCourse {
    Worker worker;
    ReplaceOutcomes outcomes;  // of the open documents, and then of all
};
ReplaceCourse g_replace;

std::string_view BreaksOf(LineEnding ending) {
    return ending == LineEnding::Lf ? "\n" : ending == LineEnding::Cr ? "\r" : "\r\n";
}

std::vector<std::size_t> TickedStarts(const ReplaceTask& task) {
    std::vector<std::size_t> starts;
    for (std::size_t i = 0; i < task.hits.size(); ++i)
        if (task.ticked[i]) starts.push_back(task.hits[i].start);
    return starts;
}

// --- On the worker

std::wstring SaveFault(const std::wstring& path, const SaveReport& report) {
    // The next start would offer the text, but nothing is lost while the file is as it was.
    if (report.end == SaveEnd::NotOpened || report.end == SaveEnd::NoRoom) RecoveryDiscard(path.c_str(), {});
    const std::wstring copy = RecoveryLastPath();
    std::wstring text = FailedSaveText(path.c_str(), report, {}, copy);
    text.erase(0, text.find(L"\n\n") + 2);                                    // the line before names the file
    if (copy.empty()) text.erase(std::min(text.find(L"\n\n"), text.size()));  // no window has the text
    std::ranges::replace(text, L'\n', L' ');
    return text;
}

std::wstring ReplaceInFile(const ReplaceTask& task, const FilesQuery& query, ReplaceOutcome* outcome) {
    const DWORD attributes = GetFileAttributesW(PathExtended(task.path).c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0)
        return Text(L"the file is read-only");
    if (RecoveryHasKept(task.path.c_str())) return Text(L"a save of it has failed, and its text is still kept");
    ReadBuffer bytes;
    std::wstring fault = ReadSearchedFile(task.path, 0, false, nullptr, &bytes);
    if (!fault.empty()) return fault;
    SourceText text;
    if (!DecodeSource(bytes.Text(), SystemAnsiDecoder(), &text)) return Text(L"its text cannot be decoded");
    const std::string_view utf8 = text.asItIs ? bytes.Text() : std::string_view{text.utf8};
    if (!HasSameHits(utf8, query, task.hits)) return Text(L"it has changed since the search");
    if (text.form.inexact) return Text(L"it has bytes that saving would not give back");
    const std::vector<HitReplacement> replacements =
        ReplacementsAt(utf8, query, BreaksOf(text.lineEnding), TickedStarts(task));
    const auto holds = [](const HitReplacement& each) { return AnsiCanHold(each.text); };
    if (text.encoding == TextEncoding::Ansi && !std::ranges::all_of(replacements, holds))
        return Text(L"its encoding cannot hold the new text");
    const std::string changed = ReplacedText(utf8, replacements);
    DiskForm form = text.form;
    form.keepBreaks = true;  // only the hits change, also in a file with mixed line breaks
    SaveReport report;
    if (!WriteSourceFileFromEditor(task.path.c_str(), changed.data(), changed.size(), text.encoding, text.lineEnding,
                                   form, &report))
        return SaveFault(task.path, report);
    outcome->replaced = replacements.size();
    outcome->hits = HitsAfterReplacing(task.hits, replacements, changed);
    return {};
}

void ReplaceOnWorker(ReplaceRequest& request, const WorkerCancel& cancel) {
    auto outcomes = std::make_unique<ReplaceOutcomes>();
    for (const ReplaceTask& task : request.tasks) {
        ReplaceOutcome outcome{task.path, task.key, 0, {}, {}};
        try {
            outcome.fault = cancel.Asked() ? Text(L"stopped") : ReplaceInFile(task, request.query, &outcome);
        } catch (const std::bad_alloc&) {
            outcome.fault = Text(L"not enough memory");
        }
        outcomes->push_back(std::move(outcome));
    }
    WorkerPost(request.window, MSG_FILES_REPLACED, std::move(outcomes));
}

// --- Open documents

ReplaceOutcome ReplaceInDocument(const ResultFile& file, const DocumentTab& tab, const FilesQuery& query) {
    ReplaceOutcome outcome{file.path.empty() ? file.label : file.path, file.key, 0, {}, {}};
    if (SciSend(tab.editor, SCI_GETREADONLY) != 0) {
        outcome.fault = Text(L"the document is read-only");
        return outcome;
    }
    std::vector<std::size_t> starts;
    for (std::size_t i = 0; i < file.hits.size(); ++i)
        if (file.ticked[i]) starts.push_back(static_cast<std::size_t>(file.places.At(2 * i)));
    const LRESULT length = SciSend(tab.editor, SCI_GETLENGTH);
    const auto* bytes = reinterpret_cast<const char*>(SciSend(tab.editor, SCI_GETRANGEPOINTER, 0, length));
    const std::vector<HitReplacement> replacements =
        ReplacementsAt({bytes, static_cast<std::size_t>(length)}, query, BreaksOf(tab.lineEnding), starts);
    outcome.replaced = replacements.size();
    std::vector<FileHit> hits = file.hits;
    for (std::size_t i = 0; i < hits.size(); ++i) {
        hits[i].start = static_cast<std::uint32_t>(file.places.At(2 * i));
        hits[i].length = static_cast<std::uint32_t>(file.places.At(2 * i + 1) - file.places.At(2 * i));
    }
    {
        const EditorEdits edits(tab.editor);
        for (auto each = replacements.rbegin(); each != replacements.rend(); ++each) {
            SciSend(tab.editor, SCI_SETTARGETRANGE, each->span.start,
                    static_cast<LPARAM>(each->span.start + each->span.length));
            SciSend(tab.editor, SCI_REPLACETARGET, each->text.size(), reinterpret_cast<LPARAM>(each->text.data()));
        }
    }
    const LRESULT newLength = SciSend(tab.editor, SCI_GETLENGTH);
    const auto* changed = reinterpret_cast<const char*>(SciSend(tab.editor, SCI_GETRANGEPOINTER, 0, newLength));
    outcome.hits = HitsAfterReplacing(std::move(hits), replacements, {changed, static_cast<std::size_t>(newLength)});
    if (outcome.replaced < starts.size()) outcome.fault = Text(L"some hits have changed since the search and stay");
    return outcome;
}

// Notes what was done, and shows the hits as they are now.
void TakeOutcome(ReplaceOutcome outcome) {
    if (outcome.replaced > 0) g_files.results.TakeReplaced(outcome.key, std::move(outcome.hits));
    g_replace.outcomes.push_back(std::move(outcome));
}

void ShowReplaceProgress(const wchar_t* text) { g_events.statusText(text); }

void ReplaceInDocuments(const FilesQuery& query) {
    LongWork work(Text(L"Replacing"), ShowReplaceProgress);
    const std::vector<ResultFile>& files = g_files.results.files;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const int tab = files[i].document != 0 ? TabBarFindDocument(files[i].document) : -1;
        if (tab < 0 || std::ranges::count(files[i].ticked, true) == 0) continue;
        if (!work.GoesOn(static_cast<double>(i) / static_cast<double>(files.size())))
            g_replace.outcomes.push_back({files[i].path, files[i].key, 0, Text(L"stopped"), {}});
        else if (!TabBarRead(tab))  // that of a session waits for being shown
            g_replace.outcomes.push_back({files[i].path, files[i].key, 0, Text(L"the file cannot be read"), {}});
        else
            TakeOutcome(ReplaceInDocument(files[i], TabAt(TabBarFindDocument(files[i].document)), query));
    }
}

// --- The end

void TellOutcome() {
    std::size_t replaced = 0, files = 0, faults = 0;
    std::wstring text;
    for (const ReplaceOutcome& each : g_replace.outcomes) {
        replaced += each.replaced;
        if (each.replaced > 0) ++files;
        if (each.fault.empty()) continue;
        if (++faults <= kMostTold) text += L"\n" + each.path + L": " + each.fault;
    }
    if (faults > kMostTold) text += TextWith(L"\n... and {1} more", {std::to_wstring(faults - kMostTold)});
    const std::wstring done = TextWith(L"Replaced {1}", {HitsInFilesText(replaced, files)});
    const std::wstring missed = CountText(faults, English(L"{1} file"), English(L"{1} files"));
    g_files.note = faults > 0 ? TextWith(L"{1}; not in {2}", {done, missed}) : done;
    g_events.statusText(g_files.note.c_str());
    FilesPaneUpdate();
    if (faults > 0)
        TellUser(Text(L"Replace in Files"), TextWith(L"{1}. Not everywhere:\n{2}", {done, text}).c_str(),
                 AskIcon::Warning);
}

// What was replaced stays in the list as it is now; what was not stays for another try.
void EndReplacing() {
    g_files.replaceRuns = false;
    TellOutcome();
    g_replace = {};
}

bool UserAgrees(std::size_t hits, std::size_t files, std::size_t closed) {
    std::wstring text = TextWith(L"Replace {1}?", {HitsInFilesText(hits, files)});
    if (closed > 0)
        text +=
            L"\n\n" + TextWith(L"{1} They are changed on the disk at once, which Undo does not take back.",
                               {closed == files ? std::wstring{Text(L"These files are not open in the editor.")}
                                                : CountText(closed, English(L"{1} of them is not open in the editor."),
                                                            English(L"{1} of them are not open in the editor."))});
    if (g_files.tally.limited || g_files.stopped)
        text += Text(L"\n\nThe search did not come to its end, so there may be further hits, which stay.");
    return AskUser({.caption = Text(L"Replace in Files"),
                    .text = text.c_str(),
                    .buttons = AskButtons::OkCancel,
                    .icon = AskIcon::Question,
                    .inSelftest = Answer::No,
                    .yes = Text(L"&Replace"),
                    .loses = Answer::Yes}) == Answer::Yes;
}

}  // namespace

void FilesReplaceTicked() {
    if (g_files.running || g_files.replaceRuns || !g_files.options.replacing) return;
    ReplaceRequest request{FilesPaneWindow(), QueryOf(g_files.options), {}};
    std::size_t hits = 0, files = 0;
    for (const ResultFile& file : g_files.results.files) {
        const auto ticked = static_cast<std::size_t>(std::ranges::count(file.ticked, true));
        if (ticked == 0) continue;
        hits += ticked;
        ++files;
        if (TabBarFindDocument(file.document) < 0)
            request.tasks.push_back({file.path, file.key, file.hits, file.ticked});
    }
    if (hits == 0 || !UserAgrees(hits, files, request.tasks.size())) return;
    g_files.replaceRuns = true;
    ReplaceInDocuments(request.query);
    // A document may have been closed or a file opened while the question was shown.
    std::erase_if(request.tasks, [](const ReplaceTask& task) { return TabBarFindPath(task.path.c_str()) >= 0; });
    if (request.tasks.empty()) return EndReplacing();
    g_files.note =
        CountText(request.tasks.size(), English(L"Replacing in {1} file..."), English(L"Replacing in {1} files..."));
    FilesPaneUpdate();
    g_replace.worker = WorkerStart<ReplaceOnWorker>(std::move(request));
    if (g_replace.worker) return;
    g_replace.outcomes.push_back(
        {Text(L"(all files that are not open)"), {}, 0, Text(L"the work could not be started"), {}});
    EndReplacing();
}

void FilesReplaceStop() { WorkerAskToEnd(g_replace.worker); }

void FilesReplaceFinish() {
    constexpr DWORD kMostMs = 5000;
    if (!g_replace.worker) return;
    WorkerAskToEnd(g_replace.worker);
    WorkerWait(g_replace.worker, kMostMs);
    WorkerDropPosts<std::unique_ptr<ReplaceOutcomes>>(FilesPaneWindow(), MSG_FILES_REPLACED);
    g_replace = {};
}

void FilesOnReplaced(WPARAM result) {
    const auto outcomes = WorkerTake<std::unique_ptr<ReplaceOutcomes>>(result);
    for (ReplaceOutcome& outcome : *outcomes) TakeOutcome(std::move(outcome));
    EndReplacing();
}
