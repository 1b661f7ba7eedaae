// Line maps from bytes: headers, the ".sdbg" section, queries, BASIC lines, side files with trap bytes.
#include "program/basic_lines.h"
#include "program/pbd_map.h"
#include "program/pe_headers.h"
#include "program/sdbg_map.h"

#include "support/pe_bytes.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace std::string_literals;
using pe_bytes::Append;
using pe_bytes::Put;
using pe_bytes::Record;

const std::uint8_t* Data(std::string_view bytes) { return reinterpret_cast<const std::uint8_t*>(bytes.data()); }
std::span<const std::uint8_t> Bytes(std::string_view bytes) { return {Data(bytes), bytes.size()}; }

struct Map : SdbgMap {
    Map() = default;
    ~Map() { SdbgFree(this); }
    Map(const Map&) = delete;
    Map& operator=(const Map&) = delete;
};

// --- Headers

constexpr std::uint64_t kBase = 0x400000;

std::string TwoByText(bool is64) {
    return pe_bytes::Image(is64, kBase,
                           {{".data", 0x2000, "data"},
                            {".text", 0x3000, "\x90\x90\xC3"},
                            {".sdbg", 0x4000, pe_bytes::Sdbg1({{1, 5, 0x3000}})}});
}

// The results of all header readers: image base, address of ".text", its info (rva/offset/raw/virtual), ".sdbg"
// offset/length.
std::string Headers(const std::string& bytes) {
    const std::vector<std::uint8_t> file(bytes.begin(),
                                         bytes.end());  // exact, so that the sanitizer sees a read after the last byte
    std::ostringstream text;
    std::uint64_t base = 0;
    if (GetPeImageBase(file.data(), file.size(), &base)) text << std::hex << base;
    text << "|" << std::hex << GetTextBaseRva(file.data(), file.size()) << "|";
    TextSectionInfo info{1, 2, 3, 4, 5};
    if (GetTextSectionInfo(file.data(), file.size(), &info))
        text << info.imageBase << "/" << info.virtualAddress << "/" << info.rawOffset << "/" << info.rawSize << "/"
             << info.virtualSize;
    else
        EXPECT_EQ(info.imageBase + info.virtualAddress + info.rawOffset + info.rawSize + info.virtualSize, 0U);
    std::uint32_t length = 0;
    std::uint32_t rva = 0;
    std::uint32_t offset = 0;
    const std::uint8_t* const section = FindSdbgSection(file.data(), file.size(), &length, &rva, &offset);
    text << "|";
    if (section != nullptr) {
        EXPECT_EQ(section, file.data() + offset);
        text << offset << "/" << length << "/" << rva;
    }
    return text.str();
}

