#include "compile/products.h"

#include "base/path.h"
#include "compile/build_plan.h"
#include "documents/document_row.h"
#include "files/file_io.h"
#include "files/file_turn.h"
#include "files/session_file.h"
#include "files/user_folder.h"

#include <windows.h>

#include <optional>
#include <utility>

namespace {

constexpr std::size_t kMostNotes = 8 * 1024 * 1024;         // bytes of the notes
constexpr std::uint64_t kLongestCopied = 16 * 1024 * 1024;  // bytes of a file that is copied before a build
constexpr int kKeptNames = 9;
constexpr wchar_t kNotesTurn[] = L"Products";

struct WatchedFile {
    std::wstring path;
    std::optional<FileStamp> before;
    std::wstring copy;  // of the user's file; empty: none was made
};
std::vector<WatchedFile> g_watched;  // the files of the running build

std::wstring NotesPath() {
    const std::wstring folder = UserFolder();
    return folder.empty() ? folder : folder + L"Products.txt";
}

// The notes are read anew each time, because another editor may have built something. Who writes them afterwards reads
// them within a FileTurn.
std::vector<Product> ReadNotes() {
    std::string text;
    const std::wstring path = NotesPath();
    if (path.empty() || !ReadSharedFile(path, kMostNotes, &text)) return {};
    return ProductsOfText(text);
}

void WriteNotes(const std::vector<Product>& products) {
    // Without notes nothing is lost: Clean then leaves the files alone.
    if (const std::wstring path = NotesPath(); !path.empty()) ReplaceFileWhole(path.c_str(), ProductsText(products));
}

std::optional<FileStamp> StampNow(const std::wstring& path) {
    FileStamp stamp;
    return ReadFileStamp(path, &stamp) ? std::optional(stamp) : std::nullopt;
}

bool IsBuildLog(const std::wstring& path) {
    std::string text;
    return PathEqualsIgnoreCase(FileExtension(path), L".buildlog") && ReadSharedFile(path, kLongestCopied * 2, &text) &&
           IsBuildLogText(text);
}

bool IsProductIn(const std::vector<Product>& products, const std::wstring& path) {
    const std::optional<FileStamp> now = StampNow(path);
    return now && (ProductIsKnown(products, path, *now) || IsBuildLog(path));
}

// The user's file is copied and not moved, because the source may read it.
std::wstring CopyBeside(const std::wstring& path, const FileStamp& stamp) {
    if (stamp.length > kLongestCopied) return {};
    for (int attempt = 1; attempt <= kKeptNames; ++attempt) {
        std::wstring copy = path + L".kvx-kept" + std::to_wstring(attempt);
        if (CopyFileW(PathForSystem(path.c_str()).c_str(), PathForSystem(copy.c_str()).c_str(), TRUE)) return copy;
    }
    return {};
}

void Watch(const std::wstring& path, bool copied) {
    WatchedFile file = {.path = path, .before = StampNow(path)};
    if (copied && file.before) file.copy = CopyBeside(path, *file.before);
    g_watched.push_back(std::move(file));
}

// Whether a build may write the file. Otherwise there is a line that names it.
bool MayBeWritten(const std::vector<Product>& known, const std::wstring& path, const wchar_t* left,
                  std::vector<std::wstring>* lines) {
    if (!StampNow(path) || IsProductIn(known, path)) return true;
    lines->push_back(std::wstring(left) + L", because no build of this editor has made " + path + L"\r\n");
    return false;
}

}  // namespace

bool IsBuildProduct(const std::wstring& path) { return IsProductIn(ReadNotes(), path); }

ProductGuard ProductsBeforeBuild(const ProductPaths& paths) {
    const std::vector<Product> known = ReadNotes();
    const std::wstring log = ReplaceExtension(paths.source, L".buildlog");
    ProductGuard guard;
    g_watched.clear();
    guard.log = !SamePathText(log, paths.source) && MayBeWritten(known, log, L"No build log", &guard.lines);
    guard.listing = !paths.listing.empty() && !SamePathText(paths.listing, paths.source) &&
                    MayBeWritten(known, paths.listing, L"No assembly listing", &guard.lines);
    Watch(paths.output, false);
    if (guard.log) Watch(log, false);
    if (guard.listing) Watch(paths.listing, false);
    for (const std::wstring& path : SideFilesOf(paths.source)) Watch(path, !IsProductIn(known, path));
    return guard;
}

std::vector<std::wstring> ProductsAfterBuild() {
    std::vector<std::wstring> lines;
    const FileTurn turn(kNotesTurn);
    std::vector<Product> products = ReadNotes();
    bool changed = false;
    for (const WatchedFile& file : std::exchange(g_watched, {})) {
        const std::optional<FileStamp> now = StampNow(file.path);
        const bool written = now && now != file.before;
        // What the user saved meanwhile is no product of the build.
        if (written && TabBarFindPath(file.path.c_str()) < 0) {
            ProductNote(products, file.path, *now);
            changed = true;
        }
        if (file.copy.empty()) continue;
        if (now == file.before)
            DeleteFileW(PathForSystem(file.copy.c_str()).c_str());
        else
            lines.push_back(L"The compiler has overwritten your file " + file.path + L", which is kept as " +
                            file.copy + L"\r\n");
    }
    if (changed) WriteNotes(products);
    return lines;
}

void ProductNoteNow(const std::wstring& path) {
    const std::optional<FileStamp> now = StampNow(path);
    if (!now) return;
    const FileTurn turn(kNotesTurn);
    std::vector<Product> products = ReadNotes();
    ProductNote(products, path, *now);
    WriteNotes(products);
}
