// Reads a file into a document's editor. UI thread, except where a comment says worker.
#include "documents/document_load.h"

#include "documents/editor_pane.h"
#include "documents/file_work.h"
#include "documents/pane_rules.h"
#include "files/file_io.h"
#include "scintilla/sci.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

namespace {

constexpr LONGLONG kLarge = 4 << 20;  // bytes; a smaller file is read at once, which is no slower

// What the worker and the window share. The last one to let go frees what is left.
struct LoadJob {
    UniqueHandle file;
    PieceCode code = PieceCode::Guess;
    LoaderOwner loader;
    std::shared_ptr<FileProgress> progress = std::make_shared<FileProgress>();
    PiecesResult result;
};

// The part of ANSI bytes that ends between two characters of the system's code page.
std::size_t WholeAnsi(std::string_view bytes) {
    CPINFO info = {};
    if (GetCPInfo(CP_ACP, &info) == FALSE || info.MaxCharSize == 1) return bytes.size();
    std::size_t at = 0;
    while (at < bytes.size()) {
        const std::size_t width = IsDBCSLeadByteEx(CP_ACP, static_cast<BYTE>(bytes[at])) != FALSE ? 2 : 1;
        if (width > bytes.size() - at) break;
        at += width;
    }
    return at;
}

// Worker.
void MoveIntoLoader(LoadJob& job) {
    const auto read = [&job](char* out, std::size_t capacity) -> std::optional<std::size_t> {
        DWORD taken = 0;
        if (job.progress->cancel ||
            ReadFile(job.file.Get(), out, static_cast<DWORD>(capacity), &taken, nullptr) == FALSE)
            return std::nullopt;
        job.progress->done += taken;
        return taken;
    };
    const auto append = [&job](std::string_view piece) {
        return job.loader->AddData(piece.data(), static_cast<Sci_Position>(piece.size())) == SC_STATUS_OK;
    };
    const auto decode = [](std::string_view bytes, std::string* utf8, bool* exact) {
        return DecodeCodePage(CP_ACP, bytes, utf8, exact);
    };
    job.result = MoveTextPieces({.read = read, .append = append, .wholeAnsi = WholeAnsi, .decodeAnsi = decode},
                                job.code, {.text = kLargestText, .line = kLargestLine});
}

LoaderOwner NewLoader(HWND editor, std::size_t size) {
    const LPARAM options = size > kLargestColoured ? SC_DOCUMENTOPTION_STYLES_NONE : SC_DOCUMENTOPTION_DEFAULT;
    return LoaderOwner{
        reinterpret_cast<Scintilla::ILoader*>(SciSend(editor, SCI_CREATELOADER, size + RoomBeyondText(size), options))};
}

// One run through the file, taken for `code`.
LoadEnd ReadAs(HWND editor, const wchar_t* path, const wchar_t* label, PieceCode code, PiecesResult* result,
               LoaderOwner* loader) {
    const auto job = std::make_shared<LoadJob>();
    LARGE_INTEGER size = {};
    job->file.Reset(CreateFileW(PathForSystem(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!job->file || GetFileSizeEx(job->file.Get(), &size) == FALSE) return LoadEnd::Unreadable;
    job->code = code;
    job->loader = NewLoader(editor, static_cast<std::size_t>(size.QuadPart));
    if (!job->loader) return LoadEnd::NoMemory;
    job->progress->total = static_cast<std::uint64_t>(size.QuadPart);
    const bool ended = FileWorkRun(
        {.verb = L"Opening", .label = label, .progress = job->progress, .work = [job] { MoveIntoLoader(*job); }});
    if (!ended || job->progress->cancel) return LoadEnd::Cancelled;
    *result = job->result;
    *loader = std::move(job->loader);
    return LoadEndOf(result->end);
}

LoadEnd ReadLarge(HWND editor, const wchar_t* path, const wchar_t* label, LoadedFile* file) {
    PieceCode code = PieceCode::Guess;
    for (;;) {
        PiecesResult result;
        LoaderOwner loader;
        const LoadEnd end = ReadAs(editor, path, label, code, &result, &loader);
        if (end == LoadEnd::Unreadable && result.end == PiecesEnd::OtherCode && code != PieceCode::Ansi) {
            code = NextPieceCode(result);
            continue;
        }
        file->encoding = result.encoding;
        file->lineEnding = result.lineEnding;
        file->form = result.form;
        file->length = result.length;
        file->plain = result.longLine || result.length > kLargestColoured;
        file->loader = std::move(loader);
        return end;
    }
}

LoadEnd ReadSmall(const wchar_t* path, LoadedFile* file) {
    file->bytes.reset(ReadSourceFileForEditor(path, &file->length, &file->encoding, &file->lineEnding, &file->form));
    if (!file->bytes) return LoadEnd::Unreadable;
    LongestLine longest;
    longest.Look({file->bytes.get(), file->length});
    file->plain = longest.Length() >= kLongLine;
    return LoadEnd::Done;
}

// -1 when it is not known.
LONGLONG SizeOf(const wchar_t* path) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (GetFileAttributesExW(PathForSystem(path).c_str(), GetFileExInfoStandard, &data) == FALSE) return -1;
    return static_cast<LONGLONG>((static_cast<std::uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow);
}

}  // namespace

LoadEnd DocumentRead(HWND editor, const wchar_t* path, const wchar_t* label, LoadedFile* file) {
    const LONGLONG size = SizeOf(path);
    if (size > static_cast<LONGLONG>(kLargestText)) return LoadEnd::TooLarge;
    return size < kLarge ? ReadSmall(path, file) : ReadLarge(editor, path, label, file);
}

bool DocumentShow(DocumentTab& tab, LoadedFile file) {
    tab.encoding = file.encoding;
    tab.lineEnding = file.lineEnding;
    tab.form = file.form;
    tab.formConfirmed = false;
    EditorPaneSetPlain(tab.editor, file.plain);
    if (file.bytes)
        EditorPaneSetBytes(tab.editor, {file.bytes.get(), file.length});
    else
        EditorPaneSetDocument(tab.editor, file.loader.release()->ConvertToDocument());
    // Scintilla cuts a text for which it has no memory. Saving the cut text would cut the file.
    return static_cast<std::size_t>(SciSend(tab.editor, SCI_GETLENGTH)) == file.length;
}
