#include "compile/command_line.h"

#include "base/bounded_text.h"
#include "base/texts.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

constexpr std::wstring_view kListingToken = L"{asm}";
constexpr std::wstring_view kListingSwitch = L"/ASMOUT:";

wchar_t LowerAscii(wchar_t character) {
    return character >= L'A' && character <= L'Z' ? static_cast<wchar_t>(character - L'A' + L'a') : character;
}

bool StartsWithIgnoreCase(std::wstring_view text, std::wstring_view prefix) {
    return text.size() >= prefix.size() && std::equal(
                                               prefix.begin(), prefix.end(), text.begin(),
                                               [](wchar_t a, wchar_t b) { return LowerAscii(a) == LowerAscii(b); });
}

int AppendIfFits(wchar_t* buffer, std::size_t capacity, std::wstring_view text) {
    const std::size_t used = std::wstring_view(buffer).size();
    const std::size_t blank = used > 0 ? 1 : 0;
    if (used + blank + text.size() + 1 > capacity) return 0;
    if (blank != 0) SafeCatW(buffer, capacity, L" ");
    SafeCatW(buffer, capacity, text);
    return 1;
}

// Returns a folder in double quotes. Programs read \" as a quote that belongs to the argument, so the path must not end
// in a backslash. The root of a drive needs one and gets a dot after it.
std::wstring QuotedFolder(std::wstring_view path) {
    std::wstring bare;
    std::copy_if(path.begin(), path.end(), std::back_inserter(bare), [](wchar_t c) { return c != L'"'; });
    const bool hadSlash = bare.ends_with(L'\\');
    while (bare.ends_with(L'\\')) bare.pop_back();
    if (hadSlash && (bare.empty() || bare.ends_with(L':'))) bare += L"\\.";
    return L'"' + bare + L'"';
}

}  // namespace

int AppendArgSafe(wchar_t* buffer, std::size_t capacity, std::wstring_view text) {
    return text.empty() ? 1 : AppendIfFits(buffer, capacity, text);
}

int AppendSwitchPathSafe(wchar_t* buffer, std::size_t capacity, std::wstring_view switchText, std::wstring_view path) {
    if (path.empty()) return 1;
    return AppendIfFits(buffer, capacity, std::wstring(switchText) + QuotedFolder(path));
}

int AppendAsmOutputArgSafe(wchar_t* buffer, std::size_t capacity, std::uint32_t id, std::wstring_view argument) {
    const std::size_t prefix = kListingSwitch.size();
    if (id != kCompilerKvxa32 || !StartsWithIgnoreCase(argument, kListingSwitch) || argument.size() <= prefix ||
        argument[prefix] != L'"')
        return AppendArgSafe(buffer, capacity, argument);
    return AppendIfFits(buffer, capacity,
                        std::wstring(argument.substr(0, prefix)) + L' ' + std::wstring(argument.substr(prefix)));
}

int FormatTemplateArg(std::wstring_view pattern, std::wstring_view path, wchar_t* out, std::size_t capacity) {
    std::wstring text;
    if (!pattern.empty() && !path.empty()) {
        const std::wstring quoted = L'"' + std::wstring(path) + L'"';
        const std::size_t token = pattern.find(kListingToken);
        if (token != std::wstring_view::npos) {
            text = std::wstring(pattern.substr(0, token)) + quoted +
                   std::wstring(pattern.substr(token + kListingToken.size()));
        } else {
            const bool joined = pattern.ends_with(L':') || pattern.ends_with(L'=');
            text = std::wstring(pattern) + (joined ? L"" : L" ") + quoted;
        }
    }
    if (text.size() + 1 > capacity) {
        SafeCopyW(out, capacity, L"");
        return 0;
    }
    SafeCopyW(out, capacity, text);
    return 1;
}

void AppendBuildFlag(wchar_t* flags, std::wstring_view flag) {
    if (flag.empty() || std::wstring_view(flags).find(flag) != std::wstring_view::npos) return;
    AppendIfFits(flags, kFlagsCapacity, flag);  // the build goes on without a flag that does not fit
}

std::wstring_view ProfileFlags(int profile, std::wstring_view debugFlags) {
    switch (profile) {
        case 0: return debugFlags;
        case 1: return L"-O2";
        case 2: return L"-O0";  // compiles fastest
        default: return {};
    }
}

CommandProblem AssembleCommandLine(const CommandParts& parts, std::wstring* commandLine) {
    wchar_t arguments[kArgumentsCapacity] = {};
    if (!AppendArgSafe(arguments, kArgumentsCapacity, parts.flags)) return CommandProblem::FlagsTooLong;
    for (const std::wstring& folder : parts.includeFolders)
        if (!AppendSwitchPathSafe(arguments, kArgumentsCapacity, parts.includeSwitch, folder))
            return CommandProblem::IncludeTooLong;
    if (!AppendSwitchPathSafe(arguments, kArgumentsCapacity, parts.includeSwitch, parts.includePath))
        return CommandProblem::IncludeTooLong;
    wchar_t listing[kListingArgCapacity] = {};
    if (!FormatTemplateArg(parts.listingTemplate, parts.listing, listing, kListingArgCapacity) ||
        !AppendAsmOutputArgSafe(arguments, kArgumentsCapacity, parts.compilerId, listing))
        return CommandProblem::ListingTooLong;

    const auto quoted = [](std::wstring_view path) { return L'"' + std::wstring(path) + L'"'; };
    const std::wstring argumentText = arguments;
    std::wstring line = quoted(parts.compiler);
    if (parts.style == CommandStyle::Keldor) {
        line += L' ' + quoted(parts.source);
        if (!argumentText.empty()) line += L' ' + argumentText;
    } else {
        line += L" -o " + quoted(parts.output);
        if (!argumentText.empty()) line += L' ' + argumentText;
        line += L' ' + quoted(parts.source);
    }
    if (line.size() + 1 > kCommandLineCapacity) return CommandProblem::CommandTooLong;
    *commandLine = std::move(line);
    return CommandProblem::None;
}

const wchar_t* CommandProblemText(CommandProblem problem) {
    switch (problem) {
        case CommandProblem::FlagsTooLong: return Text(L"Build launch failed: compiler flags too long.\r\n");
        case CommandProblem::IncludeTooLong: return Text(L"Build launch failed: include path too long.\r\n");
        case CommandProblem::ListingTooLong: return Text(L"Build launch failed: ASM arguments too long.\r\n");
        case CommandProblem::CommandTooLong: return Text(L"Build launch failed: command line too long.\r\n");
        case CommandProblem::None: break;
    }
    return L"";
}
