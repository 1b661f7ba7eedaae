// Registry entries for source extensions. UI thread only.
#include "settings/file_types.h"

#include "base/handles.h"
#include "base/wide_format.h"
#include "settings/compiler_table.h"
#include "settings/file_type_table.h"
#include "settings/settings_state.h"

#include <shlobj.h>
#include <shlwapi.h>

#include <string>
#include <vector>

namespace {

std::wstring WithoutDot(const FileType& type) { return std::wstring(type.extension.substr(1)); }

const std::wstring kClasses = L"Software\\Classes\\";

UniqueRegistryKey CreateKey(const std::wstring& path) {
    UniqueRegistryKey key;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr,
                        key.Put(), nullptr) != ERROR_SUCCESS)
        key.Release();
    return key;
}

// Creates the key and writes its default value. False when the key cannot be created.
bool WriteDefaultValue(const std::wstring& path, const std::wstring& text) {
    const UniqueRegistryKey key = CreateKey(path);
    if (!key) return false;
    // A failure to write the value is ignored: the key without it does no harm.
    RegSetValueExW(key.Get(), nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                   static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    return true;
}

std::wstring OpenCommand() {
    wchar_t executable[4096];
    const DWORD length = GetModuleFileNameW(nullptr, executable, 4096);
    return length > 0 && length < 4096 ? FormatW(L"\"%s\" \"%%1\"", executable) : std::wstring{};
}

void AddOpenWith(const std::wstring& extension, const wchar_t* progId) {
    const UniqueRegistryKey key = CreateKey(kClasses + extension + L"\\OpenWithProgids");
    if (key) RegSetValueExW(key.Get(), progId, 0, REG_NONE, nullptr, 0);
}

// Registers the types of one compiler that have a ShellEntry.
void RegisterTypesOf(const CompilerProfile& compiler, const std::wstring& command) {
    std::vector<std::wstring> openWith;
    bool any = false;
    for (const FileType& type : FileTypes()) {
        if (type.compiler != compiler.id || type.shell == ShellEntry::None) continue;
        any = true;
        CreateKey(kClasses + std::wstring(type.extension));
        if (type.shell == ShellEntry::OpenWith) openWith.emplace_back(type.extension);
    }
    if (!any) return;
    const std::wstring progId = std::wstring(compiler.name) + L".Source";
    WriteDefaultValue(kClasses + progId + L"\\shell\\open\\command", command);
    for (const std::wstring& extension : openWith) AddOpenWith(extension, progId.c_str());
}

}  // namespace

void RegisterFileExtensions() {
    const std::wstring command = OpenCommand();
    if (command.empty()) return;
    for (const CompilerProfile& compiler : g_compilers)
        if (g_settings.compilers[compiler.id].registerExtension != 0) RegisterTypesOf(compiler, command);
}

int RegisterFileExt(const wchar_t* extension, const wchar_t* description, const wchar_t* iconFile) {
    const std::wstring command = OpenCommand();
    const std::wstring progId = FormatW(L"KVXE.%s", extension);
    return !command.empty() && WriteDefaultValue(kClasses + progId, description) &&
                   WriteDefaultValue(kClasses + progId + L"\\DefaultIcon", FormatW(L"\"%s\",0", iconFile)) &&
                   WriteDefaultValue(kClasses + progId + L"\\shell\\open\\command", command) &&
                   WriteDefaultValue(kClasses + L"." + extension, progId)
               ? 1
               : 0;
}

void UnregisterFileExt(const wchar_t* extension) {
    const std::wstring progId = kClasses + L"KVXE." + extension;
    // Failures are ignored, because most often the key does not exist.
    SHDeleteKeyW(HKEY_CURRENT_USER, (progId + L"\\shell\\open\\command").c_str());
    SHDeleteKeyW(HKEY_CURRENT_USER, (progId + L"\\DefaultIcon").c_str());
    SHDeleteKeyW(HKEY_CURRENT_USER, progId.c_str());
    SHDeleteKeyW(HKEY_CURRENT_USER, (kClasses + L"." + extension).c_str());
}

int FileExtRegisterCompiler(std::uint32_t id) {
    const FileType* type = OwnFileType(id);
    if (type == nullptr) return 0;
    const CompilerProfile& compiler = Profile(id);
    return RegisterFileExt(WithoutDot(*type).c_str(), FormatW(L"%s Source File", compiler.name).c_str(),
                           compiler.shellIcon);
}

void FileExtUnregisterCompiler(std::uint32_t id) {
    if (const FileType* type = OwnFileType(id)) UnregisterFileExt(WithoutDot(*type).c_str());
}

void FileExtNotifyShell() { SHChangeNotify(SHCNE_ASSOCCHANGED, SHCNF_IDLIST, nullptr, nullptr); }
