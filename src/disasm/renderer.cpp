#include "disasm/renderer.h"

#include "disasm/code_text.h"
#include "disasm/decoder.h"
#include "disasm/pe_problem.h"
#include "program/visible_text.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace {

// Code beyond this size is left out, and the text says so, because the marks need one more byte for each byte of code.
constexpr std::size_t kMostCode = std::size_t{64} << 20;
constexpr std::size_t kShortestRun = 16;   // so many equal filling bytes are shown as one line
constexpr std::size_t kMaxNames = 65536;   // limit for names of procedures and of jumps through imports
constexpr std::size_t kSourceBytes = 512;  // longest source line or file name shown: a map may repeat it very often

// The part around the focus: so many lines of the map before and after it, and at most kFocusBytes bytes.
constexpr std::size_t kFocusLinesBefore = 3;
constexpr std::size_t kFocusLinesAfter = 6;
constexpr std::uint32_t kFocusBytes = 1500;

// Facts about a byte of code.
enum Mark : std::uint8_t {
    kStart = 1,   // an instruction begins here, or a byte that is shown as "db"
    kJumped = 2,  // the target of a jump
    kCalled = 4,
    kKnown = 8,  // an instruction begins here whatever the bytes before it are
};

struct Code {
    std::string name;
    std::uint32_t rva = 0;
    std::span<const std::uint8_t> bytes;
    std::vector<std::uint8_t> marks;  // one for each byte of code
    bool cut = false;
};

// A range of one section's code that is shown.
struct Part {
    std::size_t code = 0;
    std::size_t from = 0;  // offsets in the section
    std::size_t to = 0;
    std::string heading;
};

enum class StepKind : std::uint8_t { Instruction, Byte, Run };
struct Step {
    StepKind kind = StepKind::Byte;
    std::size_t length = 1;
};

enum class Phase : std::uint8_t { Head, Names, Marks, Parts, Done };

struct SourceText {
    std::string name;
    std::vector<std::string_view> lines;
};

// Returns `text`, cut between characters to kSourceBytes.
std::string_view Shortened(std::string_view text) {
    std::size_t end = std::min(text.size(), kSourceBytes);
    while (end < text.size() && end > kSourceBytes - 4 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    return text.substr(0, end);
}

std::vector<std::string_view> SplitSourceLines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        lines.push_back(text.substr(0, end));
        const bool pair = text.substr(end).starts_with("\r\n");
        text.remove_prefix(std::min(end + (pair ? 2 : 1), text.size()));
    }
    return lines;
}

}  // namespace

struct DisasmRenderer {
    DisasmProgram program;
    PeImage image;
    Decoder decoder;
    DisasmSymbols symbols;  // looks up names in this renderer
    std::vector<Code> code;
    std::unordered_map<std::uint32_t, std::string> names;  // names of code and data, by RVA
    std::unordered_set<std::uint64_t> headings;            // file and line of headings that named a procedure
    std::unordered_map<std::uint32_t, SourceText> sources;
    std::vector<Part> parts;
    bool focused = false;  // the first part is the one around the focus
    int digits = 12;

    Phase phase = Phase::Head;
    std::size_t current = 0;     // index of the section while marking, of the part while writing
    std::size_t at = 0;          // offset in the section
    std::size_t nextRecord = 0;  // index into program.lines, while naming and while writing
    bool opened = false;         // the heading of the part was written
    bool blank = true;           // the last line written was empty
};

