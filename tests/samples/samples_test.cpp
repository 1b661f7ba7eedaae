// The stand-in compilers in-process: messages, line maps, command lines, hostile sources. Natively this runs under the
// sanitizers.
#include "driver.h"
#include "sample_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <regex>
#include <set>
#include <span>

#include "program/basic_lines.h"
#include "program/pbd_map.h"

namespace {

using namespace samples;
using standin::kProfiles;
using standin::Profile;

struct Result {
    int exit = 0;
    std::string text;
};

Result Compile(const Profile& profile, const std::vector<std::string>& args) {
    Result result;
    result.exit = standin::RunCompiler(profile, args, result.text);
    return result;
}

bool IsKeldor(const Profile& profile) { return profile.style == standin::CommandStyle::Keldor; }

// Compiles `source` in its folder to NAME.exe there.
Result CompileFile(const Profile& profile, const std::filesystem::path& source, std::vector<std::string> more = {}) {
    std::vector<std::string> args = std::move(more);
    if (IsKeldor(profile))
        args.push_back("/L");
    else
        args.insert(args.end(), {"-o", Utf8(std::filesystem::path(source).replace_extension(".exe"))});
    args.push_back(Utf8(source));
    return Compile(profile, args);
}

Result CompileText(const Profile& profile, const std::string& text) {
    const TempFolder folder;
    WriteBytes(folder.path / "test.bas", text);
    return CompileFile(profile, folder.path / "test.bas");
}

std::string Main(const std::string& body) { return "FUNCTION PBMAIN () AS LONG\n" + body + "\nEND FUNCTION\n"; }

std::string Repeat(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) all += text;
    return all;
}

// The messages of errors.bas in the plainest shape: colons, no banner, no explanations, no folder.
std::string PlainMessages(const std::string& text) {
    static const std::regex kParens(R"(\((\d+),(\d+)\): (error|warning):)");
    std::string plain;
    for (const std::string& line : Lines(text)) {
        if (line.starts_with("error[") || line.starts_with("help:") || line.starts_with("fix:")) continue;
        if (line.find("stand-in") == std::string::npos)
            plain += std::regex_replace(line, kParens, ":$1:$2: $3:") + "\n";
    }
    return plain;
}

TEST(Samples, ErrorsSampleGivesItsMessagesInEachShape) {
    for (const Profile& profile : kProfiles) {
        SCOPED_TRACE(profile.name);
        const TempFolder folder;
        std::filesystem::copy_file(kFolder / "errors.bas", folder.path / "errors.bas");
        const Result result = CompileFile(profile, folder.path / "errors.bas");
        EXPECT_EQ(result.exit, 1);
        EXPECT_FALSE(std::filesystem::exists(folder.path / "errors.exe"));
        const std::string prefix = Utf8(folder.path / "errors.bas");
        std::string text = result.text;
        for (size_t at; (at = text.find(prefix)) != std::string::npos;) text.replace(at, prefix.size(), "errors.bas");
        EXPECT_EQ(PlainMessages(text), Expected("errors"));
        const bool parens = profile.shape == standin::DiagnosticShape::Parens;
        EXPECT_EQ(text.find("errors.bas(3,10): error: ") != std::string::npos, parens);
        const std::vector<std::string> lines = Lines(text);
        for (size_t i = 0; i + 2 < lines.size() && profile.explains; ++i) {
            if (lines[i].find(": error: ") == std::string::npos) continue;
            EXPECT_TRUE(lines[i + 1].starts_with("error[E") && lines[i + 2].starts_with("help: ")) << lines[i];
        }
        EXPECT_EQ(text.find("error[E004]: ") != std::string::npos, profile.explains);
        EXPECT_EQ(text.find("\nfix: LOCAL missing AS LONG\n") != std::string::npos, profile.explains);
    }
}

TEST(Samples, MessagesNameTheIncludedFileAndStopAtTheLimit) {
    const TempFolder folder;
    std::filesystem::create_directories(folder.path / "inc");
    WriteBytes(folder.path / "inc" / "part.inc", "SUB Part\r\n  x = 1\r\nEND SUB\r\n");
    WriteBytes(folder.path / "main.bas", "#INCLUDE \"part.inc\"\n" + Main("Part"));
    const Profile& profile = kProfiles[0];
    Result result = CompileFile(profile, folder.path / "main.bas", {"-I" + Utf8(folder.path / "inc")});
    EXPECT_NE(result.text.find("part.inc:2:3: error: variable 'x' is not declared"), std::string::npos) << result.text;
    EXPECT_EQ(result.text.find("main.bas:"), std::string::npos) << result.text;
    WriteBytes(folder.path / "main.bas", Main(Repeat("PRINT )\n", 500)));
    result = CompileFile(profile, folder.path / "main.bas");
    EXPECT_NE(result.text.find("\n100 errors, 0 warnings\n"), std::string::npos) << result.text;
    EXPECT_EQ(std::count(result.text.begin(), result.text.end(), '\n'), 103);
}

