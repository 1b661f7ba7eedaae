// Registry entries for source extensions. UI thread only.
#include "settings/file_types.h"

#include "base/handles.h"
#include "base/wide_format.h"
#include "settings/settings_state.h"

#include <shlobj.h>
#include <shlwapi.h>

#include <string>

namespace {

struct CompilerFileType {
    std::uint32_t id;
    const wchar_t* extension;
    const wchar_t* description;
    const wchar_t* icon;  // a bare name, on purpose: the shell looks for it
};
constexpr CompilerFileType kCompilerFileTypes[] = {
    {kCompilerKvxa64, L"kxa", L"KVXA64 Source File", L"KA64.ico"},
    {kCompilerKvxb64, L"kxb", L"KVXB64 Source File", L"KVXE.ico"},
    {kCompilerKvxa32, L"ka32", L"KVXA32 Source File", L"KA32.ico"},
    {kCompilerKeldorBasic, L"kb", L"KeldorBasic Source File", L"KB.ico"},
    {kCompilerKvxc64, L"kxc", L"KVXC64 Source File", L"KVXE.ico"},
};

const CompilerFileType* FileTypeOf(std::uint32_t id) {
    for (const CompilerFileType& type : kCompilerFileTypes)
        if (type.id == id) return &type;
    return nullptr;
}

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
    // A key without its value is what the registration would leave on a full hive; nothing useful can be done about it.
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

}  // namespace

void RegisterFileExtensions() {
    const std::wstring command = OpenCommand();
    if (command.empty()) return;
    if (g_settings.compilers[kCompilerKvxa64].registerExtension != 0) {
        CreateKey(kClasses + L".kxa");
        WriteDefaultValue(kClasses + L"KVXA64.Source\\shell\\open\\command", command);
        AddOpenWith(L".kxa", L"KVXA64.Source");
    }
    if (g_settings.compilers[kCompilerKvxb64].registerExtension != 0) {
        // ".c" and ".h" get their keys and nothing more.
        for (const wchar_t* extension : {L".kxb", L".b64", L".c", L".h"}) CreateKey(kClasses + extension);
        WriteDefaultValue(kClasses + L"KVXB64.Source\\shell\\open\\command", command);
        AddOpenWith(L".kxb", L"KVXB64.Source");
        AddOpenWith(L".b64", L"KVXB64.Source");
    }
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
    // Failures are keys that are not there.
    SHDeleteKeyW(HKEY_CURRENT_USER, (progId + L"\\shell\\open\\command").c_str());
    SHDeleteKeyW(HKEY_CURRENT_USER, (progId + L"\\DefaultIcon").c_str());
    SHDeleteKeyW(HKEY_CURRENT_USER, progId.c_str());
    SHDeleteKeyW(HKEY_CURRENT_USER, (kClasses + L"." + extension).c_str());
}

int FileExtRegisterCompiler(std::uint32_t id) {
    const CompilerFileType* type = FileTypeOf(id);
    return type != nullptr ? RegisterFileExt(type->extension, type->description, type->icon) : 0;
}

void FileExtUnregisterCompiler(std::uint32_t id) {
    if (const CompilerFileType* type = FileTypeOf(id)) UnregisterFileExt(type->extension);
}

void FileExtNotifyShell() { SHChangeNotify(SHCNE_ASSOCCHANGED, SHCNF_IDLIST, nullptr, nullptr); }
