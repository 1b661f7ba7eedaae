// The program's own snippets, the form of a snippet's text, and the user's file. Pure.
#include "language/snippets.h"

#include "language/symbols.h"
#include "settings/compiler_id.h"

#include <algorithm>

namespace {

constexpr std::uint8_t BitOf(std::uint32_t compilerId) { return static_cast<std::uint8_t>(1u << compilerId); }
constexpr std::uint8_t kEvery = (1u << kCompilerCount) - 1;
constexpr std::uint8_t kBits32 = BitOf(kCompilerKvxa32) | BitOf(kCompilerKeldorBasic);
constexpr std::uint8_t kBits64 = kEvery & ~kBits32;

struct SnippetRow {
    std::uint8_t dialects;
    const char* name;
    const char* body;
};
constexpr SnippetRow kRows[] = {
    {kEvery, "asm", "ASM\n\t${1:mov eax, ebx}\n\t$0\nEND ASM"},
    {kEvery, "class",
     "CLASS ${1:Name}\n\tINTERFACE ${2:IName}\n\t\tINHERIT IUNKNOWN\n\t\t$0\n\tEND INTERFACE\nEND CLASS"},
    {kEvery, "dountil", "DO\n\t$0\nLOOP UNTIL ${1:done}"},
    {kEvery, "dowhile", "DO WHILE ${1:condition}\n\t$0\nLOOP"},
    {kEvery, "enum", "ENUM ${1:Name}\n\t${2:First} = ${3:1}\n\t$0\nEND ENUM"},
    {kEvery, "for", "FOR ${1:i} = ${2:1} TO ${3:10}\n\t$0\nNEXT ${1:i}"},
    {kEvery, "forlocal", "LOCAL ${1:i} AS LONG\nFOR ${1:i} = ${2:1} TO ${3:10}\n\t$0\nNEXT ${1:i}"},
    {kBits64, "foreach", "FOREACH ${1:item} IN ${2:items}\n\t$0\nNEXT"},
    {kEvery, "function",
     "FUNCTION ${1:Name}(${2:BYVAL value AS LONG}) AS ${3:LONG}\n\t$0\n\tFUNCTION = ${4:value}\nEND FUNCTION"},
    {kEvery, "if", "IF ${1:condition} THEN\n\t$0\nEND IF"},
    {kEvery, "ifelse", "IF ${1:condition} THEN\n\t$0\nELSE\n\t\nEND IF"},
    {kEvery, "ifelseif", "IF ${1:condition} THEN\n\t$0\nELSEIF ${2:other} THEN\n\t\nELSE\n\t\nEND IF"},
    {kEvery, "macro", "MACRO ${1:Name}(${2:value})\n\t$0\nEND MACRO"},
    {kBits64, "namespace", "NAMESPACE ${1:Name}\n\t$0\nEND NAMESPACE"},
    {kEvery, "pbmain", "FUNCTION PBMAIN () AS LONG\n\t$0\nEND FUNCTION"},
    {kBits32, "libmain",
     "FUNCTION LIBMAIN (BYVAL hInstance AS DWORD, BYVAL reason AS LONG, BYVAL reserved AS LONG) AS LONG\n\t$0\n"
     "\tFUNCTION = 1\nEND FUNCTION"},
    {kEvery, "select", "SELECT CASE ${1:value}\n\tCASE ${2:1}\n\t\t$0\n\tCASE ELSE\n\t\t\nEND SELECT"},
    {kEvery, "sub", "SUB ${1:Name}(${2:BYVAL value AS LONG})\n\t$0\nEND SUB"},
    {kEvery, "try", "TRY\n\t$0\nCATCH\n\t\nEND TRY"},
    {kEvery, "tryfinally", "TRY\n\t$0\nCATCH\n\t\nFINALLY\n\t\nEND TRY"},
    {kEvery, "type", "TYPE ${1:Name}\n\t${2:member} AS ${3:LONG}\n\t$0\nEND TYPE"},
    {kEvery, "union", "UNION ${1:Name}\n\t${2:member} AS ${3:LONG}\n\t$0\nEND UNION"},
    {kEvery, "while", "WHILE ${1:condition}\n\t$0\nWEND"},
    {kEvery, "with", "WITH ${1:variable}\n\t$0\nEND WITH"},
};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// A field that begins at `at`, which is a dollar sign; `*next` is behind it. Number -1: it begins none.
struct ReadField {
    int number = -1;
    std::string_view text;
    std::size_t next = 0;
};
ReadField FieldAt(std::string_view body, std::size_t at) {
    std::size_t digit = at + 1;
    const bool braces = digit < body.size() && body[digit] == '{';
    if (braces) ++digit;
    if (digit >= body.size() || !IsDigit(body[digit])) return {};
    ReadField field{.number = body[digit] - '0', .text = {}, .next = digit + 1};
    if (!braces) return field;
    const std::size_t close = body.find_first_of("}\n", field.next);
    if (close == std::string_view::npos || body[close] != '}') return {};
    if (body[field.next] == ':')
        field.text = body.substr(field.next + 1, close - field.next - 1);
    else if (field.next != close)
        return {};
    field.next = close + 1;
    return field;
}

// The text of the first field of a number that has one, for those without.
std::string_view TextOfNumber(std::string_view body, int number) {
    for (std::size_t at = body.find('$'); at != std::string_view::npos; at = body.find('$', at)) {
        const ReadField field = FieldAt(body, at);
        if (field.number == number && !field.text.empty()) return field.text;
        at = field.number >= 0 ? field.next : at + (body.substr(at, 2) == "$$" ? 2 : 1);
    }
    return {};
}

char LowerLetter(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

std::string_view NextLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return line;
}

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = std::min(text.find_first_not_of(" \t"), text.size());
    text.remove_prefix(first);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    return text;
}

