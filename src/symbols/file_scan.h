// The symbols of files on the disk: those that a text includes, and those of the project. Read by workers and kept by
// path, size and time of the file. Private to this folder.
#pragma once

#include "base/events.h"
#include "base/worker.h"
#include "files/ignore_rules.h"
#include "language/symbols.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct FileSymbols {
    std::wstring path;
    std::uint64_t size = 0;
    std::uint64_t modified = 0;  // FILETIME
    std::uint32_t compilerId = 0;
    std::shared_ptr<const SymbolTable> table;  // never null
};
using FileSymbolsPtr = std::shared_ptr<const FileSymbols>;
using FileSymbolsMap = std::map<std::wstring, FileSymbolsPtr>;  // by PathKey

// What a scan must do without: a file of more bytes, more files, more bytes in all tables.
inline constexpr std::size_t kLargestSymbolFile = 32 << 20;
inline constexpr std::size_t kMostSymbolFiles = 20000;
inline constexpr std::size_t kMostSymbolBytes = 256 << 20;

struct FileScanRequest {
    HWND window = nullptr;
    DocumentId document = 0;  // 0: the project
    std::uint64_t number = 0;
    std::uint32_t compilerId = 0;  // its dialect is that of the included files
    // Of the document: its folder, its symbols, the folders of included files.
    std::wstring folder;
    std::shared_ptr<const SymbolTable> table;
    std::vector<std::wstring> includeFolders;
    std::wstring root;  // of the project; not empty when `document` is 0
    ExcludedFolders excluded;
    std::shared_ptr<const FileSymbolsMap> known;
    std::map<std::wstring, std::shared_ptr<const SymbolTable>> open;  // by PathKey: open documents, whose text counts
};
struct FileScanResult {
    DocumentId document = 0;
    std::uint64_t number = 0;
    std::shared_ptr<const SymbolTable> table;  // of the request
    std::vector<FileSymbolsPtr> files;         // in the order of their includes; of the project by path
    std::vector<std::wstring> missing;         // included names that no place has
    bool limited = false;                      // more than the program keeps
};

// Posts a FileScanResult as MSG_SYMBOLS_FILES.
Worker FileScanStart(FileScanRequest request);
