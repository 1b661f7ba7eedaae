// Reads and writes whole files, and asks the system about paths. No state; any thread.
#include "files/file_io.h"

#include "base/handles.h"
#include "base/path.h"
#include "files/file_handle.h"
#include "files/save_errors.h"
#include "files/whole_file.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr std::uint64_t kSizeLimit = 0xFFFFFFFFU;  // this size and more is refused
constexpr std::uint64_t kSharedLimit = 0x7FFFFFFF;
constexpr DWORD kModulePathCapacity = 4096;

// A file on a disk that is open for reading, and its size. A device name ("CON", a pipe) counts as not open, because
// reading from it would wait for input.
struct OpenedFile {
    UniqueHandle handle;
    std::uint64_t size = 0;
};

OpenedFile OpenDiskFile(const wchar_t* path, DWORD sharing) {
    OpenedFile file{UniqueHandle{CreateFileW(PathForSystem(path).c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING,
                                             FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr)}};
    LARGE_INTEGER size = {};
    if (!file.handle || GetFileType(file.handle.Get()) != FILE_TYPE_DISK ||
        GetFileSizeEx(file.handle.Get(), &size) == FALSE)
        return {};
    file.size = static_cast<std::uint64_t>(size.QuadPart);
    return file;
}

// `taken` gets the number of bytes read. It is smaller than the size when the file has become shorter.
bool ReadInto(const OpenedFile& file, char* buffer, std::size_t* taken) {
    DWORD read = 0;
    if (ReadFile(file.handle.Get(), buffer, static_cast<DWORD>(file.size), &read, nullptr) == FALSE) return false;
    *taken = read;
    return true;
}

UniqueHandle OpenToWrite(const std::wstring& systemPath, const WriteHow& how) {
    constexpr DWORD kPauseMs = 40;
    for (DWORD waited = 0;; waited += kPauseMs) {
        UniqueHandle file{CreateFileW(systemPath.c_str(), GENERIC_WRITE, how.sharing, nullptr, how.disposition,
                                      how.attributes, nullptr)};
        if (file || waited >= how.patience || !IsHeldElsewhere(GetLastError())) return file;
        Sleep(kPauseMs);
    }
}

bool WritePieces(HANDLE file, std::string_view bytes, FileProgress* progress) {
    constexpr std::size_t kPiece = 4 << 20;
    while (!bytes.empty()) {
        if (progress != nullptr && progress->cancel && progress->mayCancel) {
            SetLastError(ERROR_CANCELLED);
            return false;
        }
        const auto piece = static_cast<DWORD>(std::min(bytes.size(), kPiece));
        DWORD taken = 0;
        if (WriteFile(file, bytes.data(), piece, &taken, nullptr) == FALSE || taken != piece) return false;
        if (progress != nullptr) progress->done += piece;
        bytes.remove_prefix(piece);
    }
    return true;
}

// A file system that does not support flushing counts as flushed.
bool FlushWritten(HANDLE file) {
    return FlushFileBuffers(file) != FALSE || GetLastError() == ERROR_INVALID_FUNCTION ||
           GetLastError() == ERROR_NOT_SUPPORTED;
}

}  // namespace

bool FileExists(const wchar_t* path) {
    if (path == nullptr) return false;
    const DWORD attributes = GetFileAttributesW(PathForSystem(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

char* ReadFileUtf8(const wchar_t* path, std::size_t* length) { return ReadWholeFile(path, length, nullptr); }

char* ReadWholeFile(const wchar_t* path, std::size_t* length, FileState* state) {
    if (path == nullptr || length == nullptr) return nullptr;
    *length = 0;
    const OpenedFile file = OpenDiskFile(path, FILE_SHARE_READ);
    if (!file.handle || file.size >= kSizeLimit) return nullptr;
    HeapBlock<char> buffer{static_cast<char*>(std::malloc(static_cast<std::size_t>(file.size) + 1))};
    if (!buffer || !ReadInto(file, buffer.get(), length)) return nullptr;
    buffer.get()[*length] = '\0';
    if (state != nullptr) {  // nobody can write while the file is open
        *state = FileStateOfHandle(file.handle.Get());
        state->hash = ContentHashOf({buffer.get(), *length});
    }
    return buffer.release();
}

bool ReadSharedFile(const std::wstring& path, std::size_t most, std::string* bytes) {
    bytes->clear();
    if (path.empty()) return false;
    const OpenedFile file = OpenDiskFile(path.c_str(), FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
    if (!file.handle || file.size > std::min<std::uint64_t>(most, kSharedLimit)) return false;
    bytes->resize(static_cast<std::size_t>(file.size));
    std::size_t taken = 0;
    if (!bytes->empty() && !ReadInto(file, bytes->data(), &taken)) return false;
    bytes->resize(taken);
    return true;
}

bool WriteWholeFile(const std::wstring& systemPath, std::string_view bytes, const WriteHow& how) {
    if (bytes.size() >= kSizeLimit) return false;
    bool opened = false;
    bool written = false;
    {
        const UniqueHandle file = OpenToWrite(systemPath, how);
        opened = static_cast<bool>(file);
        if (how.opened != nullptr) *how.opened = opened;
        written = opened && WritePieces(file.Get(), bytes, how.progress) && (!how.flush || FlushWritten(file.Get()));
    }
    const DWORD error = GetLastError();
    if (opened && !written && how.removeFailed) DeleteFileW(systemPath.c_str());
    SetLastError(error);  // for the caller, who may ask for the reason
    return written;
}

bool WriteFileUtf8(const wchar_t* path, const char* bytes, std::size_t length) {
    return path != nullptr && bytes != nullptr &&
           WriteWholeFile(PathForSystem(path), {bytes, length}, {.flush = false});
}

std::wstring PathForSystem(const wchar_t* path) {
    std::wstring extended = PathExtended(path);
    if (extended.size() == std::wstring_view{path}.size()) return extended;
    // The system neither resolves "." and ".." nor accepts forward slashes after the prefix. So the path is normalised
    // before it gets the prefix.
    wchar_t full[4096];
    const DWORD length = GetFullPathNameW(path, 4096, full, nullptr);
    return length > 0 && length < 4096 ? PathExtended({full, length}) : extended;
}

bool PathNormalizeInput(const wchar_t* input, wchar_t* out, std::size_t capacity) {
    if (out == nullptr || capacity == 0) return false;
    out[0] = L'\0';
    if (input == nullptr) return false;
    std::wstring text{input};
    if (text.size() > 1 && text.front() == L'"' && text.back() == L'"') text = text.substr(1, text.size() - 2);
    if (text.empty()) return false;
    // `input` and `out` may be the same buffer.
    std::wstring full(capacity, L'\0');
    const DWORD length = GetFullPathNameW(text.c_str(), static_cast<DWORD>(capacity), full.data(), nullptr);
    if (length == 0 || length >= capacity) return false;
    full.copy(out, length);
    out[length] = L'\0';
    return true;
}

void AppExeDirectory(wchar_t* out, std::size_t capacity) {
    if (out == nullptr || capacity == 0) return;
    // A result that fills the buffer was cut, and a cut path would name another folder.
    std::wstring module(kModulePathCapacity, L'\0');
    const DWORD length = GetModuleFileNameW(nullptr, module.data(), kModulePathCapacity);
    module.resize(length < kModulePathCapacity ? length : 0);
    PathGetDir(module.c_str(), out, capacity);
}