constexpr std::string_view kCompilerNames[] = {"KVXA64", "KVXB64", "KVXA32", "KeldorBasic", "KVXC64"};
static_assert(std::size(kCompilerNames) == kCompilerCount);

bool IsSnippetName(std::string_view name) {
    const auto fits = [](char c) {
        const char lower = LowerLetter(c);
        return (lower >= 'a' && lower <= 'z') || IsDigit(c) || c == '_' || static_cast<unsigned char>(c) >= 0x80;
    };
    return !name.empty() && name.size() <= 40 && !IsDigit(name[0]) && std::ranges::all_of(name, fits);
}

struct FileReading {
    SnippetFile& file;
    int line = 0;
    bool inBody = false;     // of a snippet that is taken
    std::vector<int> lines;  // at which each snippet begins
    void Problem(const std::string& what) { file.problems.push_back("line " + std::to_string(line) + ": " + what); }
};

// "[name] compilers"
void BeginSnippet(FileReading& reading, std::string_view line) {
    reading.inBody = false;
    const std::size_t close = line.find(']');
    if (close == std::string_view::npos) return reading.Problem("the bracket is not closed");
    const std::string_view name = Trimmed(line.substr(1, close - 1));
    if (!IsSnippetName(name))
        return reading.Problem("a name of letters, digits and underscores is expected in the brackets");
    std::uint8_t dialects = 0;
    std::string_view rest = line.substr(close + 1);
    while (!(rest = Trimmed(rest)).empty()) {
        const std::size_t end = std::min(rest.find_first_of(" \t,"), rest.size());
        const std::string_view compiler = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (compiler.empty()) continue;
        const auto* const known = std::ranges::find_if(
            kCompilerNames, [compiler](std::string_view other) { return CompareNames(other, compiler) == 0; });
        if (known == std::end(kCompilerNames))
            reading.Problem("there is no compiler \"" + std::string(compiler) + "\"");
        else
            dialects |= BitOf(static_cast<std::uint32_t>(known - std::begin(kCompilerNames)));
    }
    reading.file.snippets.push_back(
        {.name = std::string(name), .body = {}, .dialects = dialects != 0 ? dialects : kEvery});
    reading.lines.push_back(reading.line);
    reading.inBody = true;
}

