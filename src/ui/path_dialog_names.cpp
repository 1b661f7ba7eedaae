#include "ui/path_dialog_names.h"

#include "base/bounded_text.h"
#include "base/path.h"

std::array<std::wstring, 3> FileDialogNames(const std::wstring& path) {
    wchar_t file[kPathCapacity];
    PathGetFile(path.c_str(), file, kPathCapacity);
    return {path, file, L""};
}
