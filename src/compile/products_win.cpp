#include "compile/products.h"

#include "documents/document_row.h"
#include "files/file_io.h"
#include "files/file_turn.h"
#include "files/session_file.h"
#include "files/user_folder.h"

#include <windows.h>

#include <utility>

namespace {

constexpr std::size_t kMostNotes = 8 * 1024 * 1024;  // bytes of the notes
constexpr std::size_t kMostLog = 32 * 1024 * 1024;   // bytes of a log that is looked at
constexpr wchar_t kNotesTurn[] = L"Products";

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

bool IsBuildLog(const std::wstring& path) {
    std::string text;
    return ReadSharedFile(path, kMostLog, &text) && IsBuildLogText(text);
}

const ProductDisk& TheDisk() {
    static const ProductDisk kDisk = {
        .stamp = ReadFileStamp,
        .isBuildLog = IsBuildLog,
        .copyNew =
            [](const std::wstring& from, const std::wstring& to) {
                return CopyFileW(PathForSystem(from.c_str()).c_str(), PathForSystem(to.c_str()).c_str(), TRUE) != FALSE;
            },
        .remove = [](const std::wstring& path) { DeleteFileW(PathForSystem(path.c_str()).c_str()); },
        .isOpen = [](const std::wstring& path) { return TabBarFindPath(path.c_str()) >= 0; },
    };
    return kDisk;
}

}  // namespace

bool IsBuildProduct(const std::wstring& path) { return ProductIsMadeHere(ReadNotes(), path, TheDisk()); }

ProductGuard ProductsBeforeBuild(const ProductPaths& paths) {
    return ProductsGuard(paths, ReadNotes(), TheDisk(), &g_watched);
}

std::vector<std::wstring> ProductsAfterBuild() {
    const FileTurn turn(kNotesTurn);
    std::vector<Product> products = ReadNotes();
    bool changed = false;
    std::vector<std::wstring> lines = ProductsTakeUp(std::exchange(g_watched, {}), products, TheDisk(), &changed);
    if (changed) WriteNotes(products);
    return lines;
}

void ProductNoteNow(const std::wstring& path) {
    FileStamp now;
    if (!ReadFileStamp(path, &now)) return;
    const FileTurn turn(kNotesTurn);
    std::vector<Product> products = ReadNotes();
    ProductNote(products, path, now);
    WriteNotes(products);
}
