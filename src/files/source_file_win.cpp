// Reads and saves source files. Encoding and line ending are found when a file is read and restored when it is saved.
// The order of a save's steps is in files/safe_save.cpp. Any thread.
#include "files/file_io.h"

#include "base/handles.h"
#include "base/path.h"
#include "files/file_handle.h"
#include "files/recovery.h"
#include "files/safe_save.h"
#include "files/source_text.h"
#include "files/utf16.h"
#include "files/whole_file.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace {

constexpr std::size_t kVerifyChunk = 1 << 20;
constexpr DWORD kSavePatienceMs = 600;

struct WideBlock {
    HeapBlock<wchar_t> text;
    int length = 0;  // without the terminator; 0: the conversion failed
};

WideBlock ToWide(UINT codePage, const char* bytes, std::size_t length) {
    WideBlock wide;
    if (length == 0 || length > INT_MAX) return wide;
    const int size = static_cast<int>(length);
    const int needed = MultiByteToWideChar(codePage, 0, bytes, size, nullptr, 0);
    if (needed < 1) return wide;
    wide.text.reset(static_cast<wchar_t*>(std::malloc((static_cast<std::size_t>(needed) + 1) * sizeof(wchar_t))));
    if (wide.text && MultiByteToWideChar(codePage, 0, bytes, size, wide.text.get(), needed) == needed) {
        wide.text.get()[needed] = L'\0';
        wide.length = needed;
    }
    return wide;
}

struct ByteBlock {
    HeapBlock<char> bytes;
    std::size_t length = 0;
};

// Terminated by a NUL; without a block on failure.
ByteBlock FromWide(UINT codePage, const WideBlock& wide) {
    ByteBlock result;
    if (wide.length < 1) return result;
    const int needed = WideCharToMultiByte(codePage, 0, wide.text.get(), wide.length, nullptr, 0, nullptr, nullptr);
    if (needed < 1) return result;
    HeapBlock<char> bytes{static_cast<char*>(std::malloc(static_cast<std::size_t>(needed) + 1))};
    if (bytes && WideCharToMultiByte(codePage, 0, wide.text.get(), wide.length, bytes.get(), needed, nullptr,
                                     nullptr) == needed) {
        bytes.get()[needed] = '\0';
        result.length = static_cast<std::size_t>(needed);
        result.bytes = std::move(bytes);
    }
    return result;
}

// Whether the text, put back into the code page, gives these bytes.
bool GivesBack(UINT codePage, const WideBlock& wide, std::string_view bytes) {
    constexpr int kUnits = 1 << 14;
    constexpr int kCapacity = 4 * kUnits;
    const HeapBlock<char> back{static_cast<char*>(std::malloc(kCapacity))};
    if (!back) return false;
    for (int at = 0; at < wide.length;) {
        int units = std::min(kUnits, wide.length - at);
        if (at + units < wide.length && IS_HIGH_SURROGATE(wide.text.get()[at + units - 1])) --units;
        const int got =
            WideCharToMultiByte(codePage, 0, wide.text.get() + at, units, back.get(), kCapacity, nullptr, nullptr);
        if (got < 1 || !bytes.starts_with({back.get(), static_cast<std::size_t>(got)})) return false;
        bytes.remove_prefix(static_cast<std::size_t>(got));
        at += units;
    }
    return bytes.empty();
}

// A new block with the text; null when memory runs out.
ByteBlock BlockOf(std::string_view text) {
    ByteBlock block{HeapBlock<char>{static_cast<char*>(std::malloc(text.size() + 1))}, text.size()};
    if (!block.bytes) return {};
    std::memcpy(block.bytes.get(), text.data(), text.size());
    block.bytes.get()[text.size()] = '\0';
    return block;
}

struct FoundTarget {
    SaveTarget target;
    // The attributes that the overwritten file gets: the system refuses to overwrite a hidden or system file with
    // others.
    DWORD attributes = FILE_ATTRIBUTE_NORMAL;
};

