// Code and listings as text: single instructions, whole programs, files that are none, compilers' listings.
#include "disasm/disasm.h"
#include "disasm/asm_renderer.h"
#include "disasm/asm_text.h"
#include "disasm/listing_text.h"
#include "disasm/renderer.h"
#include "program/visible_text.h"
#include "support/golden_file.h"
#include "support/pe_bytes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <random>
#include <string>

namespace {

using pe_bytes::Build;
using pe_bytes::Bytes;
using pe_bytes::PutNumber;
using pe_bytes::PutText;

std::string Rendered(DisasmProgram program, std::size_t budget = 1000) {
    const DisasmRendererPtr renderer = DisasmRendererNew(std::move(program));
    std::string text;
    while (DisasmRenderNext(*renderer, budget, &text)) {}
    return text;
}

std::string RenderedListing(const std::string& text, std::size_t budget = 1000) {
    DisasmListing listing = {.rest = text};
    std::string out;
    while (DisasmListingNext(listing, budget, &out)) {}
    return out;
}

// Imports of two functions, and one export, at 2000h, for both kinds of program.
pe_bytes::Section Names(bool x64) {
    const std::size_t width = x64 ? 8 : 4;
    pe_bytes::Section section = {.name = ".data", .rva = 0x2000, .data = Bytes(0x200), .flags = pe_bytes::kData};
    Bytes* const data = &section.data.bytes;
    for (const std::size_t table : {std::size_t{0x00}, std::size_t{0x20}}) {
        PutNumber(data, table, 0x2080, width);
        PutNumber(data, table + width, x64 ? 0x8000000000000011 : 0x80000011, width);
    }
    PutNumber(data, 0x40, 0x2020, 4);
    PutNumber(data, 0x4C, 0x20C0, 4);
    PutNumber(data, 0x50, 0x2000, 4);
    PutText(data, 0x82, "ExitProcess");
    PutText(data, 0xC0, "KERNEL32.dll");
    PutNumber(data, 0x114, 1, 4);
    PutNumber(data, 0x118, 1, 4);
    PutNumber(data, 0x11C, 0x2130, 4);
    PutNumber(data, 0x120, 0x2138, 4);
    PutNumber(data, 0x124, 0x2140, 4);
    PutNumber(data, 0x130, 0x1050, 4);
    PutNumber(data, 0x138, 0x2150, 4);
    PutText(data, 0x150, "Exported");
    return section;
}

const Bytes kCode64 = {
    0x48, 0x83, 0xEC, 0x28,              // 1000 sub rsp, 28h
    0xE8, 0x27, 0x00, 0x00, 0x00,        // 1004 call 1030
    0xFF, 0x15, 0xF1, 0x0F, 0x00, 0x00,  // 1009 call [2000]
    0x75, 0xF3,                          // 100F jnz 1004
    0xE8, 0x23, 0x00, 0x00, 0x00,        // 1011 call 1039, a jump through a slot
    0xEB, 0x01,                          // 1016 jmp 1019, the middle of what follows
    0xB8, 0x01, 0x00, 0x00, 0x00,        // 1018 mov eax, 1
    0x06,                                // 101D not an instruction here
    0xFF, 0x05, 0xDC, 0x10, 0x00, 0x00,  // 101E inc dword [2100]
    0xF3, 0xAB, 0xC3,                    // 1024 rep stosd, ret
    0xCC, 0xCC, 0xCC, 0xCC, 0xCC, 0xCC, 0xCC, 0xCC, 0xCC, 0x55, 0x48, 0x89, 0xE5, 0x0F, 0xAF, 0xC9, 0x5D, 0xC3,  // 1030
    0xFF, 0x25, 0xC9, 0x0F, 0x00, 0x00,  // 1039 jmp [2008]
    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,  // 103F
    0x33, 0xC0, 0x48, 0xB8, 1,    2,    3,    4,    5,    6,    7,    8,    0xC3,                       // 1050 exported
    0xF0, 0x48, 0x81, 0x84, 0x88, 1,    2,    3,    4,    5,    6,    7,    8,    0xC3, 0xE8};  // 105D, and one cut off

const Bytes kCode32 = {
    0x55, 0x8B, 0xEC,                    // 1000
    0xFF, 0x15, 0x00, 0x20, 0x40, 0x00,  // 1003 call [402000]
    0x68, 0x00, 0x21, 0x40, 0x00,        // 1009 push
    0xE8, 0x0D, 0x00, 0x00, 0x00,        // 100E call 1020
    0xDD, 0x45, 0xF8, 0xC9, 0xC3,        // 1013 fld qword [ebp-8], leave, ret
    0x90, 0x90, 0x90, 0x90, 0x90, 0x90, 0x90,
    0x90, 0x40, 0xE2, 0xFD, 0xC2, 0x08, 0x00,  // 1020 inc eax, loop 1020, ret 8
};

const char kSource[] =
    "' a program\r\n#COMPILE EXE\r\nFUNCTION Square (BYVAL n AS LONG) AS LONG\r\n  FUNCTION = n * n\r\nEND FUNCTION\r\n"
    "\r\nFUNCTION PBMAIN () AS LONG\r\n\tPRINT Square(3)\r\n  PRINT \"\x1B\"\r\nEND FUNCTION\r\n";

DisasmProgram Program64(bool withLines) {
    DisasmProgram program;
    program.file = Build({.x64 = true,
                          .sections = {{".text", 0x1000, kCode64}, Names(true)},
                          .directories = {{0, 0x2100, 0x80}, {1, 0x2040, 40}}});
    if (!withLines) return program;
    program.lines = {{0x1030, 1, 3}, {0x1034, 1, 4},  {0x1000, 1, 7}, {0x1004, 1, 8},
                     {0x1009, 1, 9}, {0x1011, 2, 77}, {0x1024, 1, 0}, {0x9000, 1, 5}};
    program.sources = {{1, "", kSource}, {2, "more.inc", ""}};
    return program;
}

DisasmProgram Program32() {
    DisasmProgram program;
    program.file =
        Build({.x64 = false, .sections = {{".text", 0x1000, kCode32}, Names(false)}, .directories = {{1, 0x2040, 40}}});
    return program;
}

TEST(Disasm, RangeTellsCallsBranchesAndWhatIsNoCode) {
    const Bytes bytes = {0xE8, 0x1B, 0,    0,    0,    0xFF, 0x15, 0x10, 0, 0, 0, 0xC2,
                         0x08, 0,    0x75, 0xFE, 0x06, 0xFF, 0x05, 0,    0, 0, 0, 0xE8};
    const auto names = [](std::uint64_t address) -> std::string {
        return address == 0x140001020 ? "Main" : address == 0x14000101B ? "kernel32!ExitProcess" : "";
    };
    const auto code = DisasmRange(bytes, 0x140001000, true, names, 100);
    const std::vector<std::string> texts = {"call Main", "call [kernel32!ExitProcess]", "ret 0x8", "jnz 0x14000100E",
                                            "db 06h",    "inc dword ptr [0x140001017]", "db 0E8h"};
    ASSERT_EQ(code.size(), texts.size());
    std::uint64_t address = 0x140001000;
    for (std::size_t i = 0; i < code.size(); ++i) {
        EXPECT_EQ(code[i].text, texts[i]);
        EXPECT_EQ(code[i].address, address) << texts[i];
        EXPECT_EQ(code[i].decoded, i != 4 && i != 6) << texts[i];
        EXPECT_EQ(code[i].isCall, i < 2) << texts[i];
        EXPECT_EQ(code[i].isBranch, i == 0 || i == 3) << texts[i];
        address += code[i].length;
    }
    EXPECT_EQ(code[0].target, 0x140001020U);
    EXPECT_EQ(code[3].target, 0x14000100EU);
    EXPECT_EQ(DisasmRange(bytes, 0x140001000, true, {}, 2).size(), 2U);
    EXPECT_EQ(DisasmRange(bytes, 0x140001000, true, {}, 2)[0].text, "call 0x140001020");
    EXPECT_TRUE(DisasmRange({}, 0, true, {}, 2).empty());
    EXPECT_EQ(DisasmRange(
                  bytes, 0, true, [](auto) { return std::string(5000, 'n'); }, 1)[0]
                  .text,
              "call " + std::string(200, 'n'));
}

TEST(Disasm, StepIntoGoesWhereADirectCallGoes) {
    const struct {
        const char* name;
        Bytes bytes;
        bool x64;
        std::uint64_t target;
    } cases[] = {
        {"ahead", {0xE8, 0x10, 0, 0, 0}, true, 0x401015},
        {"back", {0xE8, 0xF0, 0xFF, 0xFF, 0xFF}, true, 0x400FF5},
        {"32 bits", {0xE8, 0x10, 0, 0, 0, 0x90}, false, 0x401015},
        {"32 bits wrap round", {0xE8, 0xFB, 0xEF, 0xBF, 0xFF}, false, 0},
        {"through a register", {0xFF, 0xD0}, true, 0},
        {"through memory", {0xFF, 0x15, 0x10, 0, 0, 0}, true, 0},
        {"far", {0x9A, 1, 2, 3, 4, 5, 6}, false, 0},
        {"a jump", {0xE9, 0x10, 0, 0, 0}, true, 0},
        {"a return with a number", {0xC2, 0x10, 0}, true, 0},
        {"cut off", {0xE8, 0x10, 0}, true, 0},
        {"nothing", {}, true, 0},
    };
    for (const auto& c : cases) EXPECT_EQ(DisasmCallTarget(c.bytes, 0x401000, c.x64), c.target) << c.name;
}

TEST(Disasm, ProgramsLookAsExpected) {
    ExpectGolden("program64.txt", Rendered(Program64(false)));
    ExpectGolden("program64_lines.txt", Rendered(Program64(true)));
    ExpectGolden("program32.txt", Rendered(Program32()));
}

TEST(Disasm, TheTextIsTheSameInSlicesOfAnySize) {
    DisasmProgram program = Program64(true);
    program.focusFile = 1;
    program.focusLine = 8;
    const std::string whole = Rendered(program, 1000000);
    for (const std::size_t budget : {1U, 2U, 3U, 7U, 50U}) EXPECT_EQ(Rendered(program, budget), whole) << budget;
}

TEST(Disasm, ThePartAroundTheCaretComesFirst) {
    const std::string plain = Rendered(Program64(true));
    const struct {
        const char* name;
        std::uint32_t file;
        std::uint32_t line;
        const char* heading;  // null: no such part
        const char* holds;
    } cases[] = {
        {"a line with code", 1, 8, "; --- Around line 8\r\n", "call    Square"},
        {"the line above has code", 1, 5, "; --- Around line 4\r\n", "mov     rbp, rsp"},
        {"only lines below have code", 1, 1, "; --- Around line 3\r\n", "push    rbp"},
        {"another file", 2, 77, "; --- Around line 77\r\n", "call    kernel32!#17"},
        {"a file that is not part of it", 3, 8, nullptr, ""},
        {"no line", 1, 0, nullptr, ""},
    };
    for (const auto& c : cases) {
        DisasmProgram program = Program64(true);
        program.focusFile = c.file;
        program.focusLine = c.line;
        const std::string text = Rendered(program);
        ASSERT_TRUE(text.ends_with(plain)) << c.name << "\n" << text;
        const std::string part = text.substr(0, text.size() - plain.size());
        EXPECT_EQ(part.empty(), c.heading == nullptr) << c.name << "\n" << part;
        if (c.heading == nullptr) continue;
        EXPECT_TRUE(part.starts_with(c.heading)) << c.name << "\n" << part;
        EXPECT_NE(part.find(c.holds), std::string::npos) << c.name << "\n" << part;
    }
}

TEST(Disasm, KnownStartsDecideWhereInstructionsBegin) {
    // When the code of a line begins within an instruction, the bytes before it are shown as data.
    DisasmProgram mixed = Program64(false);
    mixed.lines = {{0x101A, 1, 1}};
    const std::string text = Rendered(mixed);
    EXPECT_NE(text.find("B8                              db      0B8h\r\n"), std::string::npos) << text;
    EXPECT_NE(text.find("00014000101A"), std::string::npos) << text;
}

// The number of lines of a text that are this label alone.
int CountLabels(const std::string& text, const std::string& name) {
    int count = 0;
    for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + 1))
        count += at >= 2 && text.compare(at - 2, 2, "\r\n") == 0 && text.compare(at + name.size(), 3, ":\r\n") == 0;
    return count;
}

