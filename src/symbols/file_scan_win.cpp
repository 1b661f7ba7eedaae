// The worker that reads files and scans them. It touches nothing of the program but what its request holds.
#include "symbols/file_scan.h"

#include "base/bounded_text.h"
#include "base/handles.h"
#include "base/path.h"
#include "base/utf8.h"
#include "compile/include_paths.h"
#include "files/file_io.h"
#include "language/lexer_table.h"
#include "resources/ids.h"
#include "search/file_walk.h"

#include <algorithm>
#include <deque>
#include <set>
#include <utility>

namespace {

struct FileScan {
    const FileScanRequest& request;
    const WorkerCancel& cancel;
    FileScanResult& result;
    std::size_t bytes = 0;
};

std::size_t BytesOf(const SymbolTable& table) {
    return table.arena.size() + table.symbols.size() * (sizeof(Symbol) + sizeof(std::uint32_t));
}

FileSymbolsPtr ReadSymbols(const std::wstring& path, std::uint64_t size, std::uint64_t modified,
                           std::uint32_t compilerId) {
    auto file = std::make_shared<FileSymbols>(
        FileSymbols{path, size, modified, compilerId, std::make_shared<const SymbolTable>()});
    if (size == 0 || size > kLargestSymbolFile) return file;
    std::size_t length = 0;
    const HeapBlock<char> text(ReadSourceFileForEditor(path.c_str(), &length, nullptr, nullptr));
    if (text)
        file->table = std::make_shared<const SymbolTable>(SymbolsOfText({text.get(), length}, DialectOf(compilerId)));
    return file;
}

// Adds the file, read only when it has changed since it was read last. Its table is that of its open document, if there
// is one. Null when the scan has reached a limit.
FileSymbolsPtr TakeFile(FileScan& scan, const std::wstring& path, std::uint64_t size, std::uint64_t modified,
                        std::uint32_t compilerId) {
    if (scan.result.files.size() >= kMostSymbolFiles || scan.bytes > kMostSymbolBytes) {
        scan.result.limited = true;
        return nullptr;
    }
    const std::wstring key = PathKey(path);
    FileSymbolsPtr file;
    if (const auto open = scan.request.open.find(key); open != scan.request.open.end()) {
        file = std::make_shared<FileSymbols>(FileSymbols{path, size, modified, compilerId, open->second});
    } else {
        const auto known = scan.request.known->find(key);
        const bool same = known != scan.request.known->end() && known->second->size == size &&
                          known->second->modified == modified && known->second->compilerId == compilerId;
        file = same ? known->second : ReadSymbols(path, size, modified, compilerId);
    }
    scan.bytes += BytesOf(*file->table);
    scan.result.files.push_back(file);
    return file;
}

// --- Includes

struct FoundFile {
    std::wstring path;
    std::uint64_t size = 0, modified = 0;
};
bool FindFile(const std::vector<std::wstring>& places, FoundFile* found) {
    for (const std::wstring& place : places) {
        wchar_t whole[kPathCapacity] = {};
        WIN32_FILE_ATTRIBUTE_DATA data = {};
        if (!PathNormalizeInput(place.c_str(), whole, kPathCapacity) ||
            GetFileAttributesExW(PathForSystem(whole).c_str(), GetFileExInfoStandard, &data) == FALSE ||
            (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
            continue;
        *found = {whole, (static_cast<std::uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow,
                  (static_cast<std::uint64_t>(data.ftLastWriteTime.dwHighDateTime) << 32) |
                      data.ftLastWriteTime.dwLowDateTime};
        return true;
    }
    return false;
}

// The included files, and what they include, breadth first; each once.
void ScanIncludes(FileScan& scan) {
    struct Including {
        std::wstring folder;
        std::shared_ptr<const SymbolTable> table;
    };
    std::deque<Including> left{{scan.request.folder, scan.request.table}};
    std::set<std::wstring> seen;
    for (; !left.empty(); left.pop_front()) {
        const Including including = left.front();
        for (const Symbol& symbol : including.table->symbols) {
            if (symbol.kind != SymbolKind::Include) continue;
            if (scan.cancel.Asked()) return;
            const std::wstring name = Utf8ToWideText(SymbolName(*including.table, symbol));
            FoundFile found;
            if (!FindFile(IncludePlaces(name, including.folder, scan.request.includeFolders), &found)) {
                scan.result.missing.push_back(name);
                continue;
            }
            if (!seen.insert(PathKey(found.path)).second) continue;
            const FileSymbolsPtr file = TakeFile(scan, found.path, found.size, found.modified, scan.request.compilerId);
            if (file == nullptr) return;
            left.push_back({FolderOf(found.path), file->table});
        }
    }
}

// --- The project

std::uint32_t CompilerOfFile(const std::wstring& path, std::uint32_t fallback) {
    const FileType* type = FileTypeOfPath(path);
    return type != nullptr && type->compiler < kCompilerCount ? type->compiler : fallback;
}

void ScanProject(FileScan& scan) {
    WalkRules rules;
    rules.root = scan.request.root;
    rules.excluded = scan.request.excluded;
    FileWalk walk(std::move(rules));
    std::vector<WalkedFile> files;
    std::wstring unreadable;
    while (walk.Next(&files, &unreadable) != WalkStep::Done)
        if (scan.cancel.Asked()) return;
    std::erase_if(files, [](const WalkedFile& file) {
        return FileTypeOfPath(file.path) == nullptr || LexerFromExtension(file.path) != Language::Basic;
    });
    std::ranges::sort(files, {}, &WalkedFile::path);
    for (const WalkedFile& file : files) {
        if (scan.cancel.Asked()) return;
        if (!TakeFile(scan, file.path, file.size, file.modified, CompilerOfFile(file.path, scan.request.compilerId)))
            return;
    }
}

void FileScanWork(FileScanRequest& request, const WorkerCancel& cancel) {
    auto result = std::make_unique<FileScanResult>();
    result->document = request.document;
    result->number = request.number;
    result->table = request.table;
    FileScan scan{request, cancel, *result};
    if (request.document != 0)
        ScanIncludes(scan);
    else
        ScanProject(scan);
    WorkerPost(request.window, MSG_SYMBOLS_FILES, std::move(result));
}

}  // namespace

Worker FileScanStart(FileScanRequest request) { return WorkerStart<FileScanWork>(std::move(request)); }