std::span<const uint8_t> Bytes(const std::string& text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

// Lines that must have a record: those in procedures with code of their own.
std::set<uint32_t> ExecutableLines(const std::string& source) {
    static const std::regex kNoCode(R"(\s*(LOCAL|DIM|STATIC|ELSE|END IF|END SELECT|CASE ELSE|DO)\s*('.*)?|)"
                                    R"(\s*(LOCAL|DIM|STATIC) .*|\s*('.*)?)");
    std::set<uint32_t> lines;
    bool inside = false, continued = false;
    uint32_t number = 0;
    for (const std::string& line : Lines(source)) {
        ++number;
        inside = inside || line.starts_with("SUB ") || line.starts_with("FUNCTION ");
        if (inside && !continued && !std::regex_match(line, kNoCode)) lines.insert(number);
        if (line.starts_with("END SUB") || line.starts_with("END FUNCTION")) inside = false;
        continued = line.ends_with(" _");
    }
    return lines;
}

// As the editor's debugger reads them.
TEST(LineMaps, SdbgCoversEveryStatementInOrder) {
    for (const Sample& sample : kSamples)
        for (const Profile& profile : kProfiles) {
            if (IsKeldor(profile)) continue;
            SCOPED_TRACE(std::string(sample.name) + " by " + std::string(profile.name));
            const bool v1 = !profile.x64;
            const TempFolder folder;
            const std::string path = Utf8(folder.path / "a.exe"), main = Utf8(kFolder / sample.source);
            ASSERT_EQ(Compile(profile, {"-o", path, "--debug", main}).exit, 0);
            const std::string program = ReadBytes(folder.path / "a.exe");
            uint32_t length = 0, rva = 0, offset = 0;
            const uint8_t* const section =
                FindSdbgSection(Bytes(program).data(), program.size(), &length, &rva, &offset);
            SdbgMap map;
            ASSERT_TRUE(section != nullptr && SdbgParseSection({section, length}, &map));
            EXPECT_EQ(program.substr(offset, 4), v1 ? "SDBG" : "SDB2");
            TextSectionInfo text;
            ASSERT_TRUE(GetTextSectionInfo(Bytes(program).data(), program.size(), &text));
            std::map<uint32_t, std::set<uint32_t>> mapped;
            uint32_t last = text.virtualAddress + 63;
            for (const SdbgLine& record : std::span(map.lines, static_cast<size_t>(map.lineCount))) {
                EXPECT_GT(record.rva, last) << "line " << record.line;
                last = record.rva;
                mapped[record.fileId].insert(record.line);
            }
            EXPECT_LT(last, text.virtualAddress + text.virtualSize);
            if (v1) {
                mapped[1].erase(0);
                EXPECT_EQ(mapped[1], ExecutableLines(ReadBytes(main)));
            } else {
                EXPECT_GE(map.fileCount, 1);
                for (const SdbgFile& file : std::span(map.files, static_cast<size_t>(map.fileCount)))
                    EXPECT_EQ(mapped[file.fileId], ExecutableLines(ReadBytes(file.path))) << file.path;
                const std::string first = Lines(ReadBytes(main))[map.lines[0].line - 1];
                EXPECT_TRUE(first.starts_with("FUNCTION PBMAIN")) << first;
            }
            SdbgFree(&map);
        }
}

// A PBMAIN whose operands, frame offsets, strings, jumps and line numbers would hold CC bytes by themselves.
std::string TrapTorture() {
    std::string body =
        "LOCAL q AS QUAD, d AS DOUBLE, i, j AS LONG\nSTATIC far(203) AS LONG\nLOCAL near(204) AS QUAD\n"
        "LOCAL wide(1399) AS QUAD\n";
    for (int i = 0; i < 60; ++i) body += "STATIC s" + std::to_string(i) + " AS QUAD\ns" + std::to_string(i) + " = 1\n";
    for (int i = 0; i < 60; ++i) body += "LOCAL v" + std::to_string(i) + " AS LONG\n";
    for (int i = 0; i < 60; ++i) body += "v" + std::to_string(i) + " = &HCC + " + std::to_string(i) + "\n";
    body += "i = &HCCCCCCCC\nq = &HCCCCCCCCCCCCCCCC\nd = 1.75E-60 + 204\nnear(204) = q\nfar(204 - 1) = i\nREM:\n";
    body += "IF i = 204 _\n  OR q = 52428 _\n  THEN\nPRINT i\nELSE ' comment\nPRINT q\nEND IF\n";
    for (int turn = 0; turn < 40; ++turn) {
        const std::string name = std::to_string(turn);
        body += "FOR j = 1 TO 204\n" + Repeat("i = i XOR " + std::to_string(turn * 5) + "\n", turn) +
                "IF i > 1 THEN i = i \\ 204 ELSE PRINT \"" + std::string(static_cast<size_t>(turn * 7 % 230), 'x') +
                "\"\nWHILE i > " + name +
                "\ni = i - 1\nWEND\nNEXT j\nSELECT CASE i\nCASE 204\nPRINT near(i)\nCASE ELSE\n" +
                "q = q * i\nEND SELECT\nDO\nq = q \\ 2\nLOOP UNTIL q < 204\n";
    }
    // Forward jumps over bodies of many lengths, and strings beyond offset CC00 of the data.
    for (int length = 0; length < 256; ++length)
        body += "IF i THEN\n" + Repeat("i = 1\n", length % 16) + "ELSE\n" + Repeat("q = 1\n", length / 16) + "END IF\n";
    body += Repeat("PRINT \"" + std::string(220, 'y') + "\"\n", 240);
    body += "Wide(" + Repeat("1, ", 25) + "1)\n";  // 204 bytes of arguments
    std::string parameters = "BYVAL last AS LONG";
    for (int i = 0; i < 25; ++i) parameters = "BYVAL p" + std::to_string(i) + " AS QUAD, " + parameters;
    return "' comment\n\nDIM early(50) AS LONG\nSUB PBMAIN\n" + body + "END SUB\nSUB Wide(" + parameters +
           ")\n  PRINT 204\nEND SUB\n";
}

TEST(LineMaps, EveryStatementLineOfPbmainHasOneTrapBeforeItsCode) {
    const Profile& profile = kProfiles[standin::FindProfile("KeldorBASIC")];
    std::map<std::string, std::string> sources = {{"torture", TrapTorture()}};
    for (const Sample& sample : kSamples)
        if (sample.name != "multifile") sources[std::string(sample.name)] = ReadBytes(kFolder / sample.source);
    for (const auto& [name, source] : sources) {
        SCOPED_TRACE(name);
        const TempFolder folder;
        WriteBytes(folder.path / "a.bas", source);
        const Result result =
            CompileFile(profile, folder.path / "a.bas", {"/Q", "/D", "/ASMOUT:" + Utf8(folder.path / "a.asm")});
        ASSERT_EQ(result.exit, 0) << result.text;
        const std::string program = ReadBytes(folder.path / "a.exe"), side = ReadBytes(folder.path / "a.exe.pbd");
        TextSectionInfo section;
        ASSERT_TRUE(GetTextSectionInfo(Bytes(program).data(), program.size(), &section));
        constexpr int kMost = 65536;
        std::vector<uint32_t> traps(kMost), lines(kMost);
        const uint32_t start = PbdFindPbmainStartRva(Bytes(side), section);
        traps.resize(static_cast<size_t>(CollectNativeTrapRvas(Bytes(program), section, start, traps.data(), kMost)));
        lines.resize(static_cast<size_t>(CollectPbmainLines(source, lines.data(), kMost)));
        ASSERT_EQ(traps.size(), lines.size());
        // In the listing each trap stands below the comment with its own line or, for lines without code, a later one.
        std::map<std::string, uint32_t> lineAt;
        uint32_t current = 0;
        for (const std::string& line : Lines(ReadBytes(folder.path / "a.asm"))) {
            if (line.starts_with("; ")) current = static_cast<uint32_t>(std::atoi(line.c_str() + 2));
            if (line.size() > 10) lineAt[line.substr(2, 8)] = current;
        }
        static const std::regex kOwnCode(
            R"(\s*(PRINT|FOR|NEXT|WHILE|WEND|LOOP|IF|SELECT|EXIT|END FUNCTION|END SUB|[a-z]\w* =).*)");
        const std::vector<std::string> text = Lines(source);
        size_t withCode = 0;
        for (size_t i = 0; i < traps.size(); ++i) {
            char address[16];
            std::snprintf(address, sizeof address, "%08X", 0x400000 + traps[i]);
            if (!std::regex_match(text[lines[i] - 1], kOwnCode)) continue;
            ++withCode;
            EXPECT_EQ(lineAt[address], lines[i]) << text[lines[i] - 1];
        }
        EXPECT_GE(withCode, 3u);
        ASSERT_EQ(CompileFile(profile, folder.path / "a.bas").exit, 0);
        EXPECT_FALSE(std::filesystem::exists(folder.path / "a.exe.pbd")) << "an old database must not stay";
    }
}

TEST(CommandLine, EachCompilerTakesItsOwnSwitches) {
    const struct {
        std::string_view name, compiler;
        std::vector<std::string> args;  // SRC, PRG and DIR stand for paths
        int exit;
        std::string_view written;  // what appears beside the source
    } cases[] = {
        {"build", "KVXA64", {"-o", "PRG", "-O2", "SRC"}, 0, "p.exe"},
        {"check", "KVXC64", {"-o", "PRG", "--syntax-only", "SRC"}, 0, ""},
        {"no listing", "KVXA64", {"-o", "PRG", "--asm:DIR/l.asm", "SRC"}, 2, ""},
        {"listing", "KVXB64", {"-o", "PRG", "--asm:DIR/l.asm", "SRC"}, 0, "l.asm p.exe"},
        {"listing after a blank", "KVXA32", {"-o", "PRG", "/ASMOUT:", "DIR/l.asm", "SRC"}, 0, "l.asm p.exe"},
        {"beside the source", "KeldorBASIC", {"SRC", "/L", "/Q", "-O0"}, 0, "s.exe"},
        {"with a debug database", "KeldorBASIC", {"SRC", "/L", "/Q", "/D"}, 0, "s.exe s.exe.pbd"},
        {"no link", "KeldorBASIC", {"SRC", "/Q"}, 0, ""},
        {"listing and includes", "KeldorBASIC", {"SRC", "/L", "/IDIR", "/ASMOUT:DIR/l.asm"}, 0, "l.asm s.exe"},
        {"unknown switch", "KeldorBASIC", {"SRC", "/X"}, 2, ""},
        {"no output", "KVXA64", {"SRC"}, 2, ""},
        {"two sources", "KVXA64", {"-o", "PRG", "SRC", "SRC"}, 2, ""},
        {"value missing", "KVXA32", {"SRC", "-o"}, 2, ""},
        {"source missing", "KVXA64", {"-o", "PRG", "DIR/none.bas"}, 1, ""},
        {"source is a folder", "KVXA64", {"-o", "PRG", "DIR"}, 1, ""},
        {"output in no folder", "KVXA64", {"-o", "DIR/none/p.exe", "SRC"}, 1, ""},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(std::string(one.name) + ", " + std::string(one.compiler));
        const TempFolder folder;
        WriteBytes(folder.path / "s.bas", Main("PRINT 1"));
        std::vector<std::string> args;
        for (std::string arg : one.args) {
            for (const auto& [word, file] : {std::pair{"SRC", "s.bas"}, {"PRG", "p.exe"}, {"DIR", ""}})
                if (const size_t at = arg.find(word); at != std::string::npos)
                    arg.replace(at, 3, Utf8(*file ? folder.path / file : folder.path));
            args.push_back(arg);
        }
        const Result result = Compile(kProfiles[standin::FindProfile(one.compiler)], args);
        EXPECT_EQ(result.exit, one.exit) << result.text;
        EXPECT_EQ(result.text.find("error:") != std::string::npos, one.exit != 0) << result.text;
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path))
            names.insert(Utf8(entry.path().filename()));
        names.erase("s.bas");
        std::string written;
        for (const std::string& name : names) written += (written.empty() ? "" : " ") + name;
        EXPECT_EQ(written, one.written);
    }
}