TEST(PeHeaders, EveryReaderOnOneFile) {
    struct Case {
        const char* name;
        std::function<void(std::string& file, bool is64)> change;
        const char* expected;
    };
    const auto section = [](bool is64, std::uint32_t index) { return pe_bytes::SectionAt(is64, index); };
    const char* const kWhole = "400000|3000|400000/3000/404/3/3|407/e/4000";
    const char* const kNothing = "|1000||";
    const Case cases[] = {
        {"as written", [](auto&, bool) {}, kWhole},
        {"the header's own size is not asked", [](auto& f, bool) { Put(&f, pe_bytes::kHeader + 20, std::uint16_t{7}); },
         kWhole},
        {"empty", [](auto& f, bool) { f.clear(); }, kNothing},
        {"63 bytes", [](auto& f, bool) { f.resize(63); }, kNothing},
        {"cut within the magic", [](auto& f, bool) { f.resize(pe_bytes::kHeader + 25); }, kNothing},
        {"cut within the image base", [](auto& f, bool) { f.resize(pe_bytes::kHeader + 55); }, kNothing},
        {"cut behind the image base", [](auto& f, bool) { f.resize(pe_bytes::kHeader + 56); }, "400000|1000||"},
        {"header beyond 2 GB", [](auto& f, bool) { Put(&f, 60, 0xFFFFFFF0U); }, kNothing},
        {"no signature: only the image base is read", [](auto& f, bool) { f[pe_bytes::kHeader] = 'N'; },
         "400000|1000||"},
        {"another magic", [](auto& f, bool) { Put(&f, pe_bytes::kHeader + 24, std::uint16_t{0x107}); }, kNothing},
        {"a count that leaves .sdbg out", [](auto& f, bool) { Put(&f, pe_bytes::kHeader + 6, std::uint16_t{2}); },
         "400000|3000|400000/3000/404/3/3|"},
        {"headers up to the end of the file, and on",
         [=](auto& f, bool is64) {
             Put(&f, pe_bytes::kHeader + 6, std::uint16_t{0xFFFF});
             f[section(is64, 1)] = '_';
             f[section(is64, 2)] = '_';
         },
         "400000|1000||"},
        {"cut within .sdbg's header", [=](auto& f, bool is64) { f.resize(section(is64, 3) - 1); }, "400000|3000||"},
        {"cut within .text's header", [=](auto& f, bool is64) { f.resize(section(is64, 2) - 1); }, "400000|1000||"},
        {"five letters are enough for .text", [=](auto& f, bool is64) { f.replace(section(is64, 1), 8, ".textual"); },
         kWhole},
        {"case matters", [=](auto& f, bool is64) { f.replace(section(is64, 1), 8, ".TEXT\0\0\0"s); },
         "400000|1000||407/e/4000"},
        {".sdbg needs all eight", [=](auto& f, bool is64) { f[section(is64, 2) + 7] = 'x'; },
         "400000|3000|400000/3000/404/3/3|"},
        {"the first .text counts", [=](auto& f, bool is64) { f.replace(section(is64, 0), 5, ".text"); },
         "400000|2000|400000/2000/400/4/4|407/e/4000"},
        {".sdbg of 7 bytes", [=](auto& f, bool is64) { Put(&f, section(is64, 2) + 8, 7U); },
         "400000|3000|400000/3000/404/3/3|"},
        {".sdbg of 8 bytes", [=](auto& f, bool is64) { Put(&f, section(is64, 2) + 8, 8U); },
         "400000|3000|400000/3000/404/3/3|407/8/4000"},
        {".sdbg one byte too long", [](auto& f, bool) { f.pop_back(); }, "400000|3000|400000/3000/404/3/3|"},
        {".sdbg around 4 GB", [=](auto& f, bool is64) { Put(&f, section(is64, 2) + 20, 0xFFFFFFFFU); },
         "400000|3000|400000/3000/404/3/3|"},
        {".text behind the end",
         [=](auto& f, bool is64) { Put(&f, section(is64, 1) + 20, static_cast<std::uint32_t>(f.size())); },
         "400000|3000||407/e/4000"},
        {".text without raw data", [=](auto& f, bool is64) { Put(&f, section(is64, 1) + 16, 0U); },
         "400000|3000||407/e/4000"},
    };
    for (const Case& c : cases)
        for (const bool is64 : {false, true}) {
            std::string file = TwoByText(is64);
            c.change(file, is64);
            EXPECT_EQ(Headers(file), c.expected) << c.name << (is64 ? ", 64" : ", 32");
        }
    EXPECT_EQ(Headers(pe_bytes::Image(true, 0x7FF123456789, {})), "7ff123456789|1000||") << "64 bits of base";
    EXPECT_EQ(GetPeMagic(Data(TwoByText(true)), TwoByText(true).size()), 0x20B);
    EXPECT_EQ(GetPeMagic(Data(TwoByText(false)), TwoByText(false).size()), 0x10B);
}

// --- The section

std::string Described(const SdbgMap& map) {
    std::ostringstream text;
    for (int i = 0; i < map.lineCount; ++i)
        text << map.lines[i].fileId << ":" << map.lines[i].line << "@" << std::hex << map.lines[i].rva << std::dec
             << " ";
    text << "|";
    for (int i = 0; i < map.fileCount; ++i)
        text << " " << map.files[i].fileId << "=" << (map.files[i].path == nullptr ? "(none)" : map.files[i].path);
    return text.str();
}

