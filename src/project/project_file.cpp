#include "project/project_file.h"

#include "base/bounded_text.h"
#include "base/lines.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "settings/compilers.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

namespace {

constexpr std::size_t kMostArguments = 1023;  // characters
constexpr std::string_view kMark = "\xEF\xBB\xBF";

// --- Lines

struct FileLine {
    std::size_t begin = 0, end = 0;  // without the line break
    std::size_t next = 0;
};

// CR LF, LF and CR end a line, as in an editor.
FileLine LineAt(std::string_view text, std::size_t begin) {
    FileLine line{.begin = begin, .end = std::min(text.find_first_of("\r\n", begin), text.size())};
    line.next = line.end;
    if (line.next < text.size()) line.next += text.substr(line.next).starts_with("\r\n") ? 2 : 1;
    return line;
}

template <typename View>
View Trimmed(View text) {
    const auto blank = [](auto character) { return character == ' ' || character == '\t'; };
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    return text;
}

bool SameWord(std::string_view a, std::string_view b) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::ranges::equal(a, b, {}, lower, lower);
}

struct LineParts {
    enum Kind { Empty, Section, Value, Broken, NotText, Control } kind = Empty;
    std::string_view key;  // or the section's name
    std::string_view value;
};

LineParts PartsOfLine(std::string_view line) {
    line = Trimmed(line);
    if (line.empty() || line.front() == ';' || line.front() == '#') return {};
    if (ToUtf8(Utf8ToWideText(line)) != line) return {LineParts::NotText, {}, {}};
    if (std::ranges::any_of(line, [](char c) { return static_cast<unsigned char>(c) < ' ' && c != '\t'; }))
        return {LineParts::Control, {}, {}};
    if (line.front() == '[')
        return {line.ends_with(']') && line.size() > 2 ? LineParts::Section : LineParts::Broken,
                Trimmed(line.substr(1, line.size() - std::min<std::size_t>(line.size(), 2))),
                {}};
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || equals == 0) return {LineParts::Broken, line, {}};
    return {LineParts::Value, Trimmed(line.substr(0, equals)), Trimmed(line.substr(equals + 1))};
}

// --- Values

bool IsDeviceName(std::wstring_view part) {
    part = part.substr(0, part.find(L'.'));
    while (part.ends_with(L' ')) part.remove_suffix(1);
    for (const wchar_t* device : {L"CON", L"PRN", L"AUX", L"NUL"})
        if (PathEqualsIgnoreCase(part, device)) return true;
    const bool numbered = part.size() == 4 && part[3] >= L'1' && part[3] <= L'9';
    return numbered &&
           (PathEqualsIgnoreCase(part.substr(0, 3), L"COM") || PathEqualsIgnoreCase(part.substr(0, 3), L"LPT"));
}

std::vector<std::wstring_view> PartsOfPath(std::wstring_view path) {
    std::vector<std::wstring_view> parts;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find_first_of(L"\\/"), path.size());
        if (end > 0) parts.push_back(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return parts;
}

// Empty when the text can be a path.
std::wstring PathProblem(std::wstring_view path, std::wstring_view forbidden) {
    if (path.size() >= kPathCapacity - 24) return Text(L"the path is too long");
    if (path.find_first_of(forbidden) != std::wstring_view::npos ||
        path.find(L':') != (path.size() > 1 && path[1] == L':' ? 1 : std::wstring_view::npos) ||
        path.find(L':', 2) != std::wstring_view::npos)
        return Text(L"the path has a character that no file name can have");
    if (path.starts_with(L"\\\\.\\") || path.starts_with(L"//./") || path.starts_with(L"\\\\?\\"))
        return Text(L"the path is a device");
    if (path.size() > 1 && path[1] == L':' && (path.size() == 2 || (path[2] != L'\\' && path[2] != L'/')))
        return Text(L"the path needs a slash after the drive");
    for (const std::wstring_view part : PartsOfPath(path))
        if (IsDeviceName(part)) return Text(L"the path is a device");
    return {};
}

std::wstring_view WithoutQuotes(std::wstring_view path) {
    return path.size() > 1 && path.front() == L'"' && path.back() == L'"' ? Trimmed(path.substr(1, path.size() - 2))
                                                                          : path;
}

struct Reading {
    ProjectFile file;
    int line = 0;
};

void AddFault(Reading& reading, std::wstring text, bool note = false) {
    std::vector<ProjectFault>& faults = reading.file.faults;
    if (faults.size() < kMostProjectFaults) faults.push_back({reading.line, note, std::move(text)});
}