TEST(Hostile, LimitsGiveMessages) {
    struct Case {
        std::string_view name;
        std::string text;
        std::string_view message;
    };
    std::string bomb = "#INCLUDE \"test.bas\"\n";
    const Case cases[] = {
        {"NUL", std::string("FUNCTION\0PBMAIN", 15), "1:9: error: NUL byte"},
        {"UTF-16",
         std::string("\xFF\xFE"
                     "F\0U\0",
                     6),
         "error: NUL byte"},
        {"long line", Main("PRINT \"" + std::string(9000, 'x') + "\""), "2:1: error: line is longer than 8192 bytes"},
        {"long name", Main(std::string(100, 'n') + " = 1"), "error: name is longer than 64 characters"},
        {"parentheses", Main("PRINT " + std::string(5000, '(')), "error: expression is nested too deeply"},
        {"signs", Main("PRINT " + std::string(5000, '-') + "1"), "error: expression is nested too deeply"},
        {"long sum", Main("PRINT 1" + Repeat(" + _\n 1", 30000)), "error: expression is nested too deeply"},
        {"blocks", Main(Repeat("DO\n", 5000)), "error: blocks are nested more than 64 deep"},
        {"single-line IFs", Main(Repeat("IF 1 THEN ", 800) + "PRINT 1"), "error:"},
        {"cases", Main("SELECT CASE 1\nCASE 1" + Repeat(", 1", 2000) + "\nEND SELECT"), "more than 256 values"},
        {"array", "DIM a(999999999) AS LONG\n" + Main(""), "1:7: error: array has more than"},
        {"frame", Main("LOCAL a(200000) AS QUAD\na(0) = 1"), "error: local variables of 'PBMAIN' take more than 1 MB"},
        {"data", Repeat("DIM a(8000000) AS QUAD\n", 1) + "DIM b(8000000) AS QUAD\nDIM c(8000000) AS QUAD\n" + Main(""),
         "error: variables take more than 128 MB"},
        {"parameters", "SUB S(a1 AS LONG" + Repeat(", a AS LONG", 40) + ")\nEND SUB\n" + Main(""),
         "more than 32 parameters"},
        {"itself", bomb + Main(""), "1:10: error: 'test.bas' includes itself"},
        {"number", Main("PRINT 99999999999999999999"), "2:7: error: number '99999999999999999999' is too large"},
        {"nothing", "", "1:1: error: the program has no FUNCTION PBMAIN"},
        {"reserved", "FUNCTION PBMAIN2 () AS LONG\nEND FUNCTION\n" + Main(""),
         "1:1: error: names that begin with PBMAIN"},
    };
    for (const Case& one : cases) {
        const Result result = CompileText(kProfiles[0], one.text);
        EXPECT_EQ(result.exit, 1) << one.name;
        EXPECT_NE(result.text.find(one.message), std::string::npos) << one.name << ": " << result.text.substr(0, 600);
    }
}

