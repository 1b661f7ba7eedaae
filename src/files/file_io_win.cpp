// Bytes of whole files, and text between UTF-8 and UTF-16. No state; any thread.
#include "files/file_io.h"

#include "base/handles.h"
#include "base/path.h"

#include <cstdint>

namespace {

constexpr std::uint64_t kSizeLimit = 0xFFFFFFFFU;  // this size and more is a failure
constexpr DWORD kModulePathCapacity = 4096;

}  // namespace

wchar_t* Utf8ToWide(const char* utf8) {
    if (utf8 == nullptr) return nullptr;
    const int length = MultiByteToWideChar(CP_UTF8, 0, utf8, -1, nullptr, 0);
    if (length < 1) return nullptr;
    auto* const wide = static_cast<wchar_t*>(std::malloc(static_cast<std::size_t>(length) * sizeof(wchar_t)));
    if (wide != nullptr && MultiByteToWideChar(CP_UTF8, 0, utf8, -1, wide, length) < 1) {
        std::free(wide);
        return nullptr;
    }
    return wide;
}

std::wstring Utf8ToWideText(std::string_view utf8) {
    if (utf8.empty() || utf8.size() > 0x7FFFFFFFU) return {};
    const int size = static_cast<int>(utf8.size());
    std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

char* WideToUtf8(const wchar_t* wide) {
    if (wide == nullptr) return nullptr;
    const int length = WideCharToMultiByte(CP_UTF8, 0, wide, -1, nullptr, 0, nullptr, nullptr);
    if (length < 1) return nullptr;
    auto* const utf8 = static_cast<char*>(std::malloc(static_cast<std::size_t>(length)));
    if (utf8 != nullptr && WideCharToMultiByte(CP_UTF8, 0, wide, -1, utf8, length, nullptr, nullptr) < 1) {
        std::free(utf8);
        return nullptr;
    }
    return utf8;
}

bool FileExists(const wchar_t* path) {
    if (path == nullptr) return false;
    const DWORD attributes = GetFileAttributesW(PathForSystem(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

char* ReadFileUtf8(const wchar_t* path, std::size_t* length) {
    if (path == nullptr || length == nullptr) return nullptr;
    *length = 0;
    const UniqueHandle file{CreateFileW(PathForSystem(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)};
    // A device name ("CON", a pipe) opens too, and reading it would wait for someone to type.
    if (!file || GetFileType(file.Get()) != FILE_TYPE_DISK) return nullptr;
    LARGE_INTEGER size = {};
    if (GetFileSizeEx(file.Get(), &size) == FALSE || static_cast<std::uint64_t>(size.QuadPart) >= kSizeLimit)
        return nullptr;
    const auto bytes = static_cast<std::size_t>(size.QuadPart);
    HeapBlock<char> buffer{static_cast<char*>(std::malloc(bytes + 1))};
    DWORD read = 0;
    if (!buffer || ReadFile(file.Get(), buffer.get(), static_cast<DWORD>(bytes), &read, nullptr) == FALSE)
        return nullptr;
    buffer.get()[read] = '\0';
    *length = read;
    return buffer.release();
}

bool WriteFileUtf8(const wchar_t* path, const char* bytes, std::size_t length) {
    if (path == nullptr || bytes == nullptr || length >= kSizeLimit) return false;
    const UniqueHandle file{CreateFileW(PathForSystem(path).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                        FILE_ATTRIBUTE_NORMAL, nullptr)};
    DWORD written = 0;
    return file && WriteFile(file.Get(), bytes, static_cast<DWORD>(length), &written, nullptr) != FALSE &&
           written == length;
}

bool FlushWritten(void* file) {
    return FlushFileBuffers(file) != FALSE || GetLastError() == ERROR_INVALID_FUNCTION ||
           GetLastError() == ERROR_NOT_SUPPORTED;
}

std::wstring PathForSystem(const wchar_t* path) {
    std::wstring extended = PathExtended(path);
    if (extended.size() == std::wstring_view{path}.size()) return extended;
    // Behind the prefix the system no longer resolves "." and ".." nor turns slashes round, so that is done before.
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
    // The caller may give the same buffer for both.
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