TEST(Disasm, AHeadingWithSeveralRecordsNamesTheFirst) {
    DisasmProgram program = Program64(true);
    program.lines.push_back({0x1037, 1, 3});
    program.lines.push_back({0x101E, 2, 3});  // the same line of another file
    program.sources[1].text = "\n\nSUB Other\n";
    const std::string text = Rendered(std::move(program));
    EXPECT_EQ(CountLabels(text, "Square"), 1) << text;
    EXPECT_LT(text.find("\r\nSquare:"), text.find("000140001034")) << text;
    EXPECT_EQ(CountLabels(text, "Other"), 1) << text;
}

// A damaged map may name any number of procedures.
TEST(Disasm, NamesHaveALimit) {
    constexpr std::uint32_t kLimit = 65536;
    DisasmProgram program;
    program.file = Build({.sections = {{".text", 0x1000, Bytes(kLimit + 2, 0x90)}}});
    program.sources = {{1, "", ""}};
    for (std::uint32_t i = 0; i < kLimit + 2; ++i) {
        program.lines.push_back({0x1000 + i, 1, i + 1});
        program.sources[0].text += "SUB P" + std::to_string(i) + "\n";
    }
    const std::string text = Rendered(std::move(program));
    EXPECT_EQ(CountLabels(text, "P65535"), 1) << text;
    EXPECT_EQ(CountLabels(text, "P65536"), 0) << text;
}