TEST(SdbgParse, SectionBytes) {
    const std::vector<Record> two = {{1, 10, 0x1000}, {2, 70000, 0x1004}};
    const std::string good = "1:10@1000 2:70000@1004 |";
    const auto table = [](std::uint32_t count, const std::string& entries) {
        std::string bytes;
        Append(&bytes, count);
        return bytes + entries;
    };
    const auto entry = [](std::uint32_t id, std::uint32_t length, const std::string& path) {
        std::string bytes;
        Append(&bytes, id);
        Append(&bytes, length);
        return bytes + path;
    };
    const std::string longest(32767, 'p');
    std::string mostFiles = good;
    for (int i = 0; i < 65535; ++i) mostFiles += " 0=(none)";
    const struct {
        const char* name;
        std::string bytes;
        std::string expected;  // empty: refused
    } cases[] = {
        {"nothing", "", ""},
        {"a magic alone", "SDBG", ""},
        {"version 1 without records", pe_bytes::Sdbg1({}), ""},
        {"version 2 without records", pe_bytes::Sdbg2({}), ""},
        {"another magic", "SDB3" + pe_bytes::Sdbg2(two).substr(4), ""},
        {"lower case", "sdbg" + pe_bytes::Sdbg1(two).substr(4), ""},
        {"version 1: file 1, 16 bits of line", pe_bytes::Sdbg1(two), "1:10@1000 1:4464@1004 |"},
        {"version 1 has no table", pe_bytes::Sdbg1(two) + table(1, entry(1, 1, "a")), "1:10@1000 1:4464@1004 |"},
        {"version 1 cut", pe_bytes::Sdbg1(two).substr(0, 19), ""},
        {"version 2 cut", pe_bytes::Sdbg2(two).substr(0, 31), ""},
        {"a count that overflows 32 bits", "SDB2\x56\x55\x55\x55" + std::string(64, '\0'), ""},
        {"version 2 without a table", pe_bytes::Sdbg2(two), good},
        {"three bytes of a table", pe_bytes::Sdbg2(two, "\1\0\0"s), good},
        {"a table", pe_bytes::Sdbg2(two, pe_bytes::FileTable({{1, "main.bas"}, {2, "part.inc"}})),
         good + " 1=main.bas 2=part.inc"},
        {"no files", pe_bytes::Sdbg2(two, table(0, "")), good},
        {"65535 files", pe_bytes::Sdbg2(two, table(65535, std::string(65535 * 8, '\0'))), mostFiles},
        {"65536 files", pe_bytes::Sdbg2(two, table(65536, entry(1, 1, "a"))), good},
        {"a file without a path", pe_bytes::Sdbg2(two, table(2, entry(4, 0, "") + entry(5, 1, "b"))),
         good + " 4=(none) 5=b"},
        {"entries that are not there", pe_bytes::Sdbg2(two, table(3, entry(4, 1, "a"))),
         good + " 4=a 0=(none) 0=(none)"},
        {"a path past the end ends the table",
         pe_bytes::Sdbg2(two, table(3, entry(4, 1, "a") + entry(5, 10, "") + entry(6, 1, "b"))),
         good + " 4=a 0=(none) 0=(none)"},
        {"a path of 32767 bytes", pe_bytes::Sdbg2(two, table(1, entry(4, 32767, longest))), good + " 4=" + longest},
        {"a path of 32768 bytes", pe_bytes::Sdbg2(two, table(2, entry(4, 32768, longest + "p") + entry(5, 1, "b"))),
         good + " 0=(none) 0=(none)"},
    };
    for (const auto& c : cases) {
        Map map;
        EXPECT_EQ(SdbgParseSection(Bytes(c.bytes), &map), !c.expected.empty()) << c.name;
        EXPECT_EQ(Described(map), c.expected.empty() ? "|" : c.expected) << c.name;
        EXPECT_EQ(map.lines != nullptr, map.lineCount > 0) << c.name;
        EXPECT_EQ(map.files != nullptr, map.fileCount > 0) << c.name;
    }
}

// --- Queries

void Fill(Map* map, const std::vector<Record>& records, std::string_view table = {}) {
    ASSERT_TRUE(SdbgParseSection(Bytes(pe_bytes::Sdbg2(records, table)), map));
}

const std::vector<Record> kTwoFiles = {{1, 10, 0x1000}, {1, 12, 0x1010}, {2, 12, 0x1020}, {2, 3, 0x1030},
                                       {1, 12, 0x1040}, {0, 0, 0x1050},  {1, 20, 0x1060}};

