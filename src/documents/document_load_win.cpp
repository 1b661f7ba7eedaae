// Reads a file into a document's editor. UI thread, except where a comment says worker.
#include "documents/document_load.h"

#include "base/decode.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "base/worker.h"
#include "documents/file_work.h"
#include "editor/editor_pane.h"
#include "editor/pane_rules.h"
#include "files/file_handle.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "scintilla/sci.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

namespace {

// What the worker and the window share. The last one to let go frees what is left.
struct LoadJob {
    std::wstring path;
    SourceCode code = SourceCode::Guess;
    std::shared_ptr<FileProgress> progress = std::make_shared<FileProgress>();
    LoadedFile file;
    LoadEnd end = LoadEnd::Unreadable;
};
using LoadJobPtr = std::shared_ptr<LoadJob>;

// What DocumentReadAhead has begun and nobody has taken.
struct ReadAhead {
    LoadJobPtr job;
    Worker worker;
};
ReadAhead g_ahead;

// -1 when it is not known.
std::int64_t SizeOf(const wchar_t* path) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (GetFileAttributesExW(PathForSystem(path).c_str(), GetFileExInfoStandard, &data) == FALSE) return -1;
    return static_cast<std::int64_t>((static_cast<std::uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow);
}

LoadEnd ReadSmall(const wchar_t* path, LoadedFile* file, SourceCode code) {
    file->bytes.reset(ReadSourceFileForEditor(path, &file->length, &file->encoding, &file->lineEnding, &file->form,
                                              &file->onDisk, code));
    if (!file->bytes) return LoadEnd::Unreadable;
    LongestLine longest;
    longest.Look({file->bytes.get(), file->length});
    file->plain = longest.Length() >= kLongLine;
    return LoadEnd::Done;
}

// --- On the worker

PiecesResult MoveIntoLoader(HANDLE file, PieceCode code, FileProgress& progress, Scintilla::ILoader& loader,
                            ContentHasher& hasher) {
    const auto read = [&](char* out, std::size_t capacity) -> std::optional<std::size_t> {
        DWORD taken = 0;
        if (progress.cancel || ReadFile(file, out, static_cast<DWORD>(capacity), &taken, nullptr) == FALSE)
            return std::nullopt;
        progress.done += taken;
        hasher.Add({out, taken});
        return taken;
    };
    const auto append = [&](std::string_view piece) {
        return loader.AddData(piece.data(), static_cast<Sci_Position>(piece.size())) == SC_STATUS_OK;
    };
    const auto whole = [leadBytes = LeadBytesOf(CP_ACP)](std::string_view bytes) {
        return WholeDoubleBytes(bytes, leadBytes);
    };
    const auto decode = [](std::string_view bytes, std::string* utf8, bool* exact) {
        return DecodeCodePage(CP_ACP, bytes, utf8, exact);
    };
    return MoveTextPieces({.read = read, .append = append, .wholeAnsi = whole, .decodeAnsi = decode}, code,
                          {.text = kLargestText, .line = kLargestLine});
}

// One run through the file, taken for `code`.
LoadEnd ReadAs(LoadJob& job, PieceCode code, PiecesResult* result) {
    LARGE_INTEGER size = {};
    const UniqueHandle file{CreateFileW(PathForSystem(job.path.c_str()).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr)};
    if (!file || GetFileSizeEx(file.Get(), &size) == FALSE) return LoadEnd::Unreadable;
    const auto bytes = static_cast<std::size_t>(size.QuadPart);
    job.progress->total = bytes;
    job.progress->done = 0;
    // Room for many megabytes takes seconds, because the system gives each page of it.
    job.file.loader = DocumentLoaderNew(bytes + RoomBeyondText(bytes), bytes <= kLargestColoured);
    if (!job.file.loader) return LoadEnd::NoMemory;
    ContentHasher hasher;
    *result = MoveIntoLoader(file.Get(), code, *job.progress, *job.file.loader, hasher);
    job.file.onDisk = FileStateOfHandle(file.Get());  // nobody can write while it is open
    job.file.onDisk.hash = hasher.Value();
    return LoadEndOf(result->end);
}

LoadEnd ReadLarge(LoadJob& job) {
    PieceCode code = PieceCodeOf(job.code);
    PiecesResult result;
    LoadEnd end = ReadAs(job, code, &result);
    while (job.code == SourceCode::Guess && end == LoadEnd::Unreadable && result.end == PiecesEnd::OtherCode &&
           code != PieceCode::Ansi) {
        code = NextPieceCode(result);
        end = ReadAs(job, code, &result);
    }
    LoadedFile& file = job.file;
    file.encoding = result.encoding;
    file.lineEnding = result.lineEnding;
    file.form = result.form;
    file.length = result.length;
    file.plain = result.longLine || result.length > kLargestColoured;
    return end;
}

void ReadOnWorker(LoadJob& job) {
    const std::int64_t size = SizeOf(job.path.c_str());
    switch (LoadWayOf(size, false)) {
        case LoadWay::Refused: job.end = LoadEnd::TooLarge; break;
        case LoadWay::Direct: job.end = ReadSmall(job.path.c_str(), &job.file, job.code); break;
        case LoadWay::Worker: job.end = ReadLarge(job); break;
    }
}

void ReadJob(LoadJobPtr& job, const WorkerCancel&) { ReadOnWorker(*job); }

// --- In the window

// Waits until the file is read. `begun` (may be empty) reads it already.
LoadEnd AwaitJob(const LoadJobPtr& job, const Worker& begun, const wchar_t* label) {
    const bool ended = FileWorkRun({.verb = Text(L"Opening"),
                                    .label = label,
                                    .progress = job->progress,
                                    .work = [job] { ReadOnWorker(*job); },
                                    .begun = &begun});
    return !ended || job->progress->cancel ? LoadEnd::Cancelled : job->end;
}

// Takes over what was read ahead of this file. False when there is nothing, or it is not the file's text any more.
bool TakeAhead(const wchar_t* path, const wchar_t* label, LoadedFile* file, LoadEnd* end) {
    if (g_ahead.job == nullptr || g_ahead.job->path != path) return false;
    const ReadAhead ahead = std::exchange(g_ahead, {});
    *end = AwaitJob(ahead.job, ahead.worker, label);
    if (*end == LoadEnd::Cancelled) return true;
    if (*end != LoadEnd::Done || !FileLooksSame(ahead.job->file.onDisk, FileStateOf(path))) return false;
    *file = std::move(ahead.job->file);
    return true;
}

}  // namespace

