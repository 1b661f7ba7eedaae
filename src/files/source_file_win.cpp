// Reads and saves source files. Encoding and line ending are found when a file is read and restored when it is saved.
// The order of a save's steps is in files/safe_save.cpp. Any thread.
#include "files/file_io.h"

#include "base/handles.h"
#include "base/path.h"
#include "files/recovery.h"
#include "files/safe_save.h"
#include "files/whole_file.h"

#include <climits>
#include <cstring>

namespace {

constexpr std::size_t kVerifyChunk = 1 << 20;

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

SaveCheck CompareWithFile(const std::wstring& systemPath, const char* bytes, std::size_t length) {
    const UniqueHandle file{CreateFileW(systemPath.c_str(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_SEQUENTIAL_SCAN, nullptr)};
    const HeapBlock<char> chunk{static_cast<char*>(std::malloc(kVerifyChunk))};
    if (!file || !chunk) return SaveCheck::Unreadable;
    for (std::size_t offset = 0;;) {
        DWORD read = 0;
        if (ReadFile(file.Get(), chunk.get(), static_cast<DWORD>(kVerifyChunk), &read, nullptr) == FALSE)
            return SaveCheck::Unreadable;
        if (read == 0) return offset == length ? SaveCheck::Same : SaveCheck::Different;
        if (read > length - offset || std::memcmp(chunk.get(), bytes + offset, read) != 0) return SaveCheck::Different;
        offset += read;
    }
}

bool SaveBytes(const wchar_t* path, const char* bytes, std::size_t length) {
    const std::wstring systemPath = PathForSystem(path);
    const FoundTarget found = LookAtTarget(systemPath);
    RecoveryCopy copy;
    return SafeSave(found.target,
                    {.writeCopy = [&] { return RecoveryWrite(path, bytes, length, &copy); },
                     .hasRoom = [&] { return VolumeHasRoom(path, found.target, length); },
                     .overwrite =
                         [&] {
                             return WriteWholeFile(systemPath, {bytes, length}, {.attributes = found.attributes});
                         },
                     .check = [&] { return CompareWithFile(systemPath, bytes, length); },
                     .discardCopy = [&] { RecoveryDiscard(path, copy); },
                     .keepCopy = [&] { RecoveryKeep(path, copy); }});
}

}  // namespace

char* ReadSourceFileForEditor(const wchar_t* path, std::size_t* length, TextEncoding* encoding,
                              LineEnding* lineEnding) {
    std::size_t rawLength = 0;
    HeapBlock<char> raw{ReadFileUtf8(path, &rawLength)};
    if (!raw) return nullptr;
    if (lineEnding != nullptr) *lineEnding = DetectLineEnding(raw.get(), rawLength);
    TextEncoding found = TextEncoding::Utf8;
    ByteBlock text;
    if (IsValidUtf8Bytes(raw.get(), rawLength)) {
        text = {std::move(raw), rawLength};
    } else {
        found = TextEncoding::Ansi;
        const WideBlock wide = ToWide(CP_ACP, raw.get(), rawLength);
        raw.reset();
        text = FromWide(CP_UTF8, wide);
        if (!text.bytes) return nullptr;
    }
    if (encoding != nullptr) *encoding = found;
    if (length != nullptr) *length = text.length;
    return text.bytes.release();
}

bool WriteSourceFileFromEditor(const wchar_t* path, const char* utf8, std::size_t length, TextEncoding encoding,
                               LineEnding lineEnding) {
    if (path == nullptr || utf8 == nullptr) return false;
    RecoveryKeep(path, {});  // an empty copy: what an earlier failure has left is not this save's copy
    std::size_t normalLength = 0;
    HeapBlock<char> normal{NormalizeLineEndings(utf8, length, lineEnding, &normalLength)};
    if (!normal) return false;
    if (encoding != TextEncoding::Ansi) return SaveBytes(path, normal.get(), normalLength);
    const WideBlock wide = ToWide(CP_UTF8, normal.get(), normalLength);
    normal.reset();
    const ByteBlock ansi = FromWide(CP_ACP, wide);
    return ansi.bytes && SaveBytes(path, ansi.bytes.get(), ansi.length);
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
