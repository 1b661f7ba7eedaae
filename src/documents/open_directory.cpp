// Chooses the folder in which the open dialog starts. Pure.
#include "documents/open_directory.h"

#include "base/bounded_text.h"
#include "base/path.h"

namespace {

constexpr const wchar_t* kExampleFolders[] = {
    L"TestUsage\\KVX-Editor\\KVXB64\\Examples",
    L"KVX-Editor\\KVXB64\\Examples",
};

}  // namespace

bool ResolveOpenDirectory(const OpenDirectoryInputs& inputs, DirectoryProbe exists, wchar_t* out,
                          std::size_t capacity) {
    if (out == nullptr || capacity == 0) return false;
    out[0] = L'\0';
    if (inputs.activeFile[0] != L'\0') {
        PathGetDir(inputs.activeFile, out, capacity);
        if (out[0] != L'\0') return true;
    }
    if (inputs.lastDirectory[0] != L'\0') {
        SafeCopyW(out, capacity, inputs.lastDirectory);
        return true;
    }
    for (const wchar_t* folder : kExampleFolders) {
        wchar_t candidate[kPathCapacity];
        PathJoin(inputs.exeDirectory, folder, candidate, kPathCapacity);
        if (exists(candidate)) {
            SafeCopyW(out, capacity, candidate);
            return true;
        }
    }
    SafeCopyW(out, capacity, inputs.exeDirectory);
    return out[0] != L'\0';
}