namespace {

Code* CodeAt(DisasmRenderer& r, std::uint64_t rva) {
    for (Code& code : r.code)
        if (rva >= code.rva && rva - code.rva < code.bytes.size()) return &code;
    return nullptr;
}

void MarkAt(DisasmRenderer& r, std::uint64_t rva, std::uint8_t mark) {
    if (Code* code = CodeAt(r, rva); code != nullptr) code->marks[static_cast<std::size_t>(rva - code->rva)] |= mark;
}

std::string Numbered(const char* prefix, std::uint64_t address) {
    std::string name = prefix;
    int digits = 1;
    while (digits < 16 && address >> (digits * 4) != 0) ++digits;
    AppendHex(name, address, digits);
    return name;
}

// The label at an address; empty when it needs none.
std::string LabelAt(const DisasmRenderer& r, std::uint64_t rva, std::uint8_t marks) {
    if (const auto named = r.names.find(static_cast<std::uint32_t>(rva)); named != r.names.end()) return named->second;
    if ((marks & kCalled) != 0) return Numbered("sub_", r.image.base + rva);
    if ((marks & kJumped) != 0) return Numbered("loc_", r.image.base + rva);
    return {};
}

std::string NameOf(DisasmRenderer& r, std::uint64_t address) {
    const std::uint64_t rva = address - r.image.base;
    if (rva > std::numeric_limits<std::uint32_t>::max()) return {};
    const auto slot = r.image.imports.find(static_cast<std::uint32_t>(rva));
    if (slot != r.image.imports.end()) return slot->second;
    const Code* code = CodeAt(r, rva);
    const std::uint8_t marks =
        code == nullptr ? std::uint8_t{kStart} : code->marks[static_cast<std::size_t>(rva - code->rva)];
    // A target within an instruction has no label, because no line of the text begins there.
    return (marks & kStart) != 0 ? LabelAt(r, rva, marks) : std::string();
}

// --- Preparation

void TakeSources(DisasmRenderer& r) {
    for (const DisasmSource& source : r.program.sources)
        r.sources.try_emplace(source.fileId,
                              SourceText{VisibleText(Shortened(source.name)), SplitSourceLines(source.text)});
}

std::string_view SourceLine(const DisasmRenderer& r, const DisasmLine& record) {
    const auto source = r.sources.find(record.fileId);
    const bool known = source != r.sources.end() && record.line > 0 && record.line <= source->second.lines.size();
    return known ? Shortened(source->second.lines[record.line - 1]) : std::string_view();
}

void TakeLines(DisasmRenderer& r) {
    std::vector<DisasmLine>& lines = r.program.lines;
    std::erase_if(
        lines, [&r](const DisasmLine& line) { return line.line == 0 || CodeAt(r, line.rva) == nullptr; });
    std::stable_sort(lines.begin(), lines.end(),
                     [](const DisasmLine& a, const DisasmLine& b) { return a.rva < b.rva; });
    for (const DisasmLine& line : lines) MarkAt(r, line.rva, kKnown);
}

void TakeExports(DisasmRenderer& r) {
    for (const auto& [rva, name] : r.image.exports) {
        r.names.try_emplace(rva, name);
        MarkAt(r, rva, kKnown | kCalled);
    }
    if (r.image.entryRva != 0) MarkAt(r, r.image.entryRva, kKnown | kCalled);
}

// Names the procedure of a heading line. A heading may have several records; the procedure begins at the first.
void NameProcedure(DisasmRenderer& r, const DisasmLine& line) {
    const std::uint64_t place = std::uint64_t{line.fileId} << 32 | line.line;
    if (r.headings.size() >= kMaxNames || r.headings.contains(place)) return;
    std::string name = DisasmProcedureName(SourceLine(r, line));
    if (name.empty()) return;
    r.headings.insert(place);
    r.names.try_emplace(line.rva, std::move(name));
}

void NameNext(DisasmRenderer& r, std::size_t budget) {
    const auto& lines = r.program.lines;
    for (; budget > 0 && r.nextRecord < lines.size(); --budget) NameProcedure(r, lines[r.nextRecord++]);
    if (r.nextRecord < lines.size()) return;
    if (r.image.entryRva != 0) r.names.try_emplace(r.image.entryRva, "start");
    r.phase = Phase::Marks;
}

void TakeCode(DisasmRenderer& r) {
    std::size_t room = kMostCode;
    std::uint64_t highest = 0;
    for (const PeSection& section : r.image.sections) {
        if (!section.isCode || section.data.empty()) continue;
        Code code = {.name = section.name, .rva = section.rva, .bytes = section.data, .marks = {}, .cut = false};
        code.cut = code.bytes.size() > room;
        code.bytes = code.bytes.first(std::min(code.bytes.size(), room));
        code.marks.resize(code.bytes.size());
        room -= code.bytes.size();
        highest = std::max(highest, r.image.base + section.rva + section.size);
        r.code.push_back(std::move(code));
    }
    r.digits = AddressDigits(r.image.x64, highest);
}

// The index of the record for the focus: of its line, else of the nearest line before it with code, else of the first
// line after it. The number of records when there is none.
std::size_t FocusRecord(const DisasmRenderer& r) {
    const auto& lines = r.program.lines;
    const std::uint32_t wanted = r.program.focusLine;
    std::size_t best = lines.size();
    const auto better = [wanted](std::uint32_t a, std::uint32_t b) {
        if ((a <= wanted) != (b <= wanted)) return a <= wanted;
        return a <= wanted ? a > b : a < b;
    };
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].fileId != r.program.focusFile) continue;
        if (best == lines.size() || better(lines[i].line, lines[best].line)) best = i;
    }
    return best;
}