TEST(Disasm, FilesWithoutCodeToShowSayWhy) {
    std::mt19937 random(1);
    Bytes noise(8192);
    for (std::uint8_t& byte : noise) byte = static_cast<std::uint8_t>(random());
    const auto text = [](Bytes data) { return pe_bytes::Section{".text", 0x1000, std::move(data)}; };
    Bytes cut = Build({.sections = {text(kCode64)}});
    cut.resize(cut.size() - 8);
    Bytes noHeader = Build({.sections = {text(kCode64)}});
    noHeader.resize(pe_bytes::kHeader + 16);
    const struct {
        const char* name;
        Bytes file;
        const char* message;
    } cases[] = {
        {"empty", {}, "(The file is empty.)\r\n"},
        {"text", {'P', 'R', 'I', 'N', 'T'}, "(The file is no program.)\r\n"},
        {"cut after the header", noHeader, "(The file is no Windows program, or its header is damaged.)\r\n"},
        {"cut in the code", cut, "(The file is damaged or cut off: its code lies outside the file.)\r\n"},
        {"data elsewhere", Build({.sections = {{".text", 0x1000, kCode64, 0x100000}}}),
         "(The file is damaged or cut off: its code lies outside the file.)\r\n"},
        {"no code", Build({.sections = {{".data", 0x1000, kCode64, 0, pe_bytes::kData}}}),
         "(The program has no section with code.)\r\n"},
        {"no section", Build({}), "(The program has no section with code.)\r\n"},
        {"code without data", Build({.sections = {{".text", 0x1000, {}}}}),
         "(The program's code is not in the file: it is made when the program runs.)\r\n"},
        {"entry outside", Build({.entry = 0x5000, .sections = {text(kCode64)}}),
         "(The file is damaged: the program's entry point lies outside its sections.)\r\n"},
        {"packer", Build({.sections = {{"UPX0", 0x1000, {}}, {"UPX1", 0x2000, kCode64}}}),
         "(The program is packed (section \"UPX0\"): its code is not in the file as it runs.)\r\n"},
        {"noise", Build({.sections = {text(noise)}}),
         "(The program is packed or encrypted (section \".text\" looks like random data): its code is not in the file "
         "as "
         "it runs.)\r\n"},
        {".NET", Build({.sections = {text(kCode64)}, .directories = {{14, 0x1000, 72}}}),
         "(The program is made for .NET: it holds no machine code.)\r\n"},
        {"ARM", Build({.machine = 0xAA64, .sections = {text(kCode64)}}),
         "(The program is for ARM64, and only x86 and x64 code can be shown.)\r\n"},
        {"32-bit header, 64-bit machine", Build({.x64 = false, .machine = 0x8664, .sections = {text(kCode64)}}),
         "(The file is damaged: its header contradicts itself.)\r\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(Rendered({.file = c.file}), c.message) << c.name;
    // Neither section names nor a missing entry point (of a library) make a packed program.
    EXPECT_TRUE(Rendered({.file = Build({.entry = 0, .sections = {text(kCode64)}})}).starts_with("; --- Section"));
}

TEST(Disasm, ProceduresAreKnownByTheirHeading) {
    const struct {
        const char* line;
        const char* name;
    } cases[] = {{"FUNCTION PBMAIN () AS LONG", "PBMAIN"},
                 {"  sub Draw_2", "Draw_2"},
                 {"\tCALLBACK FUNCTION Proc()", "Proc"},
                 {"STATIC SUB a$", "a"},
                 {"FUNCTION = 3", ""},
                 {"END FUNCTION", ""},
                 {"SUBSTR x", ""},
                 {"", ""}};
    for (const auto& c : cases) EXPECT_EQ(DisasmProcedureName(c.line), c.name) << c.line;
}

TEST(Listing, LinesAreAlignedOrLeftAlone) {
    const struct {
        const char* line;
        const char* rendered;
    } cases[] = {
        {"  00401000  55                              push ebp",
         "  00401000  55                              push    ebp"},
        {"401000:\t48 89 e5 \tmov    rbp,rsp", "  401000:  48 89 e5                        mov     rbp,rsp"},
        {"   3 0004 4889E5   \tmov rbp, rsp ; frame",
         "     3  0004  48 89 E5                        mov     rbp, rsp ; frame"},
        {" 00000004 F3 AB rep stosd", "  00000004  F3 AB                           rep stosd"},
        {" 00000004 48 8D DD     lea ebx, [x]", "  00000004  48 8D DD                        lea     ebx, [x]"},
        {" 00000004 10 20     db 10h, 20h", "  00000004  10 20                           db      10h, 20h"},
        {" 00401000 E8 01 02", "  00401000  E8 01 02"},
        {"  rt_flush:  ", "rt_flush:"},
        {"; 12:   PRINT \"a  b\"", "; 12:   PRINT \"a  b\""},
        {"\tmov\teax, 'a  b'", "        mov     eax, 'a  b'"},
        {" lock inc [rax]", "        lock inc [rax]"},
        {"\tcall puts", "        call    puts"},
        {"  ret", "        ret"},
        {"and so it goes", "and so it goes"},
        {"Test passed", "Test passed"},
        {"2024 was a good year", "2024 was a good year"},
        {"name\tvalue\tx", "name    value   x"},
        {"   \t ", ""},
        {"a\x1B[1mb\x7F\xC2\x85\xFF\xE2\x80\xAE.", "a\\x1B[1mb\\x7F\\xC2\\x85\\xFF\\xE2\\x80\\xAE."},
        {"\xC3\xA4\t\xE6\xBC\xA2|", "\xC3\xA4       \xE6\xBC\xA2|"},
    };
    for (const auto& c : cases) EXPECT_EQ(DisasmListingLine(c.line), c.rendered) << c.line;
    EXPECT_EQ(DisasmListingLine(cases[2].line, false), "     3  0004  mov     rbp, rsp ; frame");
    EXPECT_EQ(DisasmListingLine(" 00401000 E8 01 02", false), "  00401000  E8 01 02") << "there is nothing else on it";
}

TEST(Listing, NoLineIsLost) {
    EXPECT_EQ(RenderedListing(""), "");
    EXPECT_EQ(RenderedListing("a\n\r\nb\rc"), "a\r\n\r\nb\r\nc\r\n");
    EXPECT_EQ(RenderedListing("a\n\n", 1), "a\r\n\r\n");
    EXPECT_EQ(RenderedListing(std::string("a\0b\n", 4)), "a\\x00b\r\n");
    EXPECT_EQ(RenderedListing(std::string(200000, 'x')), std::string(200000, 'x') + "\r\n");
}

TEST(Listing, ACompilersListingLooksAsExpected) {
    const std::string listing = GoldenText("listing.asm");
    ASSERT_FALSE(listing.empty());
    ExpectGolden("listing.txt", RenderedListing(listing));
    EXPECT_EQ(RenderedListing(listing, 1), RenderedListing(listing));
}

// --- The pane

TEST(AsmText, APartIsLimited) {
    AsmPart part;
    std::string lines;
    for (std::size_t i = 0; i < kAsmPartLines + 5; ++i) lines += "x\r\n";
    const std::string taken = AsmPartTake(part, lines);
    EXPECT_EQ(taken.size(), kAsmPartLines * 3 + std::string_view("... the rest is left out here ...\r\n").size());
    EXPECT_TRUE(part.full);
    EXPECT_EQ(AsmPartTake(part, "more\r\n"), "") << "said once";
    // A long line is cut between characters, which have two bytes here.
    part = {};
    std::string wide;
    for (int i = 0; i < 6000; ++i) wide += "\xC3\xA9";
    const std::string cut = AsmPartTake(part, "a" + wide + "\n");
    EXPECT_EQ(cut.find("\r\n") % 2, 1U) << "an odd byte, then whole characters";
    EXPECT_EQ(AsmLinesIn(cut), 2);
    EXPECT_EQ(AsmLinesIn("a\r\n\nb"), 3);
    std::string_view rest = "12\n34\n5678";
    EXPECT_EQ(AsmTakePiece(&rest, 4), "12\n");
    EXPECT_EQ(AsmTakePiece(&rest, 1), "34\n") << "at least a line";
    EXPECT_EQ(AsmTakePiece(&rest, 2), "5678") << "one without an end too";
}

// Text of the pane for files in memory; "@" marks the user's place. The files are in the order of their times.
std::string Pane(const AsmRequest& request, const std::map<std::wstring, std::string>& files,
                 const std::string* listing = nullptr) {
    std::string text;
    AsmRenderIn({.exists = [&](const std::wstring& path) { return files.contains(path); },
                 .read =
                     [&](const std::wstring& path, std::size_t, std::string* bytes) {
                         if (files.contains(path)) *bytes = files.at(path);
                         return files.contains(path) && *bytes != "locked";
                     },
                 .sourceText = [&](const std::wstring& path) { return files.contains(path) ? files.at(path) : ""; },
                 .isOlder = [](const std::wstring& a, const std::wstring& b) { return a < b; },
                 .mapFile = [](const char* name, bool,
                               const MapSource&) { return std::wstring(name, name + std::strlen(name)); },
                 .utf8 = [](std::wstring_view wide) { return std::string(wide.begin(), wide.end()); },
                 .beginPart = [&](std::string_view heading) { text += heading; },
                 .put =
                     [&](std::string_view piece) {
                         text += piece;
                         return true;
                     },
                 .markPlace = [&] { text += "@"; },
                 .cancelled = [] { return false; }},
                request, listing);
    std::erase(text, '\r');
    return text;
}

TEST(AsmRender, ListingThenProgramWithItsLines) {
    const std::string map = pe_bytes::Sdbg1({{1, 3, 0x1030}, {1, 8, 0x1004}});
    const Bytes program = Build({.sections = {{".text", 0x1000, kCode64}, {".sdbg", 0x3000, map, 0, pe_bytes::kData}}});
    std::map<std::wstring, std::string> files = {{L"m.exe", std::string(program.begin(), program.end())},
                                                 {L"k.bas", kSource}};
    AsmRequest request = {
        .source = L"k.bas", .listing = L"a.asm", .program = L"m.exe", .caretFile = L"K.BAS", .caretLine = 8};
    const std::string listing = "  mov eax, 1\n";
    std::string text = Pane(request, files, &listing);
    EXPECT_TRUE(
        text.starts_with("\n=== Listing in columns ===\n(The source was changed after this listing was written.)\n"))
        << text;
    const std::size_t code = text.find("\n=== Code of m.exe ===\n@; --- Around line 8");
    EXPECT_NE(code, std::string::npos) << text;
    EXPECT_NE(text.find("; 3: FUNCTION Square", code), std::string::npos) << text;

    // The side file of a map is beside the program; the caret is in another file.
    request.caretFile = L"other.bas";
    EXPECT_EQ(Pane(request, files).find('@'), std::string::npos);
    request.program = L"b.exe";
    EXPECT_EQ(Pane(request, files), "") << "no program, no part";
    files[L"b.exe"] = "locked";
    EXPECT_EQ(Pane(request, files), "\n=== Code of b.exe ===\n(The program cannot be read.)\n");
    files[L"b.exe"] = "MZ";
    EXPECT_NE(Pane(request, files).find("(The source was changed after the program was built"), std::string::npos);
}

TEST(AsmRequests, NameTheProgramOnlyForTheLastBuild) {
    const BuildRecord last = {.source = L"C:\\x.kxa", .output = L"C:\\x.exe", .staged = L"C:\\x.pb"};
    EXPECT_EQ(AsmRequestOf(last, L"c:/X.kxa", L"l").program, L"C:\\x.exe");
    EXPECT_EQ(AsmRequestOf(last, L"c:/X.kxa", L"l").staged, L"C:\\x.pb");
    EXPECT_EQ(AsmRequestOf(last, L"C:\\y.kxa", L"l").program, L"");
    EXPECT_EQ(AsmTopLine({.place = 40, .lines = 50}, 0), 40);
    EXPECT_EQ(AsmTopLine({.place = 40, .lines = 40}, 0), 0) << "not there yet";
    EXPECT_EQ(AsmTopLine({.place = 40, .lines = 50}, 7), 7) << "the reader has scrolled";
    EXPECT_EQ(AsmTopLine({.place = 40, .lines = 50, .top = 7}, 7), 40) << "the pane itself had left it there";
}

}  // namespace
