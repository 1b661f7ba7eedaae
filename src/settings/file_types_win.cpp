// Registry entries for source extensions. UI thread only.
#include "settings/file_types.h"

#include "base/handles.h"
#include "settings/compiler_table.h"
#include "settings/file_type_table.h"
#include "settings/settings_state.h"
#include "settings/shell_entries.h"

#include <shlobj.h>
#include <shlwapi.h>

#include <algorithm>
#include <string>

namespace {

// False when the key cannot be created. A failure to write its value is ignored: the key without it does no harm.
bool WriteShellKey(const ShellKey& entry) {
    UniqueRegistryKey key;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, entry.path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr,
                        key.Put(), nullptr) != ERROR_SUCCESS) {
        key.Release();
        return false;
    }
    switch (entry.value) {
        case ShellValue::None: break;
        case ShellValue::Default:
            RegSetValueExW(key.Get(), nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(entry.text.c_str()),
                           static_cast<DWORD>((entry.text.size() + 1) * sizeof(wchar_t)));
            break;
        case ShellValue::Mark: RegSetValueExW(key.Get(), entry.text.c_str(), 0, REG_NONE, nullptr, 0); break;
    }
    return true;
}

// Empty when the path of the executable is not known.
std::wstring OpenCommand() {
    wchar_t executable[4096];
    const DWORD length = GetModuleFileNameW(nullptr, executable, 4096);
    return length > 0 && length < 4096 ? ShellOpenCommand({executable, length}) : std::wstring{};
}

// The default value of a key; empty when there is none.
std::wstring DefaultValue(HKEY root, const std::wstring& path) {
    wchar_t text[4096] = {};
    DWORD size = sizeof(text);
    return RegGetValueW(root, path.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, text, &size) == ERROR_SUCCESS
               ? std::wstring(text)
               : std::wstring{};
}

}  // namespace

void RegisterFileExtensions() {
    const std::wstring command = OpenCommand();
    if (command.empty()) return;
    for (const CompilerProfile& compiler : g_compilers)
        if (g_settings.compilers[compiler.id].registerExtension != 0)
            for (const ShellKey& key : OpenWithKeys(compiler, command)) WriteShellKey(key);
}

void UnregisterFileExtensions(std::uint32_t id) {
    const CompilerProfile& compiler = Profile(id);
    for (const ShellKey& key : OpenWithKeys(compiler, {}))
        if (key.value == ShellValue::Mark) RegDeleteKeyValueW(HKEY_CURRENT_USER, key.path.c_str(), key.text.c_str());
    SHDeleteKeyW(HKEY_CURRENT_USER, OpenWithClassKey(compiler).c_str());
}

int RegisterFileExt(const wchar_t* extension, const wchar_t* description, const wchar_t* iconFile) {
    const std::wstring command = OpenCommand();
    const auto keys = DefaultProgramKeys(extension, description, iconFile, command);
    return !command.empty() && std::ranges::all_of(keys, WriteShellKey) ? 1 : 0;
}

void UnregisterFileExt(const wchar_t* extension) {
    // Failures are ignored, because most often the key does not exist.
    for (const std::wstring& key : DefaultProgramKeysToDelete(extension)) SHDeleteKeyW(HKEY_CURRENT_USER, key.c_str());
}

int FileExtRegisterCompiler(std::uint32_t id) {
    const FileType* type = OwnFileType(id);
    if (type == nullptr) return 0;
    const CompilerProfile& compiler = Profile(id);
    return RegisterFileExt(std::wstring(type->extension.substr(1)).c_str(),
                           (std::wstring{compiler.name} + L" Source File").c_str(), compiler.shellIcon);
}

void FileExtUnregisterCompiler(std::uint32_t id) {
    if (const FileType* type = OwnFileType(id)) UnregisterFileExt(std::wstring(type->extension.substr(1)).c_str());
}

bool FileExtIsRegistered(std::uint32_t id) {
    const FileType* type = OwnFileType(id);
    if (type == nullptr) return false;
    // As they would be written now: another copy of the editor is another program.
    const auto keys = DefaultProgramKeys(type->extension.substr(1), {}, {}, OpenCommand());
    return std::ranges::all_of(keys.begin() + 2, keys.end(), [](const ShellKey& key) {
        return DefaultValue(HKEY_CURRENT_USER, key.path) == key.text;
    });
}

std::wstring FileExtClass(std::uint32_t id) {
    const FileType* type = OwnFileType(id);
    if (type == nullptr) return {};
    const std::wstring extension(type->extension);
    const std::wstring own = DefaultValue(HKEY_CURRENT_USER, L"Software\\Classes\\" + extension);
    return !own.empty() ? own : DefaultValue(HKEY_CLASSES_ROOT, extension);  // of all users
}

void FileExtNotifyShell() { SHChangeNotify(SHCNE_ASSOCCHANGED, SHCNF_IDLIST, nullptr, nullptr); }