// A single value. The first one counts.
bool TakeOnce(Reading& reading, ProjectValue& value, std::wstring text) {
    if (value.line != 0) {
        AddFault(reading, TextWith(L"given before in line {1}, which counts", {std::to_wstring(value.line)}));
        return false;
    }
    value = {std::move(text), reading.line};
    return true;
}

void TakePath(Reading& reading, ProjectValue& value, std::wstring_view text, bool maybeEmpty) {
    const std::wstring_view path = WithoutQuotes(text);
    if (path.empty() && maybeEmpty) return;
    const std::wstring problem = path.empty() ? Text(L"a path is missing") : PathProblem(path, L"<>|?*\"");
    if (!problem.empty())
        AddFault(reading, problem);
    else
        TakeOnce(reading, value, std::wstring(path));
}

void TakeFolderOfList(Reading& reading, std::vector<ProjectValue>& list, std::wstring_view text,
                      std::wstring_view forbidden) {
    const std::wstring_view path = WithoutQuotes(text);
    if (path.empty()) return;
    if (const std::wstring problem = PathProblem(path, forbidden); !problem.empty())
        AddFault(reading, problem);
    else if (list.size() < kMostProjectFolders)
        list.push_back({std::wstring(path), reading.line});
    else
        AddFault(reading,
                 TextWith(L"more than {1} folders; this one does not count", {std::to_wstring(kMostProjectFolders)}));
}

void TakeName(Reading& reading, std::wstring_view text) {
    if (text.size() > 100)
        AddFault(reading, Text(L"the name is longer than 100 characters"));
    else if (!text.empty())
        TakeOnce(reading, reading.file.name, std::wstring(text));
}

void TakeCompiler(Reading& reading, std::wstring_view text) {
    if (text.empty()) return;
    const auto* const row = std::ranges::find_if(
        g_compilers, [&](const CompilerProfile& each) { return PathEqualsIgnoreCase(each.name, text); });
    if (row != std::end(g_compilers)) {
        if (TakeOnce(reading, reading.file.compiler, row->name)) reading.file.compilerId = row->id;
        return;
    }
    std::wstring names;
    for (const CompilerProfile& each : g_compilers) names += (names.empty() ? L"" : L", ") + std::wstring(each.name);
    AddFault(reading, TextWith(L"no compiler has this name; there are {1}", {names}));
}

void TakeFlags(Reading& reading, std::wstring_view text) {
    std::wstring& flags = reading.file.flags;
    if (flags.size() + text.size() >= kMostProjectFlags)
        AddFault(reading, TextWith(L"the flags are longer than {1} characters", {std::to_wstring(kMostProjectFlags)}));
    else if (!text.empty())
        flags += (flags.empty() ? L"" : L" ") + std::wstring(text);
}

void TakeArguments(Reading& reading, std::wstring_view text) {
    if (text.size() > kMostArguments)
        AddFault(reading, TextWith(L"the arguments are longer than {1} characters", {std::to_wstring(kMostArguments)}));
    else
        TakeOnce(reading, reading.file.arguments, std::wstring(text));
}

struct KeyRow {
    std::string_view section;
    std::string_view key;
    void (*take)(Reading& reading, std::wstring_view text);
};
constexpr KeyRow kKeys[] = {
    {"Project", "Name", TakeName},
    {"Project", "Root", [](Reading& r, std::wstring_view text) { TakePath(r, r.file.root, text, true); }},
    {"Project", "Main", [](Reading& r, std::wstring_view text) { TakePath(r, r.file.source, text, true); }},
    {"Build", "Compiler", TakeCompiler},
    {"Build", "Flags", TakeFlags},
    {"Build", "Include",
     [](Reading& r, std::wstring_view text) { TakeFolderOfList(r, r.file.includes, text, L"<>|?*\""); }},
    {"Run", "Arguments", TakeArguments},
    {"Run", "Folder", [](Reading& r, std::wstring_view text) { TakePath(r, r.file.folder, text, true); }},
    {"Exclude", "Folder",
     [](Reading& r, std::wstring_view text) { TakeFolderOfList(r, r.file.excludes, text, L"<>|\":"); }},
};

bool IsKnownSection(std::string_view name) {
    return std::ranges::any_of(
        kKeys, [&](const KeyRow& row) { return SameWord(row.section, name); });
}

void TakeValue(Reading& reading, std::string_view section, const LineParts& parts) {
    const auto* const row = std::ranges::find_if(
        kKeys, [&](const KeyRow& each) { return SameWord(each.section, section) && SameWord(each.key, parts.key); });
    if (row != std::end(kKeys)) {
        row->take(reading, Utf8ToWideText(parts.value));
    } else if (IsKnownSection(section)) {
        AddFault(reading,
                 TextWith(L"the key {1} is not known and has no effect", {Utf8ToWideText(parts.key.substr(0, 60))}),
                 true);
    }
}