FoundTarget LookAtTarget(const std::wstring& systemPath) {
    FoundTarget found;
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (GetFileAttributesExW(systemPath.c_str(), GetFileExInfoStandard, &data) != FALSE) {
        found.target.readOnly = (data.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
        found.target.size = (static_cast<std::uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
        const DWORD kept = data.dwFileAttributes & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                                                    FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED);
        if (kept != 0) found.attributes = kept;
    }
    return found;
}

// False only when the volume has no room for the new text in place of the old one. If the file were truncated first and
// the disk then ran full, half a file would be left. A recovery copy on the same volume counts as used room on purpose,
// because it is what the user has when the save fails.
bool VolumeHasRoom(const wchar_t* path, const SaveTarget& target, std::size_t length) {
    if (length <= target.size) return true;
    wchar_t directory[4096];
    PathGetDir(path, directory, 4096);
    ULARGE_INTEGER available = {};
    if (directory[0] == L'\0' ||
        GetDiskFreeSpaceExW(PathForSystem(directory).c_str(), &available, nullptr, nullptr) == FALSE)
        return true;  // not known: the write itself shows it
    return length - target.size <= available.QuadPart;
}

SaveCheck CompareWithFile(const std::wstring& systemPath, const char* bytes, std::size_t length, FileProgress& progress,
                          FileState* state) {
    const UniqueHandle file{CreateFileW(systemPath.c_str(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_SEQUENTIAL_SCAN, nullptr)};
    const HeapBlock<char> chunk{static_cast<char*>(std::malloc(kVerifyChunk))};
    if (!file || !chunk) return SaveCheck::Unreadable;
    // Taken before the bytes are compared: what another program writes from now on is not what was written here.
    *state = FileStateOfHandle(file.Get());
    for (std::size_t offset = 0;;) {
        DWORD read = 0;
        if (ReadFile(file.Get(), chunk.get(), static_cast<DWORD>(kVerifyChunk), &read, nullptr) == FALSE)
            return SaveCheck::Unreadable;
        if (read == 0) return offset == length ? SaveCheck::Same : SaveCheck::Different;
        if (read > length - offset || std::memcmp(chunk.get(), bytes + offset, read) != 0) return SaveCheck::Different;
        offset += read;
        progress.done += read;
    }
}

// True when the save was cancelled. After false it can no longer be.
bool IsCancelledAtLast(FileProgress& progress) {
    progress.mayCancel = false;
    return progress.cancel;
}

SaveReport SaveBytes(const wchar_t* path, const char* bytes, std::size_t length, FileProgress& progress) {
    const std::wstring systemPath = PathForSystem(path);
    const FoundTarget found = LookAtTarget(systemPath);
    RecoveryCopy copy;
    SaveReport report;
    bool opened = false;
    const auto noteError = [&report](bool done) {
        report.error = done ? 0 : GetLastError();
        return done;
    };
    // Others may read the file meanwhile, because a program that only reads it should not keep the user from saving.
    progress.total = 3 * static_cast<std::uint64_t>(length);  // the copy, the file, and reading it back
    const WriteHow how{.attributes = found.attributes,
                       .sharing = FILE_SHARE_READ,
                       .patience = kSavePatienceMs,
                       .progress = &progress,
                       .opened = &opened};
    report.end = SafeSave(found.target,
                          {.writeCopy = [&] { return noteError(RecoveryWrite(path, bytes, length, &copy, &progress)); },
                           .isCancelled = [&] { return IsCancelledAtLast(progress); },
                           .hasRoom = [&] { return VolumeHasRoom(path, found.target, length); },
                           .overwrite =
                               [&] {
                                   return noteError(WriteWholeFile(systemPath, {bytes, length}, how));
                               },
                           .check = [&] { return CompareWithFile(systemPath, bytes, length, progress, &report.state); },
                           .discardCopy = [&] { RecoveryDiscard(path, copy); },
                           .keepCopy = [&] { RecoveryKeep(path, copy); }});
    report.state.hash = ContentHashOf({bytes, length});
    if (report.end == SaveEnd::NotWritten && !opened)
        report.end = report.error == ERROR_PATH_NOT_FOUND ? SaveEnd::NoFolder : SaveEnd::NotOpened;
    return report;
}

// The bytes for the disk; without a block on failure.
ByteBlock Encode(const char* utf8, std::size_t length, TextEncoding encoding, LineEnding lineEnding,
                 const DiskForm& form) {
    ByteBlock normal;
    if (form.keepBreaks)
        normal = BlockOf({utf8, length});
    else
        normal.bytes.reset(NormalizeLineEndings(utf8, length, lineEnding, &normal.length));
    if (!normal.bytes || normal.length == 0) return normal;  // an empty text is empty in every encoding
    if (form.utf16 != Utf16Order::None)
        return BlockOf(Utf8AsUtf16({normal.bytes.get(), normal.length}, form.utf16, form.mark));
    if (encoding != TextEncoding::Ansi) return normal;
    const WideBlock wide = ToWide(CP_UTF8, normal.bytes.get(), normal.length);
    normal.bytes.reset();
    return FromWide(CP_ACP, wide);
}

}  // namespace

char* ReadSourceFileForEditor(const wchar_t* path, std::size_t* length, TextEncoding* encoding, LineEnding* lineEnding,
                              DiskForm* form, FileState* state, SourceCode code) {
    std::size_t rawLength = 0;
    HeapBlock<char> raw{ReadWholeFile(path, &rawLength, state)};
    if (!raw) return nullptr;
    SourceText text;
    const bool decoded = DecodeSource(
        {raw.get(), rawLength},
        [](std::string_view bytes, std::string* utf8, bool* exact) {
            return DecodeCodePage(CP_ACP, bytes, utf8, exact);
        },
        &text, code);
    if (lineEnding != nullptr) *lineEnding = text.lineEnding;
    if (!decoded) return nullptr;
    ByteBlock block = text.asItIs ? ByteBlock{std::move(raw), rawLength} : BlockOf(text.utf8);
    if (!block.bytes) return nullptr;
    if (encoding != nullptr) *encoding = text.encoding;
    if (form != nullptr) *form = text.form;
    if (length != nullptr) *length = block.length;
    return block.bytes.release();
}

bool DecodeCodePage(unsigned codePage, std::string_view bytes, std::string* utf8, bool* exact) {
    if (bytes.empty()) return true;
    const WideBlock wide = ToWide(codePage, bytes.data(), bytes.size());
    const ByteBlock text = FromWide(CP_UTF8, wide);
    if (!text.bytes) return false;
    *exact = *exact && GivesBack(codePage, wide, bytes);
    utf8->append(text.bytes.get(), text.length);
    return true;
}

bool WriteSourceFileFromEditor(const wchar_t* path, const char* utf8, std::size_t length, TextEncoding encoding,
                               LineEnding lineEnding, const DiskForm& form, SaveReport* report,
                               FileProgress* progress) {
    if (report != nullptr) *report = {};
    if (path == nullptr || utf8 == nullptr) return false;
    RecoveryKeep(path, {});  // an empty copy: what an earlier failure has left is not this save's copy
    const ByteBlock bytes = Encode(utf8, length, encoding, lineEnding, form);
    if (!bytes.bytes) return false;
    FileProgress own;
    const SaveReport result = SaveBytes(path, bytes.bytes.get(), bytes.length, progress != nullptr ? *progress : own);
    if (report != nullptr) *report = result;
    return result.end == SaveEnd::Saved;
}

bool AnsiCanHold(std::string_view utf8) { return AnsiFirstUnmappable(utf8) < 0; }

std::ptrdiff_t AnsiFirstUnmappable(std::string_view utf8) {
    // A system whose ANSI code page is UTF-8 holds every character, and does not accept WC_NO_BEST_FIT_CHARS.
    if (GetACP() == CP_UTF8) return -1;
    constexpr int kAnsiCapacity = 2 * ((1 << 16) + 4);
    const HeapBlock<char> ansi{static_cast<char*>(std::malloc(kAnsiCapacity))};
    return FirstRefusedCharacter(utf8, [&ansi](std::string_view part) {
        const WideBlock wide = ToWide(CP_UTF8, part.data(), part.size());
        BOOL replaced = FALSE;
        // WC_NO_BEST_FIT_CHARS makes a character count as replaced when it would become a similar one.
        return wide.length > 0 && ansi &&
               WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.text.get(), wide.length, ansi.get(),
                                   kAnsiCapacity, nullptr, &replaced) > 0 &&
               replaced == FALSE;
    });
}