void PlanFocus(DisasmRenderer& r) {
    if (r.program.focusLine == 0) return;
    const auto& lines = r.program.lines;
    const std::size_t focus = FocusRecord(r);
    if (focus == lines.size()) return;
    const Code* code = CodeAt(r, lines[focus].rva);
    std::size_t first = focus;
    const auto near = [&](std::size_t i) {
        return CodeAt(r, lines[i].rva) == code && lines[focus].rva - lines[i].rva < kFocusBytes;
    };
    while (first > 0 && focus - first < kFocusLinesBefore && near(first - 1)) --first;
    const std::size_t behind = focus + kFocusLinesAfter;
    const std::uint32_t end = behind < lines.size() ? lines[behind].rva : std::numeric_limits<std::uint32_t>::max();
    const std::uint32_t to = std::min(end, lines[focus].rva + kFocusBytes);
    r.parts.push_back({.code = static_cast<std::size_t>(code - r.code.data()),
                       .from = lines[first].rva - code->rva,
                       .to = std::min<std::size_t>(to - code->rva, code->bytes.size()),
                       .heading = "; --- Around line " + std::to_string(lines[focus].line)});
    r.focused = true;
}

void PlanSections(DisasmRenderer& r) {
    for (std::size_t i = 0; i < r.code.size(); ++i) {
        const Code& code = r.code[i];
        std::string heading = "; --- Section " + code.name + ", ";
        AppendHex(heading, r.image.base + code.rva, r.digits);
        heading += ", " + std::to_string(code.bytes.size()) + " bytes";
        if (code.cut) heading += ", cut off here: the program has more code than is shown";
        r.parts.push_back({.code = i, .from = 0, .to = code.bytes.size(), .heading = std::move(heading)});
    }
}

// Prepares the work. Returns false when nothing can be shown; `out` then says why.
bool PrepareRendering(DisasmRenderer& r, std::string* out) {
    r.image = PeImageRead(r.program.file);
    if (const std::string problem = PeProblem(r.image); !problem.empty()) {
        *out += "(" + problem + ")\r\n";
        return false;
    }
    DecoderInit(r.decoder, r.image.x64);
    TakeCode(r);
    TakeSources(r);
    TakeLines(r);
    TakeExports(r);
    PlanFocus(r);
    PlanSections(r);
    return true;
}

// --- Stepping through the code

std::size_t RunLength(const Code& code, std::size_t at) {
    const std::uint8_t byte = code.bytes[at];
    if (byte != 0x00 && byte != 0xCC) return 0;
    std::size_t end = at + 1;
    while (end < code.bytes.size() && code.bytes[end] == byte && (code.marks[end] & kKnown) == 0) ++end;
    return end - at >= kShortestRun ? end - at : 0;
}

Step StepAt(const DisasmRenderer& r, const Code& code, std::size_t at, Decoded* decoded) {
    if (const std::size_t run = RunLength(code, at); run > 0) return {.kind = StepKind::Run, .length = run};
    if (!DecodeOne(r.decoder, code.bytes.subspan(at), decoded)) return {};
    const std::size_t length = decoded->instruction.length;
    for (std::size_t i = 1; i < length; ++i)
        if ((code.marks[at + i] & kKnown) != 0) return {};
    return {.kind = StepKind::Instruction, .length = length};
}