std::shared_ptr<const FileProgress> DocumentReadAhead(const wchar_t* path) {
    DocumentReadAheadEnd();
    if (PathIsRemote(path) || LoadWayOf(SizeOf(path), false) != LoadWay::Worker || !DocumentLoaderPrepare()) return {};
    const auto job = std::make_shared<LoadJob>();
    job->path = path;
    const Worker worker = WorkerStart<ReadJob>(LoadJobPtr{job});
    if (!worker) return {};
    g_ahead = {.job = job, .worker = worker};
    return job->progress;
}

void DocumentReadAheadEnd() {
    if (g_ahead.job != nullptr) g_ahead.job->progress->cancel = true;
    g_ahead = {};
}

LoadEnd DocumentRead(const wchar_t* path, const wchar_t* label, LoadedFile* file, SourceCode code) {
    const bool remote = PathIsRemote(path);
    const LoadWay way = LoadWayOf(remote ? -1 : SizeOf(path), remote);
    if (way == LoadWay::Refused) return LoadEnd::TooLarge;
    if (way == LoadWay::Direct) return ReadSmall(path, file, code);
    if (!DocumentLoaderPrepare()) return LoadEnd::NoMemory;
    LoadEnd end = LoadEnd::Unreadable;
    if (code == SourceCode::Guess && TakeAhead(path, label, file, &end)) return end;
    const auto job = std::make_shared<LoadJob>();
    job->path = path;
    job->code = code;
    end = AwaitJob(job, {}, label);
    if (end != LoadEnd::Cancelled) *file = std::move(job->file);
    return end;
}

void DocumentNoteRead(DocumentTab& tab, const LoadedFile& file) {
    tab.encoding = file.encoding;
    tab.lineEnding = file.lineEnding;
    tab.form = file.form;
    tab.formConfirmed = false;
    tab.onDisk = file.onDisk;
    tab.outside = {};
}

bool DocumentShow(DocumentTab& tab, LoadedFile file) {
    DocumentNoteRead(tab, file);
    EditorPaneSetPlain(tab.editor, file.plain);
    if (file.bytes)
        EditorPaneSetBytes(tab.editor, {file.bytes.get(), file.length});
    else
        EditorPaneSetDocument(tab.editor, file.loader.release()->ConvertToDocument());
    // Scintilla cuts a text for which it has no memory. Saving the cut text would cut the file.
    return static_cast<std::size_t>(SciSend(tab.editor, SCI_GETLENGTH)) == file.length;
}