void TakeLine(Reading& reading, std::string_view line, std::string* section) {
    const LineParts parts = PartsOfLine(line);
    switch (parts.kind) {
        case LineParts::Section: *section = parts.key; break;
        case LineParts::Value:
            if (section->empty())
                AddFault(reading, Text(L"the key stands before the first [Section]"));
            else
                TakeValue(reading, *section, parts);
            break;
        case LineParts::Broken:
            AddFault(reading, parts.key.starts_with('[') || Trimmed(line).starts_with('[')
                                  ? Text(L"a section is written as [Name]")
                                  : Text(L"neither a [Section] nor Key=Value nor a ;comment"));
            break;
        case LineParts::NotText: AddFault(reading, Text(L"the line is not UTF-8")); break;
        case LineParts::Control: AddFault(reading, Text(L"the line has a control character")); break;
        case LineParts::Empty: break;
    }
}

// Of a file that cannot be a project file at all; empty for others.
std::wstring TextProblem(std::string_view bytes) {
    if (bytes.size() > kMostProjectBytes) return Text(L"The file is larger than 256 KB, so it is no project file");
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF"))
        return Text(L"The file is UTF-16; a project file is UTF-8");
    if (bytes.find('\0') != std::string_view::npos) return Text(L"The file is not text");
    return {};
}

int LineOfNul(std::string_view bytes) {
    const std::string_view before = bytes.substr(0, std::min(bytes.find('\0'), kMostProjectBytes));
    int line = 1;
    for (std::size_t at = 0; at < before.size(); at = LineAt(before, at).next)
        if (LineAt(before, at).next < before.size()) ++line;
    return bytes.find('\0') == std::string_view::npos ? 1 : line;
}

// --- Writing

std::string LineBreakOf(std::string_view bytes) {
    const FileLine first = LineAt(bytes, 0);
    return first.next > first.end ? std::string(bytes.substr(first.end, first.next - first.end)) : "\r\n";
}

std::string WrittenValue(std::wstring_view value) {
    std::wstring text(value);
    std::ranges::replace_if(
        text, [](wchar_t c) { return c < L' '; }, L' ');
    return ToUtf8(text);
}

}  // namespace

ProjectFile ProjectParse(std::string_view bytes) {
    Reading reading;
    if (std::wstring problem = TextProblem(bytes); !problem.empty()) {
        reading.line = LineOfNul(bytes);
        AddFault(reading, std::move(problem));
        return std::move(reading.file);
    }
    reading.file.readable = true;
    if (bytes.starts_with(kMark)) bytes.remove_prefix(kMark.size());
    std::string section;
    for (std::size_t at = 0; at < bytes.size();) {
        const FileLine line = LineAt(bytes, at);
        ++reading.line;
        TakeLine(reading, bytes.substr(line.begin, line.end - line.begin), &section);
        at = line.next;
    }
    return std::move(reading.file);
}

std::string ProjectCompose(const ProjectDraft& draft) {
    std::string compilers;
    for (const CompilerProfile& each : g_compilers) compilers += (compilers.empty() ? "" : ", ") + ToUtf8(each.name);
    return "; A project of KVX-Editor. Lines that begin with ; are comments. Paths are relative to Root, and Root "
           "is\r\n"
           "; relative to the folder of this file. Both slashes separate folders.\r\n"
           "[Project]\r\n"
           "Name=" +
           WrittenValue(draft.name) +
           "\r\n"
           "Root=.\r\n"
           "Main=" +
           WrittenValue(draft.source) +
           "\r\n"
           "\r\n"
           "[Build]\r\n"
           "; " +
           compilers +
           "\r\n"
           "Compiler=" +
           WrittenValue(draft.compiler) +
           "\r\n"
           "; Flags come after those of the settings. Each Include line is one folder.\r\n"
           "Flags=\r\n"
           ";Include=include\r\n"
           "\r\n"
           "[Run]\r\n"
           "Arguments=\r\n"
           "; The folder in which the program starts; without it, the program's own.\r\n"
           ";Folder=.\r\n"
           "\r\n"
           "[Exclude]\r\n"
           "; Folders that the project's searches leave out. A name without a slash means every folder of that "
           "name.\r\n"
           ";Folder=backup\r\n";
}

