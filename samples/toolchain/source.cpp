// Reads and writes files by std::filesystem (UTF-8 names, wide calls on Windows) and prints diagnostics.
#include "source.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

namespace standin {
namespace {

struct Rule {
    Code code;
    std::string_view id, title, help;
};

constexpr std::array<Rule, static_cast<size_t>(Code::Count)> kRules = {{
    {Code::Text, "E001", "text not understood",
     "sources are ASCII or UTF-8 text; other characters stand in strings only"},
    {Code::Unsupported, "E002", "not part of this BASIC", "samples/toolchain/README.md lists what the stand-ins take"},
    {Code::Syntax, "E003", "statement not understood", "check the spelling and the order of the words"},
    {Code::Undeclared, "E004", "unknown name", "declare variables with LOCAL, STATIC or DIM before using them"},
    {Code::Duplicate, "E005", "name used twice", "rename one of the two"},
    {Code::Mismatch, "E006", "kinds do not match", "compare the use with the declaration"},
    {Code::Block, "E007", "block not closed or not opened", "each opening line needs its closing line"},
    {Code::File, "E008", "file problem", "check the name and the include directories"},
    {Code::Limit, "E009", "beyond a limit", "split the code into smaller pieces"},
    {Code::Constant, "E010", "not a constant", "use numbers and constants defined above"},
    {Code::Unused, "W101", "", ""},
    {Code::Narrowing, "W102", "", ""},
    {Code::Unreachable, "W103", "", ""},
    {Code::NoResult, "W104", "", ""},
    {Code::Suspicious, "W105", "", ""},
}};

const Rule& RuleOf(Code code) { return kRules[static_cast<size_t>(code)]; }

// Returns the length of the UTF-8 sequence at the start of the text; 0 when there is none.
size_t SequenceLength(std::string_view text) {
    const auto lead = static_cast<uint8_t>(text[0]);
    const size_t length = lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
    if (length > text.size()) return 0;
    for (size_t i = 1; i < length; ++i)
        if ((static_cast<uint8_t>(text[i]) & 0xC0) != 0x80) return 0;
    const auto second = static_cast<uint8_t>(length > 1 ? text[1] : 0);
    const bool outside = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                         (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
    return outside ? 0 : length;
}

// The name in an #INCLUDE may be any bytes, and std::filesystem throws on bytes that are not UTF-8. Such bytes become
// '?', so that no such file exists.
std::filesystem::path ToPath(std::string_view name) {
    std::u8string utf8;
    while (!name.empty()) {
        const size_t length = SequenceLength(name);
        if (length == 0)
            utf8 += u8'?';
        else
            utf8.append(name.begin(), name.begin() + static_cast<std::ptrdiff_t>(length));
        name.remove_prefix(std::max<size_t>(length, 1));
    }
    return {utf8};
}

bool IsSeparator(char c) { return c == '/' || c == '\\'; }

}  // namespace

bool IsWarning(Code code) { return code >= Code::Unused; }

bool TooManyErrors(const Sources& sources) { return sources.errors >= kMaxErrors; }

void Report(Sources& sources, Code code, Pos pos, std::string message, std::string fix) {
    if (TooManyErrors(sources)) return;
    // The parser cannot understand text that the lexer could not read, so one message for the line is enough.
    if (code == Code::Syntax && sources.errorPlaces.contains({pos.file, pos.line, 0})) return;
    if (code == Code::Text) sources.errorPlaces.insert({pos.file, pos.line, 0});
    if (!IsWarning(code) && !sources.errorPlaces.insert({pos.file, pos.line, pos.column}).second) return;
    ++(IsWarning(code) ? sources.warnings : sources.errors);
    sources.diagnostics.push_back({code, pos, std::move(message), std::move(fix)});
}

std::string FormatDiagnostics(const Sources& sources, const Profile& profile) {
    std::vector<const Diagnostic*> order;
    for (const Diagnostic& one : sources.diagnostics) order.push_back(&one);
    std::stable_sort(order.begin(), order.end(), [](const Diagnostic* a, const Diagnostic* b) {
        return std::tie(a->pos.file, a->pos.line, a->pos.column) < std::tie(b->pos.file, b->pos.line, b->pos.column);
    });
    std::ostringstream out;
    for (const Diagnostic* one : order) {
        const std::string& file = sources.files[static_cast<size_t>(one->pos.file)].name;
        if (profile.shape == DiagnosticShape::Colon)
            out << file << ':' << one->pos.line << ':' << one->pos.column << ':';
        else
            out << file << '(' << one->pos.line << ',' << one->pos.column << "):";
        out << (IsWarning(one->code) ? " warning: " : " error: ") << one->message << '\n';
        if (!profile.explains || IsWarning(one->code)) continue;
        const Rule& rule = RuleOf(one->code);
        out << "error[" << rule.id << "]: " << rule.title << "\nhelp: " << rule.help << '\n';
        if (!one->fix.empty()) out << "fix: " << one->fix << '\n';
    }
    if (TooManyErrors(sources)) out << "Stopped after " << kMaxErrors << " errors.\n";
    return out.str();
}

std::optional<std::string> ReadWholeFile(const std::string& path, std::string& why) {
    std::error_code error;
    const std::filesystem::path file = ToPath(path);
    if (std::filesystem::is_directory(file, error)) {
        why = "it is a folder";
        return std::nullopt;
    }
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        why = std::filesystem::exists(file, error) ? "it cannot be opened" : "it does not exist";
        return std::nullopt;
    }
    std::string text;
    std::array<char, 65536> block;
    while (in.read(block.data(), block.size()) || in.gcount() > 0) {
        text.append(block.data(), static_cast<size_t>(in.gcount()));
        if (text.size() > kMaxSourceBytes) {
            why = "it is larger than 16 MB";
            return std::nullopt;
        }
    }
    if (in.bad()) {
        why = "it cannot be read";
        return std::nullopt;
    }
    return text;
}

bool WriteWholeFile(const std::string& path, std::string_view bytes) {
    const std::filesystem::path file = ToPath(path);
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    if (!out) return false;  // nothing was written, and a file in use is unchanged
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (out) return true;
    std::error_code ignored;  // the caller reports the write error
    std::filesystem::remove(file, ignored);
    return false;
}

void RemoveFile(const std::string& path) {
    std::error_code ignored;  // usually the file does not exist
    std::filesystem::remove(ToPath(path), ignored);
}

bool FileExists(const std::string& path) {
    std::error_code error;
    return std::filesystem::is_regular_file(ToPath(path), error);
}

std::string CanonicalName(const std::string& path) {
    std::error_code error;
    const std::filesystem::path full = std::filesystem::weakly_canonical(ToPath(path), error);
    const std::u8string text = error ? ToPath(path).u8string() : full.u8string();
    return {text.begin(), text.end()};
}

bool IsAbsolute(std::string_view path) {
    return (path.size() > 1 && path[1] == ':') || (!path.empty() && IsSeparator(path[0]));
}

std::string FolderOf(const std::string& path) {
    const size_t at = path.find_last_of("/\\");
    if (at == std::string::npos) return {};
    return path.substr(0, at == 0 || path[at - 1] == ':' ? at + 1 : at);
}

std::string JoinPath(const std::string& dir, const std::string& name) {
    if (dir.empty()) return name;
    if (IsSeparator(dir.back())) return dir + name;
    return dir + (dir.find('\\') != std::string::npos || dir.back() == ':' ? '\\' : '/') + name;
}

}  // namespace standin
