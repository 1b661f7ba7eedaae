#include "files/file_identity.h"

#include "base/handles.h"
#include "files/file_handle.h"
#include "files/file_io.h"

#include <cstring>

FileIdentity FileIdentityOfHandle(HANDLE file) {
    FileIdentity identity;
    FILE_ID_INFO full = {};
    if (GetFileInformationByHandleEx(file, FileIdInfo, &full, sizeof full) != FALSE) {
        identity.volume = full.VolumeSerialNumber;
        std::memcpy(&identity.low, full.FileId.Identifier, sizeof identity.low);
        std::memcpy(&identity.high, full.FileId.Identifier + sizeof identity.low, sizeof identity.high);
        return identity;
    }
    BY_HANDLE_FILE_INFORMATION info = {};  // what older systems and shares know
    if (GetFileInformationByHandle(file, &info) != FALSE) {
        identity.volume = info.dwVolumeSerialNumber;
        identity.low = (static_cast<std::uint64_t>(info.nFileIndexHigh) << 32) | info.nFileIndexLow;
    }
    return identity;
}

FileIdentity FileIdentityOf(const wchar_t* path) {
    // No access at all is asked for, so that a file that another program has opened for itself is known, too.
    const UniqueHandle file{CreateFileW(PathForSystem(path).c_str(), 0,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr)};
    return file && GetFileType(file.Get()) == FILE_TYPE_DISK ? FileIdentityOfHandle(file.Get()) : FileIdentity{};
}
