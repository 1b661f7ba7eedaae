// The files that builds have made: the program, the listing, the compiler's side files and the build log. A build
// overwrites, and Clean deletes, only these: a file with such a name that no build has made is the user's. Each file is
// known by the time and the length that it had at the end of its build, also in later runs of the editor.
#pragma once

#include "compile/file_stamp.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// --- Pure (products.cpp)
struct Product {
    std::wstring path;
    FileStamp stamp;
};
inline constexpr std::size_t kMostProducts = 2000;  // the oldest are forgotten beyond that

// Notes a file, in place of an older note of the same path. The latest note is the last.
void ProductNote(std::vector<Product>& products, std::wstring_view path, const FileStamp& stamp);
bool ProductIsKnown(const std::vector<Product>& products, std::wstring_view path, const FileStamp& now);
// The notes as text in UTF-8, a line for each. Lines that are none are passed over.
std::string ProductsText(const std::vector<Product>& products);
std::vector<Product> ProductsOfText(std::string_view text);
// Whether the text begins as a build log does; so those of earlier versions are known.
bool IsBuildLogText(std::string_view text);

struct ProductPaths {
    std::wstring source;
    std::wstring output;
    std::wstring listing;  // empty: none is wanted
};
// What a build may write.
struct ProductGuard {
    bool listing = false;
    bool log = false;
    std::vector<std::wstring> lines;  // for the user, about files that are kept
};

// The disk as the functions below see it. A test gives one of its own.
struct ProductDisk {
    std::function<bool(const std::wstring& path, FileStamp* stamp)> stamp;          // false: there is no such file
    std::function<bool(const std::wstring& path)> isBuildLog;                       // its text begins as one
    std::function<bool(const std::wstring& from, const std::wstring& to)> copyNew;  // false also when `to` is there
    std::function<void(const std::wstring& path)> remove;
    std::function<bool(const std::wstring& path)> isOpen;  // in a tab
};
// A file that the running build may write.
struct WatchedFile {
    std::wstring path;
    std::optional<FileStamp> before;
    std::wstring copy;  // of the user's file; empty: none was made
};

bool ProductIsMadeHere(const std::vector<Product>& known, const std::wstring& path, const ProductDisk& disk);
// What a build may write. Files of the user that the compiler may overwrite unasked are copied.
ProductGuard ProductsGuard(const ProductPaths& paths, const std::vector<Product>& known, const ProductDisk& disk,
                           std::vector<WatchedFile>* watched);
// Notes what was written, and removes the copies of files that were left alone. Returns lines about copies that are
// kept. `changed` tells whether the notes have changed.
std::vector<std::wstring> ProductsTakeUp(const std::vector<WatchedFile>& watched, std::vector<Product>& products,
                                         const ProductDisk& disk, bool* changed);

// --- On the disk (products_win.cpp), UI thread only. The notes are in "Products.txt" of the user's folder.
bool IsBuildProduct(const std::wstring& path);
// Called before the compiler is started.
ProductGuard ProductsBeforeBuild(const ProductPaths& paths);
// Called when the compiler has ended, or was not started. Returns lines for the user.
std::vector<std::wstring> ProductsAfterBuild();
// Notes the file as it is now: a post-build command may have changed the program.
void ProductNoteNow(const std::wstring& path);
