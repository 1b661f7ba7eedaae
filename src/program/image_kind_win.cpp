#include "program/image_kind.h"

#include "base/handles.h"
#include "files/file_io.h"
#include "program/pe_headers.h"

#include <windows.h>

#include <cstdint>
#include <vector>

// Reads only the start of the file, because the stub before the headers is rarely longer than a few hundred bytes.
ImageKind ImageKindOf(const wchar_t* executable) {
    constexpr DWORD kHeaderBytes = 65536;
    constexpr std::uint16_t kPe32Plus = 0x20B, kConsole = 3;
    UniqueHandle file(CreateFileW(PathForSystem(executable).c_str(), GENERIC_READ,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
    std::vector<std::uint8_t> bytes(kHeaderBytes);
    DWORD read = 0;
    if (!file || !ReadFile(file.Get(), bytes.data(), kHeaderBytes, &read, nullptr)) return {};
    return {.x64 = GetPeMagic(bytes.data(), read) == kPe32Plus,
            .console = GetPeSubsystem(bytes.data(), read) == kConsole};
}