TEST(SdbgQueries, OfTwoFiles) {
    for (const bool indexed : {false, true}) {
        SCOPED_TRACE(indexed);
        Map map;
        Fill(&map, kTwoFiles, pe_bytes::FileTable({{1, "a"}, {2, "b"}, {1, "again"}, {0, "zero"}}));
        if (indexed) SdbgIndex(&map);
        const struct {
            std::uint32_t rva, line, file;
        } byRva[] = {{0, 0, 0},       {0xFFF, 0, 0},  {0x1000, 10, 1}, {0x100F, 10, 1},
                     {0x1020, 12, 2}, {0x103F, 3, 2}, {0x1055, 0, 0},  {0xFFFFFFFFU, 20, 1}};
        for (const auto& c : byRva) {
            EXPECT_EQ(SdbgRvaToLine(&map, c.rva), c.line) << c.rva;
            EXPECT_EQ(SdbgRvaToFileId(&map, c.rva), c.file) << c.rva;
        }
        const struct {
            std::int32_t line;
            std::uint32_t any, first, second;  // whatever file, file 1, file 2
        } byLine[] = {{-1, 0, 0, 0},          {0, 0, 0, 0},
                      {3, 0x1030, 0, 0x1030}, {10, 0x1000, 0x1000, 0},
                      {11, 0, 0, 0},          {12, 0x1010, 0x1010, 0x1020},
                      {21, 0, 0, 0}};
        for (const auto& c : byLine) {
            EXPECT_EQ(SdbgLineToRva(&map, c.line), c.any) << c.line;
            EXPECT_EQ(SdbgFileLineToRva(&map, 1, c.line), c.first) << c.line;
            EXPECT_EQ(SdbgFileLineToRva(&map, 2, c.line), c.second) << c.line;
        }
        const struct {
            std::uint32_t rva, line, file;
            std::int32_t next;
        } steps[] = {{0x1000, 10, 1, 1},  {0x1010, 12, 1, 2}, {0x1030, 3, 2, 4},   {0x1040, 12, 1, 6},
                     {0x1060, 20, 1, -1}, {0, 10, 1, 1},      {0x104F, 20, 1, -1}, {0x1051, 0, 0, 6}};
        for (const auto& c : steps) EXPECT_EQ(SdbgNextStop(&map, c.rva, c.line, c.file), c.next) << c.rva;
        EXPECT_STREQ(SdbgFileIdToPath(&map, 1), "a");
        EXPECT_STREQ(SdbgFileIdToPath(&map, 2), "b");
        EXPECT_EQ(SdbgFileIdToPath(&map, 3), nullptr);
        EXPECT_EQ(SdbgFileIdToPath(&map, 0), nullptr) << "though the table has one";
    }
}

TEST(SdbgQueries, TheTextRangeLimitsLookupsByAddress) {
    Map map;
    Fill(&map, kTwoFiles);
    map.textRva = 0x1010;
    map.textSize = 0x20;
    const std::uint32_t expected[][2] = {{0x100F, 0}, {0x1010, 12}, {0x102F, 12}, {0x1030, 0}};
    for (const auto& [rva, line] : expected) EXPECT_EQ(SdbgRvaToLine(&map, rva), line) << rva;
    EXPECT_EQ(SdbgFindRecord(&map, 0x1030), 3) << "does not ask for the range";
    map.textSize = 0xFFFFFFFFU;  // ends above 4 GB
    EXPECT_EQ(SdbgRvaToLine(&map, 0x2000), 20U);
}

TEST(SdbgQueries, AnEmptyMapAndAFreedOneKnowNothing) {
    Map map;
    SdbgIndex(&map);
    for (const bool freed : {false, true}) {
        EXPECT_EQ(SdbgRvaToLine(&map, 0), 0U) << freed;
        EXPECT_EQ(SdbgLineToRva(&map, 1), 0U) << freed;
        EXPECT_EQ(SdbgNextStop(&map, 0, 0, 0), -1) << freed;
        EXPECT_EQ(SdbgFindRecord(&map, 0xFFFFFFFFU), -1) << freed;
        EXPECT_EQ(SdbgFileIdToPath(&map, 1), nullptr) << freed;
        if (freed) break;
        Fill(&map, kTwoFiles, pe_bytes::FileTable({{1, "a"}}));
        SdbgIndex(&map);
        SdbgFree(&map);
    }
}

// --- BASIC lines