// Gives a jump through an import slot the import's name, because calls of the import go to that jump.
void NameThunk(DisasmRenderer& r, const Decoded& decoded, std::uint64_t rva) {
    if (decoded.instruction.mnemonic != ZYDIS_MNEMONIC_JMP || decoded.operands[0].type != ZYDIS_OPERAND_TYPE_MEMORY)
        return;
    ZyanU64 slot = 0;
    if (!ZYAN_SUCCESS(ZydisCalcAbsoluteAddress(&decoded.instruction, &decoded.operands[0], r.image.base + rva, &slot)))
        return;
    const auto import = r.image.imports.find(static_cast<std::uint32_t>(slot - r.image.base));
    if (import == r.image.imports.end() || r.names.size() >= kMaxNames) return;
    const std::string& name = import->second;
    const std::size_t function = name.find('!') + 1;
    r.names.try_emplace(static_cast<std::uint32_t>(rva), name.substr(name[function] == '#' ? 0 : function));
}

void MarkNext(DisasmRenderer& r, std::size_t budget) {
    Decoded decoded;
    for (; budget > 0 && r.current < r.code.size(); --budget) {
        Code& code = r.code[r.current];
        if (r.at >= code.bytes.size()) {
            ++r.current;
            r.at = 0;
            continue;
        }
        const Step step = StepAt(r, code, r.at, &decoded);
        code.marks[r.at] |= kStart;
        const std::uint64_t rva = code.rva + r.at;
        std::uint64_t target = 0;
        if (step.kind == StepKind::Instruction && DirectTarget(decoded, r.image.base + rva, &target)) {
            const bool call = decoded.instruction.meta.category == ZYDIS_CATEGORY_CALL;
            MarkAt(r, target - r.image.base, call ? kCalled : kJumped);
        } else if (step.kind == StepKind::Instruction) {
            NameThunk(r, decoded, rva);
        }
        r.at += step.length;
    }
    if (r.current < r.code.size()) return;
    r.phase = Phase::Parts;
    r.current = 0;
}

// --- Writing

void WriteBlank(DisasmRenderer& r, std::string& out) {
    if (!r.blank) out += "\r\n";
    r.blank = true;
}

void WriteSourceLine(DisasmRenderer& r, const DisasmLine& record, std::string& out) {
    const auto source = r.sources.find(record.fileId);
    WriteBlank(r, out);
    out += "; ";
    if (source != r.sources.end() && !source->second.name.empty()) out += source->second.name + " ";
    out += std::to_string(record.line) + ":";
    if (const std::string_view text = SourceLine(r, record); !text.empty()) out += " " + VisibleText(text, 8);
    out += "\r\n";
    r.blank = false;
}

void WriteLabel(DisasmRenderer& r, const Code& code, std::string& out) {
    const std::uint8_t marks = code.marks[r.at];
    const std::string label = LabelAt(r, code.rva + r.at, marks);
    if (label.empty()) return;
    const bool afterComment = r.nextRecord > 0 && r.program.lines[r.nextRecord - 1].rva == code.rva + r.at;
    if ((marks & kCalled) != 0 && !afterComment) WriteBlank(r, out);
    out += label + ":\r\n";
}

std::size_t WriteStep(DisasmRenderer& r, const Code& code, std::string& out) {
    Decoded decoded;
    InstructionText buffer;
    const Step step = StepAt(r, code, r.at, &decoded);
    const std::uint64_t address = r.image.base + code.rva + r.at;
    const std::size_t shown = step.kind == StepKind::Run ? 1 : step.length;
    if (r.program.bytes)
        AppendAddressAndBytes(out, address, r.digits, code.bytes.subspan(r.at, shown));
    else
        AppendAddress(out, address, r.digits);
    switch (step.kind) {
        case StepKind::Instruction:
            AppendAligned(out, FormatDecoded(r.decoder, decoded, address, r.symbols, buffer));
            break;
        case StepKind::Byte: AppendAligned(out, FormatByte(code.bytes[r.at], buffer)); break;
        case StepKind::Run:
            AppendAligned(out, "db " + std::to_string(step.length) + " dup (" +
                                   std::string(FormatByte(code.bytes[r.at], buffer).substr(3)) + ")");
            break;
    }
    out += "\r\n";
    r.blank = false;
    return step.length;
}