void AddBodyLine(FileReading& reading, std::string_view line) {
    if (line.starts_with("\\[") || line.starts_with("\\;")) line.remove_prefix(1);
    for (std::size_t at = line.find("${"); at != std::string_view::npos; at = line.find("${", at + 2))
        if (FieldAt(line, at).number < 0) reading.Problem("\"${\" begins no field such as ${1:text}");
    // Four blanks are a step, for editors that write no tabs.
    std::string text;
    while (line.starts_with("    ") || line.starts_with("\t")) {
        text += '\t';
        line.remove_prefix(line[0] == '\t' ? 1 : 4);
    }
    reading.file.snippets.back().body.append(text).append(line).append("\n");
}

}  // namespace

std::span<const Snippet> BuiltinSnippets() {
    static const std::vector<Snippet> snippets = [] {
        std::vector<Snippet> made;
        for (const SnippetRow& row : kRows) made.push_back({row.name, row.body, row.dialects, true});
        return made;
    }();
    return snippets;
}

SnippetText SnippetTextOf(const Snippet& snippet, const SnippetForm& form) {
    SnippetText made;
    const std::string_view body = snippet.body;
    bool lineStarts = false;
    for (std::size_t at = 0; at < body.size();) {
        const char c = body[at];
        if (c == '\n') {
            made.text.append(form.lineBreak).append(form.indentation);
            lineStarts = true;
            ++at;
            continue;
        }
        if (c == '\t' && (lineStarts || at == 0)) {
            made.text += form.step;
            ++at;
            continue;
        }
        lineStarts = false;
        const ReadField field = c == '$' ? FieldAt(body, at) : ReadField{};
        if (field.number >= 0) {
            const std::size_t start = made.text.size();
            made.text += field.text.empty() ? TextOfNumber(body, field.number) : field.text;
            made.fields.push_back({field.number, start, made.text.size()});
            at = field.next;
            continue;
        }
        made.text += form.lowerCase && snippet.own ? LowerLetter(c) : c;
        at += body.substr(at, 2) == "$$" ? 2 : 1;
    }
    if (std::ranges::none_of(made.fields, [](const SnippetField& field) { return field.number == 0; }))
        made.fields.push_back({0, made.text.size(), made.text.size()});
    std::ranges::stable_sort(made.fields, {},
                             [](const SnippetField& field) { return field.number == 0 ? 10 : field.number; });
    return made;
}

SnippetFile ReadSnippetFile(std::string_view utf8) {
    SnippetFile file;
    FileReading reading{.file = file, .lines = {}};
    if (utf8.starts_with("\xEF\xBB\xBF")) utf8.remove_prefix(3);
    while (!utf8.empty()) {
        const std::string_view line = NextLine(utf8);
        ++reading.line;
        if (line.starts_with(";")) continue;
        if (line.starts_with("["))
            BeginSnippet(reading, line);
        else if (reading.inBody)
            AddBodyLine(reading, line);
    }
    for (std::size_t i = file.snippets.size(); i-- > 0;) {
        std::string& body = file.snippets[i].body;
        while (!body.empty() && (body.back() == '\n' || body.back() == '\t' || body.back() == ' ')) body.pop_back();
        if (!body.empty()) continue;
        reading.line = reading.lines[i];
        reading.Problem("[" + file.snippets[i].name + "] has no text");
        file.snippets.erase(file.snippets.begin() + static_cast<std::ptrdiff_t>(i));
    }
    return file;
}

std::string_view SnippetFileTemplate() {
    return "; Snippets of your own. Each begins with its name in brackets; the lines below are what is inserted.\r\n"
           "; Type the name in a BASIC source and choose it in the list; Tab goes from field to field.\r\n"
           ";\r\n"
           ";   $1 ... $9     a field; fields of the same number hold the same text\r\n"
           ";   ${1:text}     a field with a text to begin with\r\n"
           ";   $0            where the caret is at the end\r\n"
           ";   $$            a dollar sign\r\n"
           ";\r\n"
           "; A tab or four blanks at the start of a line are one step of indentation. Names of compilers behind "
           "the\r\n"
           "; bracket limit a snippet to these: [name] KeldorBasic KVXA32. Lines that begin with \";\" are "
           "comments;\r\n"
           "; write \\; or \\[ when a line of a snippet begins with such a character.\r\n"
           "\r\n"
           "[header]\r\n"
           "'----------------------------------------------------------------\r\n"
           "' ${1:Name}: ${2:what it does}\r\n"
           "'----------------------------------------------------------------\r\n"
           "$0\r\n";
}
