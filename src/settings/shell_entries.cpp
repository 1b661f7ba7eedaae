#include "settings/shell_entries.h"

#include "settings/file_type_table.h"

namespace {

constexpr std::wstring_view kClasses = L"Software\\Classes\\";
constexpr std::wstring_view kCommandKey = L"\\shell\\open\\command";

std::wstring Joined(std::initializer_list<std::wstring_view> parts) {
    std::wstring text;
    for (const std::wstring_view part : parts) text += part;
    return text;
}

std::wstring OpenWithClass(const CompilerProfile& compiler) { return Joined({compiler.name, L".Source"}); }

}  // namespace

std::wstring ShellOpenCommand(std::wstring_view executable) { return Joined({L"\"", executable, L"\" \"%1\""}); }

std::vector<ShellKey> OpenWithKeys(const CompilerProfile& compiler, std::wstring_view command) {
    const std::wstring progId = OpenWithClass(compiler);
    std::vector<ShellKey> keys;
    std::vector<ShellKey> marks;
    for (const FileType& type : FileTypes()) {
        if (type.compiler != compiler.id || type.shell == ShellEntry::None) continue;
        keys.push_back({.path = Joined({kClasses, type.extension}), .text = {}});
        if (type.shell == ShellEntry::OpenWith)
            marks.push_back({.path = Joined({kClasses, type.extension, L"\\OpenWithProgids"}),
                             .value = ShellValue::Mark,
                             .text = progId});
    }
    if (keys.empty()) return keys;
    keys.push_back(
        {.path = Joined({kClasses, progId, kCommandKey}), .value = ShellValue::Default, .text = std::wstring{command}});
    keys.insert(keys.end(), marks.begin(), marks.end());
    return keys;
}

std::wstring OpenWithClassKey(const CompilerProfile& compiler) { return Joined({kClasses, OpenWithClass(compiler)}); }

std::vector<ShellKey> DefaultProgramKeys(std::wstring_view extension, std::wstring_view description,
                                         std::wstring_view iconFile, std::wstring_view command) {
    const std::wstring progId = Joined({L"KVXE.", extension});
    const auto key = [](std::initializer_list<std::wstring_view> path, std::wstring text) {
        return ShellKey{.path = Joined(path), .value = ShellValue::Default, .text = std::move(text)};
    };
    return {key({kClasses, progId}, std::wstring{description}),
            key({kClasses, progId, L"\\DefaultIcon"}, Joined({L"\"", iconFile, L"\",0"})),
            key({kClasses, progId, kCommandKey}, std::wstring{command}), key({kClasses, L".", extension}, progId)};
}

std::vector<std::wstring> DefaultProgramKeysToDelete(std::wstring_view extension) {
    const std::wstring progId = Joined({kClasses, L"KVXE.", extension});
    return {progId + std::wstring{kCommandKey}, progId + L"\\DefaultIcon", progId, Joined({kClasses, L".", extension})};
}