// Any bytes end in a message or a program, within bounds; the sanitizers see what does not.
TEST(Hostile, CutAndGarbledSourcesNeverCrash) {
    std::mt19937 random(7);
    std::vector<std::string> seeds;
    for (const std::string_view name : {"steps.bas", "errors.bas", "maze.bas", "arrays.bas"})
        seeds.push_back(ReadBytes(kFolder / name));
    int built = 0, refused = 0;
    const TempFolder folder;
    const auto attempt = [&](const std::string& text) {
        const Profile& profile = kProfiles[random() % kProfiles.size()];
        WriteBytes(folder.path / "test.bas", text);
        const Result result = CompileFile(profile, folder.path / "test.bas", {std::string(profile.debugSwitch)});
        ++(result.exit == 0 ? built : refused);
        EXPECT_TRUE(result.exit == 0 || result.exit == 1) << result.text;
        EXPECT_EQ(result.exit == 1, result.text.find(" error: ") != std::string::npos) << result.text;
    };
    for (const std::string& seed : seeds)
        for (size_t length = 0; length < seed.size(); length += 1 + seed.size() / 97) attempt(seed.substr(0, length));
    for (int i = 0; i < 300; ++i) {
        std::string text = seeds[random() % seeds.size()];
        for (size_t changes = 1 + random() % 4; changes > 0; --changes) {
            const size_t at = random() % text.size(), length = random() % 30;
            switch (random() % 4) {
                case 0: text[at] = static_cast<char>(random()); break;
                case 1: text.erase(at, length); break;
                case 2: text.insert(at, text.substr(random() % text.size(), length)); break;
                default: text.insert(at, 1, "\"'_:#%&()\n\r"[random() % 11]);
            }
        }
        attempt(text);
        std::string noise(random() % 400, '\0');
        for (char& c : noise) c = static_cast<char>(random());
        attempt(noise);
    }
    EXPECT_GT(built, 5);
    EXPECT_GT(refused, 300);
}

}  // namespace