std::string ProjectWithValue(std::string_view bytes, std::string_view section, std::string_view key,
                             std::wstring_view value) {
    const std::string lineBreak = LineBreakOf(bytes);
    const std::string written = WrittenValue(value);
    std::size_t at = bytes.starts_with(kMark) ? kMark.size() : 0;
    bool inside = false;
    std::optional<std::size_t> insert;  // behind the section's last line with something in it
    while (at < bytes.size()) {
        const FileLine line = LineAt(bytes, at);
        const LineParts parts = PartsOfLine(bytes.substr(line.begin, line.end - line.begin));
        if (parts.kind == LineParts::Section) inside = SameWord(parts.key, section);
        if (inside && parts.kind == LineParts::Value && SameWord(parts.key, key)) {
            const std::size_t from = bytes.find('=', line.begin) + 1;
            return std::string(bytes.substr(0, from)) + written + std::string(bytes.substr(line.end));
        }
        if (inside && !Trimmed(bytes.substr(line.begin, line.end - line.begin)).empty() && !insert) insert = line.next;
        if (inside && (parts.kind == LineParts::Value || parts.kind == LineParts::Section)) insert = line.next;
        at = line.next;
    }
    const std::string entry = std::string(key) + "=" + written + lineBreak;
    const std::size_t place = insert.value_or(bytes.size());
    std::string result(bytes.substr(0, place));
    if (!result.empty() && result != kMark && !result.ends_with('\n') && !result.ends_with('\r')) result += lineBreak;
    if (!insert)
        result += (result.empty() || result == kMark ? "" : lineBreak) + "[" + std::string(section) + "]" + lineBreak;
    return result + entry + std::string(bytes.substr(place));
}

std::wstring ProjectPath(std::wstring_view folder, std::wstring_view written) {
    std::wstring whole(written);
    std::ranges::replace(whole, L'/', L'\\');
    const bool share = whole.starts_with(L"\\\\");
    const bool drive = whole.size() > 1 && whole[1] == L':';
    if (!share && !drive && whole.starts_with(L"\\"))  // of the folder's drive
        whole = std::wstring(folder.substr(0, folder.size() > 1 && folder[1] == L':' ? 2 : 0)) + whole;
    else if (!share && !drive)
        whole = std::wstring(folder) + L"\\" + whole;
    const bool onShare = whole.starts_with(L"\\\\");
    const std::size_t fixed = onShare ? 2 : 1;  // "\\server\share" and "C:" cannot be left by ".."
    std::vector<std::wstring_view> parts;
    for (const std::wstring_view part : PartsOfPath(whole)) {
        if (part == L".") continue;
        if (part != L"..")
            parts.push_back(part);
        else if (parts.size() > fixed)
            parts.pop_back();
    }
    std::wstring path = onShare ? L"\\\\" : L"";
    for (std::size_t i = 0; i < parts.size(); ++i) path += (i > 0 ? L"\\" : L"") + std::wstring(parts[i]);
    if (parts.size() == 1 && !onShare) path += L'\\';
    return path;
}

std::wstring ProjectWrittenPath(std::wstring_view folder, std::wstring_view path) {
    std::wstring base(folder);
    if (!base.ends_with(L'\\')) base += L'\\';
    const bool below = path.size() > base.size() && PathEqualsIgnoreCase(path.substr(0, base.size()), base);
    std::wstring written(below ? path.substr(base.size()) : path);
    if (below) std::ranges::replace(written, L'\\', L'/');
    return written;
}

std::wstring ProjectFaultLine(std::wstring_view path, const ProjectFault& fault) {
    return std::wstring(path) + L"(" + std::to_wstring(fault.line) + L",1): " +
           (fault.note ? L"warning: " : L"error: ") + fault.text + L"\r\n";
}

ExcludedFolders ProjectExcludesOf(const ProjectFile& file, std::wstring_view root) {
    ExcludedFolders excluded{.root = PathKey(root), .rules = {}};
    if (!excluded.root.ends_with(L'\\')) excluded.root += L'\\';
    for (const ProjectValue& folder : file.excludes) {
        NameRule rule = FolderRule(folder.text);
        if (!rule.parts.empty()) excluded.rules.push_back(std::move(rule));
    }
    return excluded;
}

std::wstring ProjectNameProblem(std::wstring_view name) {
    if (Trimmed(name).empty()) return Text(L"A name is missing.");
    if (name.size() > 100) return Text(L"The name is too long.");
    if (name.find_first_of(L"\\/:*?\"<>|") != std::wstring_view::npos ||
        std::ranges::any_of(name, [](wchar_t c) { return c < L' '; }))
        return Text(L"A name cannot have any of \\ / : * ? \" < > |");
    if (name.ends_with(L'.') || name.ends_with(L' ') || IsDeviceName(name))
        return Text(L"No folder can have this name.");
    return {};
}