TEST(BasicLines, Classified) {
    const struct {
        std::string line;
        bool comment, control;
    } cases[] = {
        {"", true, false},
        {" \t ", true, false},
        {"\r", true, false},
        {"  \r\n", true, false},
        {"\t'x = 1", true, false},
        {"rem", true, false},
        {" Rem\tx", true, false},
        {"REM\r", true, false},
        {"REMARK = 1", false, false},
        {"REM:x", false, false},
        {"x = 1 ' no", false, false},
        {"\v", false, false},
        {"ELSE", false, true},
        {"\t else\r", false, true},
        {"Else'so", false, true},
        {"ELSE IF a THEN", false, true},
        {"ELSEIF a THEN", false, false},
        {"ELSE:", false, false},
        {"ELSEWHERE = 1", false, false},
        {"END IF", false, true},
        {"end if ' x", false, true},
        {"END  IF", false, false},
        {"END\tIF", false, false},
        {"ENDIF", false, false},
        {"END IFS", false, false},
        {"END", false, false},
        {"EL", false, false},
        {"ELSE\0"s, false, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(IsBasicCommentOrBlank(c.line), c.comment) << testing::PrintToString(c.line);
        EXPECT_EQ(IsBasicControlOnlyLine(c.line), c.control) << testing::PrintToString(c.line);
    }
}

std::vector<int> Collected(const std::string& source, int capacity = kMaxPbmainLines) {
    std::vector<std::uint32_t> lines(static_cast<std::size_t>(kMaxPbmainLines), 0xFFFFFFFFU);
    const int count = CollectPbmainLines(source, lines.data(), capacity);
    EXPECT_TRUE(count == kMaxPbmainLines || lines[static_cast<std::size_t>(count)] == 0xFFFFFFFFU) << "wrote too far";
    return {lines.begin(), lines.begin() + count};
}

TEST(BasicLines, StatementsOfPbmain) {
    const struct {
        const char* name;
        std::string source;
        std::vector<int> lines;
    } cases[] = {
        {"empty", "", {}},
        {"no routine", "x = 1\nEND SUB\n", {}},
        {"comments, blanks and control lines are none", "SUB PBMAIN\n\n  x = 1\n   ' note\nELSE\nEND SUB\n", {3, 6}},
        {"CRLF, any case, blanks before the header",
         "DIM g\r\n\t function pbmain () as long\r\n  x\r\n end function\r\ny\r\n",
         {3, 4}},
        {"the last line has no LF", "SUB PBMAIN\nx\nEND SUB", {2, 3}},
        {"no closing line", "SUB PBMAIN\nx\n", {2}},
        {"# in column 1 only", "SUB PBMAIN\n#DEBUG\n #DEBUG\nEND SUB", {3, 4}},
        {"a prefix is enough", "SUB PBMAINLY\nx\nEND SUBWAY\ny", {2, 3}},
        {"two blanks are no header", "SUB  PBMAIN\nx\nEND SUB", {}},
        {"another END goes on", "SUB PBMAIN\nEND\nEND SELECT\nEND IF x\nEND SUB\nz", {2, 3, 5}},
        {"a second routine goes on collecting", "SUB PBMAIN\nEND SUB\nx\nFUNCTION PBMAIN\ny\nEND FUNCTION", {2, 5, 6}},
        {"UTF-16 has no such line", std::string("S\0U\0B\0 \0P\0B\0M\0A\0I\0N\0\n\0x\0\n\0", 26), {}},
    };
    for (const auto& c : cases) EXPECT_EQ(Collected(c.source), c.lines) << c.name;

    std::string big = "SUB PBMAIN\n";
    for (int i = 0; i < 600; ++i) big += "x\n";
    EXPECT_EQ(Collected(big).size(), 512U);
    EXPECT_EQ(Collected(big).back(), 513);
    EXPECT_EQ(Collected(big, 3), (std::vector<int>{2, 3, 4}));
}

TEST(BasicLines, TheIndexOfASource) {
    std::string source = "ELSE\nSUB PBMAIN\n a\nIF b\nELSE\n c\nEND IF\n";
    const BasicLineIndex index = BuildBasicLineIndex(source);
    const std::uint32_t previous[] = {0, 0, 0, 0, 3, 4, 4, 6, 6};  // of line 0, 1, ...
    for (std::int64_t line = 0; line < 9; ++line) {
        EXPECT_EQ(IsControlOnly(index, line), line == 1 || line == 5 || line == 7) << line;
        EXPECT_EQ(PreviousPbmainLine(index, line), previous[line]) << line;
    }
    for (const std::int64_t outside : {std::int64_t{-1}, std::int64_t{8}, std::int64_t{0xFFFFFFFF}})
        EXPECT_FALSE(IsControlOnly(index, outside)) << outside;
    for (int i = 0; i < 600; ++i) source += "x\n";
    EXPECT_EQ(PreviousPbmainLine(BuildBasicLineIndex(source + "ELSE"), 608), 516U) << "the 512th statement";
}

// --- Side files and traps

constexpr TextSectionInfo kText = {0x400000, 0x1000, 0x400, 0x200, 0x1800};  // code from 401000 to 402800

std::string At(std::size_t size, std::size_t at, std::string_view text) {
    std::string bytes(size, '\0');
    return bytes.replace(at, text.size(), text);
}

std::string With(std::string bytes, std::size_t at, std::uint32_t value) {
    Put(&bytes, at, value);
    return bytes;
}

TEST(PbdMap, WhereTheRoutineStarts) {
    const std::string name = At(20000, 10000, "PBMAIN");
    const struct {
        const char* name;
        std::string side;
        std::uint32_t rva;
    } cases[] = {
        {"three bytes", "abc", 0x1000},
        {"nothing that fits", name, 0x1000},
        {"behind the name, at an odd offset", With(name, 10007, 0x401234), 0x1234},
        {"the smallest near the name", With(With(name, 9000, 0x401300), 11000, 0x401200), 0x1200},
        {"near wins over smaller far away", With(With(name, 1, 0x401100), 11000, 0x401200), 0x1200},
        {"the first byte of the reach", With(With(name, 5904, 0x401234), 1, 0x401100), 0x1234},
        {"a byte before it", With(With(name, 5903, 0x401234), 1, 0x401100), 0x1100},
        {"the last bytes of the reach", With(With(name, 14092, 0x401234), 1, 0x401100), 0x1234},
        {"a byte behind them", With(With(name, 14093, 0x401234), 1, 0x401100), 0x1100},
        {"the first 64 bytes are none", With(name, 10010, 0x401040), 0x1000},
        {"one more is", With(name, 10010, 0x401041), 0x1041},
        {"the end is none", With(name, 10010, 0x402800), 0x1000},
        {"the byte before it is", With(name, 10010, 0x4027FF), 0x27FF},
        {"the second name, when the first has none",
         With(With(At(20000, 100, "PBMAIN") + name, 30300, 0x401234), 39000, 0x401100), 0x1234},
        {"two names with a common reach",
         With(With(At(20000, 9000, "PBMAIN").replace(10000, 6, "PBMAIN"), 14090, 0x401234), 19000, 0x401100), 0x1234},
        {"no name near: the whole file", With(At(20000, 10, "PBMAIN"), 19000, 0x401234), 0x1234},
        {"the file's last four bytes", With(At(20000, 10, "PBMAIN"), 19996, 0x401234), 0x1234},
        {"a short file: the last four bytes are not near", With(With(At(24, 8, "PBMAIN"), 20, 0x401100), 16, 0x401234),
         0x1234},
    };
    for (const auto& c : cases) EXPECT_EQ(PbdFindPbmainStartRva(Bytes(c.side), kText), c.rva) << c.name;

    TextSectionInfo text = kText;
    text.virtualSize = 0;  // the raw size counts
    EXPECT_EQ(PbdFindPbmainStartRva(Bytes(With(name, 10010, 0x4011FF)), text), 0x11FFU);
    EXPECT_EQ(PbdFindPbmainStartRva(Bytes(With(name, 10010, 0x401200)), text), 0x1000U);
    text.imageBase = 0xFFFFFFFFFFFFF000;  // base + address wraps
    EXPECT_EQ(PbdFindPbmainStartRva(Bytes(With(name, 10010, 0x100)), text), 0x1000U);
}

TEST(PbdMap, ContainsTheName) {
    EXPECT_FALSE(PbdContainsPbmain(Bytes("PBMAIN")));
    EXPECT_TRUE(PbdContainsPbmain(Bytes("PBMAIN\n")));
    EXPECT_TRUE(PbdContainsPbmain(Bytes("..PBMAIN")));
    EXPECT_FALSE(PbdContainsPbmain(Bytes("pbmain..")));
    EXPECT_FALSE(PbdContainsPbmain({}));
}

TEST(PbdMap, OneTrapForEachRun) {
    const std::string code = "\xCC.\xCC\xCC.\xCC.";
    const TextSectionInfo text = {0x400000, 0x1000, 2, 7, 7};
    const auto traps = [](const std::string& program, const TextSectionInfo& info, std::uint32_t start,
                          int capacity = 9) {
        std::vector<std::uint32_t> found(9);
        found.resize(
            static_cast<std::size_t>(CollectNativeTrapRvas(Bytes(program), info, start, found.data(), capacity)));
        return found;
    };
    using Rvas = std::vector<std::uint32_t>;
    EXPECT_EQ(traps("ab" + code + "\xCC", text, 0x1000), (Rvas{0x1000, 0x1002, 0x1005}));
    EXPECT_EQ(traps("ab" + code, text, 0), (Rvas{0x1000, 0x1002, 0x1005})) << "a start below the section";
    EXPECT_EQ(traps("ab" + code, text, 0x1003), (Rvas{0x1003, 0x1005})) << "within a run";
    EXPECT_EQ(traps("ab" + code, text, 0x1006), Rvas{});
    EXPECT_EQ(traps("ab" + code, text, 0x1007).size(), 3U) << "a start beyond the region: from its begin";
    EXPECT_EQ(traps("ab" + code, text, 0x1000, 2), (Rvas{0x1000, 0x1002}));
    EXPECT_EQ(traps("ab" + code.substr(0, 3), text, 0x1000), (Rvas{0x1000, 0x1002})) << "cut file";
    EXPECT_EQ(traps("ab", text, 0x1000), Rvas{}) << "nothing of it in the file";
}

TEST(PbdMap, StatementsAndTrapsArePairedByOrder) {
    const auto program = [](std::size_t traps) {
        std::string code(100, '\x90');
        for (std::size_t i = 0; i < traps; ++i) code += "\xCC\x90";
        return pe_bytes::Image(false, 0x400000, {{".text", 0x1000, code}});
    };
    const auto source = [](int statements) {
        std::string text = "SUB PBMAIN\n";
        for (int i = 1; i < statements; ++i) text += "x\n";
        return text + "END SUB\n";
    };
    std::string side = "......PBMAIN..";
    Append(&side, 0x401064U);
    Append(&side, 0U);

    Map map;
    PbdParts parts;
    ASSERT_TRUE(PbdBuildMap(Bytes(program(13)), Bytes(side), source(10), &map, &parts));
    const auto last = static_cast<std::int32_t>(map.lines[map.lineCount - 1].line);
    EXPECT_TRUE(SdbgCoversLine(&map, static_cast<std::int32_t>(map.lines[0].line)) && SdbgCoversLine(&map, last));
    EXPECT_FALSE(SdbgCoversLine(&map, 0) || SdbgCoversLine(&map, last + 1)) << "it tells of PBMAIN only";
    EXPECT_EQ(map.lineCount, 10);
    EXPECT_EQ(parts.lineCount, 10);
    EXPECT_EQ(parts.trapCount, 13);
    EXPECT_EQ(parts.startRva, 0x1064U);
    for (std::uint32_t i = 0; i < 10; ++i) {
        EXPECT_EQ(map.lines[i].fileId, 1U);
        EXPECT_EQ(map.lines[i].line, i + 2);
        EXPECT_EQ(map.lines[i].rva, 0x1064 + 2 * i);
    }
    EXPECT_EQ(map.imageBase, 0x400000U);
    EXPECT_EQ(map.textRva, 0x1000U);
    EXPECT_EQ(map.textSize, 126U);
    EXPECT_EQ(map.nativeTrapMap, 1U);
    EXPECT_EQ(map.neutralizeTraps, 0U);
    EXPECT_EQ(map.files, nullptr);

    const struct {
        const char* name;
        std::string program, side, source;
        int count;
    } cases[] = {
        {"fewer traps than statements", program(3), side, source(10), 3},
        {"more than fit", program(600), side, source(600), 512},
        {"no traps", program(0), side, source(10), 0},
        {"no statements", program(5), side, "x = 1\n", 0},
        {"no source", program(5), side, "", 0},
        {"no name in the side file", program(5), "......pbmain........", source(5), 0},
        {"no executable", "", side, source(5), 0},
        {"no .text", pe_bytes::Image(false, 0x400000, {{".code", 0x1000, "\xCC"}}), side, source(5), 0},
    };
    for (const auto& c : cases) {
        Map one;
        PbdParts ignored;
        EXPECT_EQ(PbdBuildMap(Bytes(c.program), Bytes(c.side), c.source, &one, &ignored), c.count > 0) << c.name;
        EXPECT_EQ(one.lineCount, c.count) << c.name;
        EXPECT_EQ(one.lines != nullptr, c.count > 0) << c.name;
    }
}

}  // namespace
