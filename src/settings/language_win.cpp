// The language files on the disk. UI thread only.
#include "settings/language.h"

#include "base/bounded_text.h"
#include "base/handles.h"
#include "base/log.h"
#include "base/path.h"
#include "base/texts.h"
#include "files/file_io.h"
#include "files/user_folder.h"

#include <windows.h>

#include <algorithm>
#include <string_view>

namespace {

constexpr std::wstring_view kEnding = L".txt";

// In the order in which they count.
std::vector<std::wstring> LanguageFolders() {
    std::vector<std::wstring> folders;
    if (const std::wstring own = UserFolderPath(); !own.empty()) folders.push_back(own + L"languages\\");
    wchar_t program[kPathCapacity] = {};
    AppExeDirectory(program, kPathCapacity);
    std::wstring beside = program;
    if (!beside.ends_with(L'\\')) beside += L'\\';
    folders.push_back(beside + L"languages\\");
    return folders;
}

// The settings file may name anything. A name of a language leads out of no folder.
bool IsLanguageName(std::wstring_view name) {
    return !name.empty() && name.find_first_of(L"\\/:*?\"<>|") == std::wstring_view::npos && name.front() != L'.';
}

void AddNames(const std::wstring& folder, std::vector<std::wstring>* names) {
    WIN32_FIND_DATAW entry = {};
    const UniqueFind find{FindFirstFileW(PathForSystem((folder + L"*" + kEnding.data()).c_str()).c_str(), &entry)};
    if (!find) return;
    do {
        const std::wstring_view name = entry.cFileName;
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 && name.size() > kEnding.size())
            names->emplace_back(name.substr(0, name.size() - kEnding.size()));
    } while (FindNextFileW(find.Get(), &entry) != FALSE);
}

}  // namespace

void LanguageUse(const wchar_t* name) {
    if (name[0] == L'\0' || std::wstring_view{name} == kEnglish) return;
    std::string bytes;
    std::wstring path;
    for (const std::wstring& folder : LanguageFolders()) {
        path = folder + name + kEnding.data();
        if (IsLanguageName(name) && ReadSharedFile(path, kMostCatalogueBytes, &bytes)) break;
        path.clear();
    }
    if (path.empty()) return AppLogMsg(L"FAIL: no language file for %s", name);
    std::vector<CatalogueFault> faults;
    // It lives as long as the process, because texts of it are held everywhere.
    static const TextCatalogue catalogue = TextCatalogue::Parse(bytes, &faults);
    for (const CatalogueFault& fault : faults)
        AppLogMsg(L"FAIL: %s, line %d: %s", path.c_str(), fault.line, fault.what);
    AppLogMsg(L"Language: %d texts of %s", static_cast<int>(catalogue.Size()), path.c_str());
    TextsUse(&catalogue);
}

std::vector<std::wstring> LanguageNames() {
    std::vector<std::wstring> names;
    for (const std::wstring& folder : LanguageFolders()) AddNames(folder, &names);
    std::erase(names, kEnglish);
    std::ranges::sort(names);
    names.erase(std::unique(names.begin(), names.end()), names.end());
    names.insert(names.begin(), kEnglish);
    return names;
}