void OpenPart(DisasmRenderer& r, const Part& part, std::string& out) {
    const Code& code = r.code[part.code];
    WriteBlank(r, out);
    out += part.heading + "\r\n";
    r.blank = false;
    r.opened = true;
    r.at = part.from;
    // The first instruction of a part may begin after the part's start.
    while (r.at < part.to && (code.marks[r.at] & kStart) == 0) ++r.at;
    const auto& lines = r.program.lines;
    const auto first = std::lower_bound(lines.begin(), lines.end(), code.rva + r.at,
                                        [](const DisasmLine& line, std::uint64_t rva) { return line.rva < rva; });
    r.nextRecord = static_cast<std::size_t>(first - lines.begin());
}

void WriteNext(DisasmRenderer& r, std::size_t budget, std::string& out) {
    const auto& lines = r.program.lines;
    for (; budget > 0 && r.current < r.parts.size(); --budget) {
        const Part& part = r.parts[r.current];
        const Code& code = r.code[part.code];
        if (!r.opened) OpenPart(r, part, out);
        if (r.at >= part.to) {
            r.opened = false;
            ++r.current;
        } else if (r.nextRecord < lines.size() && lines[r.nextRecord].rva <= code.rva + r.at) {
            WriteSourceLine(r, lines[r.nextRecord++], out);
        } else {
            WriteLabel(r, code, out);
            r.at += WriteStep(r, code, out);
        }
    }
    if (r.current >= r.parts.size()) r.phase = Phase::Done;
}

}  // namespace

void DisasmRendererDeleter::operator()(DisasmRenderer* renderer) const { delete renderer; }

DisasmRendererPtr DisasmRendererNew(DisasmProgram program) {
    DisasmRendererPtr renderer(new DisasmRenderer);
    renderer->program = std::move(program);
    renderer->symbols = [r = renderer.get()](std::uint64_t address) { return NameOf(*r, address); };
    return renderer;
}

bool DisasmRenderNext(DisasmRenderer& renderer, std::size_t budget, std::string* out) {
    switch (renderer.phase) {
        case Phase::Head: renderer.phase = PrepareRendering(renderer, out) ? Phase::Names : Phase::Done; break;
        case Phase::Names: NameNext(renderer, budget); break;
        case Phase::Marks: MarkNext(renderer, budget); break;
        case Phase::Parts: WriteNext(renderer, budget, *out); break;
        case Phase::Done: break;
    }
    return renderer.phase != Phase::Done;
}

bool DisasmBeganAtFocus(const DisasmRenderer& renderer) { return renderer.focused; }

std::string DisasmProcedureName(std::string_view line) {
    const auto word = [&line] {
        const std::size_t start = std::min(line.find_first_not_of(" \t"), line.size());
        line.remove_prefix(start);
        std::size_t end = 0;
        while (end < line.size() && (static_cast<unsigned char>(line[end]) >= 0x80 || line[end] == '_' ||
                                     (line[end] >= '0' && line[end] <= '9') || (line[end] >= 'A' && line[end] <= 'Z') ||
                                     (line[end] >= 'a' && line[end] <= 'z')))
            ++end;
        const std::string_view found = line.substr(0, end);
        line.remove_prefix(end);
        return found;
    };
    const auto is = [](std::string_view text, std::string_view upper) {
        return std::equal(text.begin(), text.end(), upper.begin(), upper.end(), [](char a, char b) {
            return (a >= 'a' && a <= 'z' ? static_cast<char>(a - ('a' - 'A')) : a) == b;
        });
    };
    std::string_view first = word();
    while (is(first, "CALLBACK") || is(first, "STATIC") || is(first, "PRIVATE") || is(first, "PUBLIC")) first = word();
    if (!is(first, "FUNCTION") && !is(first, "SUB")) return {};
    return VisibleText(word());
}
