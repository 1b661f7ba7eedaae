// A folder whose path is longer than the system's usual limit of 260 characters.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

// Only paths with the prefix "\\?\" reach such a folder. std::filesystem::remove_all does not remove it, so the
// destructor does. The folder must be empty by then.
struct DeepFolder {
    std::wstring path;  // without a backslash at the end

    // `parent` must exist; a backslash at its end is ignored.
    explicit DeepFolder(std::wstring parent, std::size_t length = 400) {
        if (parent.ends_with(L'\\')) parent.pop_back();
        parentLength_ = parent.size();
        for (path = std::move(parent); path.size() < length;) {
            path += L"\\a folder with a name of forty characters___";
            EXPECT_TRUE(CreateDirectoryW(LongForm(path).c_str(), nullptr)) << "error " << GetLastError();
        }
    }
    ~DeepFolder() {
        for (; path.size() > parentLength_; path.resize(path.rfind(L'\\')))
            EXPECT_TRUE(RemoveDirectoryW(LongForm(path).c_str())) << "error " << GetLastError();
    }
    DeepFolder(const DeepFolder&) = delete;
    DeepFolder& operator=(const DeepFolder&) = delete;

    std::wstring File(const std::wstring& name) const { return path + L"\\" + name; }
    static std::wstring LongForm(const std::wstring& absolute) { return L"\\\\?\\" + absolute; }

private:
    std::size_t parentLength_ = 0;
};
