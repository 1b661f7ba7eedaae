// The rules of building: diagnostics, command line, output on its way to the pane.
#include "base/path.h"
#include "compile/build_source.h"
#include "compile/command_line.h"
#include "compile/include_walk.h"
#include "compile/staging.h"
#include "output/diagnostics.h"
#include "output/error_places.h"
#include "output/feed_course.h"
#include "output/kept_lines.h"
#include "output/line_colours.h"
#include "output/output_filter.h"
#include "output/output_lines.h"
#include "output/output_queue.h"
#include "ui/rtf_block.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace {

std::string Narrow(std::wstring_view text) {
    std::string narrow;
    for (const wchar_t character : text) narrow += character < 0x80 ? static_cast<char>(character) : '?';
    return narrow;
}

std::wstring Repeat(std::size_t count, wchar_t character = L'x') { return std::wstring(count, character); }

TEST(Diagnostics, LinesAreTakenToPieces) {
    struct Case {
        const wchar_t* line;
        int parsed;
        const wchar_t* file;
        int row;
        int column;
        int severity;
        const wchar_t* message;
    };
    const Case cases[] = {
        {L"C:\\src\\a.bas(12,5): error: Undefined", 1, L"C:\\src\\a.bas", 12, 5, 0, L"Undefined"},
        {L"a.bas:12:5: warning: unused", 1, L"a.bas", 12, 5, 1, L"unused"},
        {L"C:\\a b\\x.bas:7:3: fatal error:   no file\r\n", 1, L"C:\\a b\\x.bas", 7, 3, 0, L"no file"},
        {L"a.bas(12): error: x (no comma)", 0, L"", 0, 0, 0, L""},
        {L"C:\\a.bas(12): error: x", 0, L"", 0, 0, 0, L""},
        {L"x.bas:10: error: m", 0, L"", 0, 0, 0, L""},
        {L"C:\\x.bas:10: error: m", 1, L"C", 0, 10, 0, L"m"},
        {L"(1,2): error: nobody", 0, L"", 0, 0, 0, L""},
        {L") error: x", 0, L"", 0, 0, 0, L""},
        {L" error: x", 0, L"", 0, 0, 0, L""},
        {L"::: error: x", 0, L"", 0, 0, 0, L""},
        {L"a(x,): error: no numbers", 1, L"a", 0, 0, 0, L"no numbers"},
        {L"a( -3, +4z): error: signs", 1, L"a", -3, 4, 0, L"signs"},
        {L"a(99999999999,1): error: huge", 1, L"a", 2147483647, 1, 0, L"huge"},
        {L"f(1)(2,3): error: the last bracket", 1, L"f(1)", 2, 3, 0, L"the last bracket"},
        {L"a.bas(1,2): warning: then error: both", 1, L"a.bas", 1, 2, 0, L"both"},
        {L"a.bas(1,2): error:", 1, L"a.bas", 1, 2, 0, L""},
        {L"a.bas(1,2): note: neither", 0, L"", 0, 0, 0, L""},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(Narrow(test.line));
        CompilerError record = {};
        EXPECT_EQ(ParseErrorLine(test.line, &record), test.parsed);
        if (test.parsed == 0) continue;
        EXPECT_EQ(Narrow(record.file), Narrow(test.file));
        EXPECT_EQ(record.line, test.row);
        EXPECT_EQ(record.column, test.column);
        EXPECT_EQ(record.severity, test.severity);
        EXPECT_EQ(Narrow(record.message), Narrow(test.message));
    }
}

TEST(Diagnostics, LongPartsAreCutToTheRecord) {
    CompilerError record = {};
    ASSERT_EQ(ParseErrorLine(Repeat(3000) + L"(1,2): error: " + Repeat(2000, L'm'), &record), 1);
    EXPECT_EQ(std::wstring_view(record.file), Repeat(1023));
    EXPECT_EQ(std::wstring_view(record.message), Repeat(511, L'm'));
}

TEST(Diagnostics, TheFirstErrorOfABuildIsNamedAndFoundAgain) {
    CompilerErrors errors;
    errors.builds.resize(2);
    const auto add = [&errors](const wchar_t* line, std::int32_t build) {
        CompilerError error = {};
        ASSERT_EQ(ParseErrorLine(line, &error), 1);
        error.build = build;
        errors.items.push_back(error);
    };
    add(L"C:\\src\\a.bas(3,1): warning: unused", 1);
    add(L"C:\\src\\a.bas(12,5): error: Undefined", 1);
    add(L"b.bas:7:1: error: more", 1);
    add(L"c.bas:1:1: fatal error: like x.bas:3:4: error: this", 2);
    const std::wstring first = FirstErrorText(errors, 1), second = FirstErrorText(errors, 2);
    EXPECT_EQ(first, L"First error at a.bas:12: Undefined");
    EXPECT_EQ(second, L"First error at c.bas:1") << "it must not be taken for one more diagnostic";
    EXPECT_EQ(RecordOfFirstErrorText(errors, first), 1);
    EXPECT_EQ(RecordOfFirstErrorText(errors, second), 3);
    EXPECT_EQ(RecordOfFirstErrorText(errors, L"b.bas:7"), -1);
    EXPECT_EQ(RecordOfFirstErrorText(errors, L""), -1);
}

TEST(OutputFilter, DropsARepetitionOfItsOwnKindOnly) {
    OutputFilter filter;
    struct Step {
        const wchar_t* line;
        bool passes;
    };
    const Step steps[] = {
        {L"error[E1]: a\r\n", true}, {L"error[E1]: a", false}, {L"help: h", true},  {L"fix: f", true},
        {L"error[E1]: a", false},    {L"help: h", false},      {L"plain", true},    {L"plain", true},
        {L"error[E2]: b", true},     {L"error[E1]: a", true},  {L" help: h", true}, {L"fix: f\n", false},
    };
    for (const Step& step : steps) EXPECT_EQ(OutputFilterPasses(filter, step.line), step.passes) << Narrow(step.line);
    OutputFilterReset(filter);
    EXPECT_TRUE(OutputFilterPasses(filter, L"fix: f"));
    const std::wstring longLine = L"fix: " + Repeat(kFilterLineLimit);
    EXPECT_TRUE(OutputFilterPasses(filter, longLine));
    EXPECT_TRUE(OutputFilterPasses(filter, longLine)) << "only so many characters are remembered";
}

// The queue's lines as one text: "|" for a line break, "!" for the end of the stream.
std::wstring Drain(OutputQueue& queue, int* chunks = nullptr) {
    std::wstring all;
    QueuedLine line;
    int done = 0;
    while (OutputQueueNext(queue, &line, &done))
        all += line.streamEnd ? L"!" : line.text + (line.lineBreak ? L"|" : L"");
    if (chunks != nullptr) *chunks = done;
    return all;
}

TEST(OutputQueue, LinesComeOutWholeAndInOrder) {
    const OutputChunk end = {.kind = ChunkKind::StreamEnd};
    const auto stream = [](const wchar_t* text) { return OutputChunk{.text = text, .kind = ChunkKind::Stream}; };
    const auto message = [](const wchar_t* text) { return OutputChunk{.text = text}; };
    struct Case {
        const char* name;
        std::vector<OutputChunk> chunks;
        const wchar_t* lines;
    };
    const Case cases[] = {
        {"a line over three chunks", {stream(L"on"), stream(L"e tw"), stream(L"o\r\nx\n"), end}, L"one two|x|!"},
        {"CRLF over a border", {stream(L"a\r"), stream(L"\nb\r"), stream(L"c\n"), end}, L"a|b|c|!"},
        {"an unfinished line waits", {stream(L"a\nrest")}, L"a|"},
        {"the end finishes it", {stream(L"a\nrest"), end}, L"a|rest|!"},
        {"a message does not join a line", {stream(L"part"), message(L"own\r\n"), stream(L"ial\n")}, L"part|own|ial|"},
        {"a message keeps having no break", {message(L"a"), message(L"b\r\n\r\nc")}, L"ab||c"},
        {"empty lines stay", {stream(L"\n\r\n\r"), stream(L"\r\n"), end}, L"||||!"},
        {"nothing", {stream(L""), message(L""), end}, L"!"},
    };
    for (const Case& test : cases) {
        OutputQueue queue;
        queue.chunks.assign(test.chunks.begin(), test.chunks.end());
        EXPECT_EQ(Narrow(Drain(queue)), Narrow(test.lines)) << test.name;
        EXPECT_TRUE(queue.chunks.empty()) << test.name;
    }
}

TEST(OutputQueue, AnySplittingGivesTheSameLines) {
    const std::wstring text = L"first\r\n\r\nsecond line\nthird\r\n" + Repeat(40) + L"\rlast";
    OutputQueue whole;
    whole.chunks = {{.text = text, .kind = ChunkKind::Stream}, {.kind = ChunkKind::StreamEnd}};
    const std::wstring expected = Drain(whole);
    for (std::size_t size = 1; size < text.size(); ++size) {
        OutputQueue queue;
        int pieces = 0;
        for (std::size_t at = 0; at < text.size(); at += size, ++pieces)
            queue.chunks.push_back({.text = text.substr(at, size), .kind = ChunkKind::Stream});
        queue.chunks.push_back({.kind = ChunkKind::StreamEnd});
        int done = 0;
        EXPECT_EQ(Narrow(Drain(queue, &done)), Narrow(expected)) << "pieces of " << size;
        EXPECT_EQ(done, pieces) << "every chunk is given back once";
    }
}

TEST(OutputQueue, EndlessLinesAreCut) {
    for (const std::size_t chunk : {std::size_t{4096}, kMaxOutputLine * 3}) {
        OutputQueue queue;
        const std::wstring text = Repeat(kMaxOutputLine * 3) + L"\nnext\n";
        for (std::size_t at = 0; at < text.size(); at += chunk)
            queue.chunks.push_back({.text = text.substr(at, chunk), .kind = ChunkKind::Stream});
        const std::wstring full = Repeat(kMaxOutputLine) + L"|";
        EXPECT_EQ(Drain(queue), full + full + full + L"next|") << chunk;
    }
}

bool Never() { return false; }
bool Always() { return true; }

// What a text becomes: lines, marked with their colour, and records of errors.
TEST(OutputLines, AreFilteredColouredCountedAndRecorded) {
    OutputLines lines = {.compilerId = 4};
    const auto put = [&](const wchar_t* text, ChunkKind kind) {
        lines.queue.chunks.push_back({.text = text, .colour = kLineTeal, .kind = kind});
    };
    put(L"a(1,2): error: one\nfix: f\nfix: f\n\nb:3:4: warning: two\nrest", ChunkKind::Stream);
    put(L"own\r\nfix: f\r\nc(5,6): error: ours", ChunkKind::Message);
    put(L"", ChunkKind::StreamEnd);
    CompilerErrors errors;
    PaneLine line;
    int chunks = 0;
    std::string text;
    while (OutputLinesNext(lines, errors, Never, &line, &chunks))
        text += (line.colour == kLineRed ? "R" : line.colour == kLineYellow ? "Y" : "") + Narrow(line.text) + "|";
    EXPECT_EQ(text, "Ra(1,2): error: one|fix: f||Yb:3:4: warning: two|rest|own|fix: f|Rc(5,6): error: ours|")
        << "repetitions are a process's";
    EXPECT_EQ(chunks, 1);
    EXPECT_EQ(lines.counts.lines, 4) << "of the process, not blank, not repeated";
    EXPECT_EQ(lines.counts.errors, 2);
    EXPECT_EQ(lines.counts.warnings, 1);
    ASSERT_EQ(ErrorCount(errors), 3);
    EXPECT_EQ(errors.items[1].severity, 1);
    EXPECT_EQ(errors.items[1].compilerId, 4U);
    EXPECT_FALSE(OutputLinesWait(lines));

    // The list is full after 64 errors; the rest is shown all the same.
    for (int i = 0; i < 70; ++i) put(L"d(1,1): error: more\n", ChunkKind::Stream);
    while (OutputLinesNext(lines, errors, Never, &line, &chunks)) EXPECT_EQ(line.colour, kLineRed);
    EXPECT_EQ(ErrorCount(errors), kMaxCompilerErrors);
    EXPECT_EQ(lines.counts.errors, 72);

    // Lines that are shown again come before those that still wait.
    put(L"last\n", ChunkKind::Stream);
    OutputLinesAgain(lines, {{.text = L"shown"}});
    for (const wchar_t* expected : {L"shown", L"last"}) {
        ASSERT_TRUE(OutputLinesNext(lines, errors, Never, &line, &chunks));
        EXPECT_EQ(Narrow(line.text), Narrow(expected));
    }
    put(L"x", ChunkKind::Stream);
    put(L"y", ChunkKind::Message);
    EXPECT_EQ(OutputLinesDrop(lines), 1) << "the chunks of processes are given back";
    EXPECT_FALSE(OutputLinesWait(lines));
}

TEST(OutputLines, LookingThroughAFloodIsLimited) {
    OutputLines lines;
    lines.kept.shown = kFirstLinesKept;  // full: later lines are held back
    std::wstring flood;
    for (int i = 0; i < 2000; ++i) flood += L"line\n";
    lines.queue.chunks.push_back({.text = flood, .kind = ChunkKind::Stream});
    lines.queue.chunks.push_back({.kind = ChunkKind::StreamEnd});
    CompilerErrors errors;
    PaneLine line;
    int chunks = 0;
    EXPECT_FALSE(OutputLinesNext(lines, errors, Always, &line, &chunks)) << "the time is up";
    EXPECT_LT(lines.kept.held.size(), 1000U);
    EXPECT_NE(OutputLinesUnfinished(lines).find(L" more lines so far; "), std::wstring::npos);
    int shown = 0;
    while (OutputLinesNext(lines, errors, Never, &line, &chunks)) ++shown;
    EXPECT_EQ(shown, 2000) << "and at the end all of them come";
}

TEST(FeedCourse, AnIncompleteLineIsShownLateAndReplaced) {
    OutputFeed feed;
    CompilerErrors errors;
    double now = 1000;
    std::string shown;
    const FeedPane pane = {.clock = [&] { return now; },
                           .append =
                               [&](std::span<const PaneLine> lines, std::int32_t from) {
                                   if (from >= 0) shown += "<";
                                   for (const PaneLine& line : lines)
                                       shown += Narrow(line.text) + (line.lineBreak ? "|" : "");
                                   return 7;
                               },
                           .chunksDone = [](int) {}};
    FeedAddChunk(feed, {.text = L"one\nName?", .kind = ChunkKind::Stream});
    const auto showAt = [&](double time) {
        now = time;
        FeedShowBlock(feed, errors, pane);
    };
    showAt(1000);
    showAt(1001);
    showAt(1050);
    EXPECT_EQ(shown, "one|");
    showAt(1070);
    EXPECT_EQ(shown, "one|Name?");
    FeedAddChunk(feed, {.text = L" Bob\n", .kind = ChunkKind::Stream});
    showAt(1071);
    EXPECT_EQ(shown, "one|Name?<Name? Bob|");
    EXPECT_TRUE(FeedIsEmpty(feed) && !FeedIsRevealed(feed));
}

TEST(ErrorPlaces, WhatAPrintedNameMayMean) {
    const PathWhole whole = [](const std::wstring& path) {
        const std::size_t up = path.find(L"\\sub\\..");
        return up == std::wstring::npos ? path : path.substr(0, up) + path.substr(up + 7);
    };
    const BuildRecord build = {.source = L"C:\\src\\x.kxa",
                               .output = L"D:\\out\\x.exe",
                               .staged = L"C:\\src\\x.pb",
                               .workingDirectory = L"C:\\tools"};
    struct Case {
        const wchar_t* printed;
        const char* places;
    };
    const Case cases[] = {
        {L"part.inc", "C:\\src\\part.inc D:\\out\\part.inc C:\\tools\\part.inc "},
        {L"X.pb", "C:\\src\\x.kxa D:\\out\\X.pb C:\\tools\\X.pb "},  // the copy is the source
        {L"c:/src/x.PB", "C:\\src\\x.kxa "},
        {L"C:\\src\\sub\\..\\y.bas", "C:\\src\\y.bas "},
        {L"\\\\server\\x.bas", "\\\\server\\x.bas "},
    };
    for (const Case& test : cases) {
        std::string places;
        for (const std::wstring& place : ErrorPlaces(test.printed, build, whole)) places += Narrow(place) + " ";
        EXPECT_EQ(places, test.places);
    }
    // Each document of a batch has its own folder; a record of no known build is looked for in all of them.
    CompilerErrors errors;
    errors.builds = {{.source = L"C:\\a\\x.bas"}, {.source = L"C:\\b\\y.bas"}};
    for (const auto& [record, places] :
         {std::pair{1, "C:\\a\\p.inc "}, {2, "C:\\b\\p.inc "}, {0, "C:\\b\\p.inc C:\\a\\p.inc "}}) {
        CompilerError error = {.file = L"p.inc"};
        error.build = record;
        std::string found;
        for (const std::wstring& place : PlacesOfDiagnostic(errors, error, whole)) found += Narrow(place) + " ";
        EXPECT_EQ(found, places) << record;
    }
    EXPECT_EQ(PlacesOfDiagnostic({}, {.file = L"x.bas"}, whole).size(), 1U) << "before the first build: as printed";
}

TEST(ErrorPlaces, TheNextAfterTheLastIsTheFirst) {
    CompilerErrors errors;
    EXPECT_EQ(NextErrorIndex(errors), -1);
    EXPECT_EQ(PreviousErrorIndex(errors), -1);
    for (const wchar_t* line : {L"a(1,2): error: x", L"a(1,2): warning: x", L"b(1,2): error: x"})
        ASSERT_EQ(ParseErrorLine(line, &errors.items.emplace_back()), 1);
    EXPECT_EQ(PreviousErrorIndex(errors), 2);
    EXPECT_EQ(NextErrorToVisit(errors), 0) << "the first after a build";
    errors.visited = true;
    EXPECT_EQ(NextErrorToVisit(errors), 1);
    errors.current = 2;
    EXPECT_EQ(NextErrorIndex(errors), 0);
    CompilerError wanted = errors.items[1];
    wanted.compilerId = 9;
    EXPECT_EQ(FindDiagnostic(errors, wanted, 0), 1) << "the one of its severity";
    errors.items.push_back(CompilerError{errors.items[1]});
    EXPECT_EQ(FindDiagnostic(errors, wanted, 1), 3) << "of the next build";
    wanted.column = 3;
    EXPECT_EQ(FindDiagnostic(errors, wanted, 0), -1);
}

TEST(RtfBlock, TextIsEscapedAndColoursAreIndexed) {
    std::string escaped;
    RtfAppendEscaped(escaped, L"a\\b{c}\td\x01\xE9\x20AC");
    EXPECT_EQ(escaped, "a\\\\b\\{c\\}\\tab d\\u233?\\u8364?");
    escaped.clear();
    RtfAppendEscaped(escaped, L"\U0001F600");
    EXPECT_EQ(escaped, "\\u-10179?\\u-8704?");

    const std::vector<PaneLine> lines = {{.text = L"one"},
                                         {.text = L"two", .colour = 0x0000FF},
                                         {.text = L"three", .colour = 0x0000FF},
                                         {.text = L"four", .lineBreak = false}};
    const std::string block = RtfBlock(lines, {.face = L"A{b", .points = 9, .textColour = 0x332211});
    EXPECT_EQ(block,
              "{\\rtf1\\ansi\\deff0\\uc1{\\fonttbl{\\f0\\fmodern A\\{b;}}"
              "{\\colortbl;\\red17\\green34\\blue51;\\red255\\green0\\blue0;}\\f0\\fs18"
              "\\cf1 one\\par\n\\cf2 two\\par\nthree\\par\n\\cf1 four}");
    const std::vector<PaneLine> coloured = {{.text = L"a", .colour = 0x0000C8}, {.text = L"b", .colour = 0x00FF00}};
    for (const auto& [font, colours] :
         {std::pair{RtfFont{}, "\\red200\\green0\\blue0;\\red0\\green255\\blue0;}"},
          std::pair{RtfFont{.readableOn = 0}, "\\red235\\green0\\blue0;\\red0\\green255\\blue0;}"},
          std::pair{RtfFont{.readableOn = 0xFFFFFF}, "\\red200\\green0\\blue0;\\red0\\green138\\blue0;}"}})
        EXPECT_NE(RtfBlock(coloured, font).find(colours), std::string::npos) << RtfBlock(coloured, font);
}

TEST(KeptLines, FirstAndLastLinesStayInOrder) {
    KeptLines kept;
    const std::size_t total = kFirstLinesKept + kLastLinesKept + 5;
    for (std::size_t i = 0; i < total; ++i) {
        PaneLine line = {.text = std::to_wstring(i)};
        EXPECT_EQ(KeepLine(kept, line, i + 8), i < kFirstLinesKept);
    }
    PaneLine message = {.text = L"ours"};
    EXPECT_FALSE(KeepLine(kept, message, 0)) << "a message waits after the lines that are held back";
    const std::deque<PaneLine> held = TakeHeldLines(kept, L"C:\\a (1)\\a.buildlog");
    ASSERT_EQ(held.size(), kLastLinesKept + 1);
    EXPECT_TRUE(held[0].text.starts_with(L"... 6 lines left out ")) << Narrow(held[0].text);
    const LogPlace place = LogPlaceOf(held[0].text);
    EXPECT_EQ(Narrow(place.path), "C:\\a (1)\\a.buildlog");
    EXPECT_EQ(place.line, static_cast<int>(kFirstLinesKept) + 8);
    for (const wchar_t* other : {L"a(1) ...", L"... 6 lines left out ...", L""})
        EXPECT_TRUE(LogPlaceOf(other).path.empty());
    EXPECT_EQ(Narrow(held[1].text), std::to_string(kFirstLinesKept + 6));
    EXPECT_EQ(Narrow(held.back().text), "ours");
    EXPECT_TRUE(KeepLine(kept, message, 0)) << "and is shown at once when nothing is held";
}

TEST(CommandLine, ListingArgument) {
    struct Case {
        const wchar_t* pattern;
        const wchar_t* path;
        std::uint32_t id;
        const wchar_t* argument;
    };
    const Case cases[] = {
        {L"--asm:{asm}", L"C:\\a b.asm", kCompilerKvxb64, L"--asm:\"C:\\a b.asm\""},
        {L"{asm}.lst", L"x", kCompilerKvxb64, L"\"x\".lst"},
        {L"/ASMOUT:", L"x.asm", kCompilerKeldorBasic, L"/ASMOUT:\"x.asm\""},
        {L"-L=", L"x.asm", kCompilerKvxa64, L"-L=\"x.asm\""},
        {L"-L", L"x.asm", kCompilerKvxa64, L"-L \"x.asm\""},
        {L"/ASMOUT: {asm}", L"x.asm", kCompilerKvxa32, L"/ASMOUT: \"x.asm\""},
        {L"/asmout:{asm}", L"x.asm", kCompilerKvxa32, L"/asmout: \"x.asm\""},
        {L"/ASMOUT:{asm}", L"x.asm", kCompilerKeldorBasic, L"/ASMOUT:\"x.asm\""},
        {L"", L"x.asm", kCompilerKvxa64, L""},
        {L"-L", L"", kCompilerKvxa64, L""},
    };
    for (const Case& test : cases) {
        wchar_t argument[kListingArgCapacity] = {};
        wchar_t buffer[kArgumentsCapacity] = {};
        EXPECT_EQ(FormatTemplateArg(test.pattern, test.path, argument, kListingArgCapacity), 1);
        EXPECT_EQ(AppendAsmOutputArgSafe(buffer, kArgumentsCapacity, test.id, argument), 1);
        EXPECT_EQ(Narrow(buffer), Narrow(test.argument)) << Narrow(test.pattern);
    }
}

TEST(CommandLine, BothStylesWithAndWithoutArguments) {
    CommandParts parts = {.compiler = L"C:\\my tools\\c.exe",
                          .includeSwitch = L"-I",
                          .listingTemplate = L"--asm:{asm}",
                          .source = L"C:\\a b\\x.pb",
                          .output = L"C:\\a b\\x.exe"};
    std::wstring line;
    EXPECT_EQ(AssembleCommandLine(parts, &line), CommandProblem::None);
    EXPECT_EQ(Narrow(line), R"("C:\my tools\c.exe" -o "C:\a b\x.exe" "C:\a b\x.pb")");
    parts.flags = L"-O2";
    parts.includePath = L"C:\\inc dir\\";
    parts.listing = L"C:\\a b\\x.asm";
    EXPECT_EQ(AssembleCommandLine(parts, &line), CommandProblem::None);
    EXPECT_EQ(Narrow(line),
              R"("C:\my tools\c.exe" -o "C:\a b\x.exe" -O2 -I"C:\inc dir" --asm:"C:\a b\x.asm" "C:\a b\x.pb")");
    parts.style = CommandStyle::Keldor;
    parts.includeSwitch = L"/I";
    parts.includePath = L"D:\\";
    parts.listing = L"";
    EXPECT_EQ(AssembleCommandLine(parts, &line), CommandProblem::None);
    EXPECT_EQ(Narrow(line), R"("C:\my tools\c.exe" "C:\a b\x.pb" -O2 /I"D:\.")");
    const std::vector<std::wstring> ofProject = {L"C:\\p\\inc", L"C:\\p b"};
    parts.includeFolders = ofProject;
    EXPECT_EQ(AssembleCommandLine(parts, &line), CommandProblem::None);
    EXPECT_EQ(Narrow(line), R"("C:\my tools\c.exe" "C:\a b\x.pb" -O2 /I"C:\p\inc" /I"C:\p b" /I"D:\.")");
    parts.includeFolders = {};
    parts.flags = parts.includePath = L"";
    EXPECT_EQ(AssembleCommandLine(parts, &line), CommandProblem::None);
    EXPECT_EQ(Narrow(line), R"("C:\my tools\c.exe" "C:\a b\x.pb")");
}

TEST(CommandLine, RefusesRatherThanCuts) {
    const auto problem = [](std::size_t flags, std::size_t include, std::size_t listing, std::size_t source) {
        const std::wstring flagText = Repeat(flags), includeText = Repeat(include), listingText = Repeat(listing),
                           sourceText = Repeat(source);
        std::wstring line = L"untouched";
        const CommandProblem result = AssembleCommandLine({.compiler = L"c",
                                                           .flags = flagText,
                                                           .includeSwitch = L"-I",
                                                           .includePath = includeText,
                                                           .listingTemplate = L"-L:",
                                                           .listing = listingText,
                                                           .source = sourceText,
                                                           .output = L"o"},
                                                          &line);
        EXPECT_EQ(line == L"untouched", result != CommandProblem::None);
        return result;
    };
    EXPECT_EQ(problem(4095, 0, 0, 1), CommandProblem::None);
    EXPECT_EQ(problem(4096, 0, 0, 1), CommandProblem::FlagsTooLong);
    EXPECT_EQ(problem(4000, 90, 0, 1), CommandProblem::None);  // 4000 + blank + -I"" + 90 = 4095
    EXPECT_EQ(problem(4000, 91, 0, 1), CommandProblem::IncludeTooLong);
    EXPECT_EQ(problem(0, 0, 1146, 1), CommandProblem::None);  // -L:"" + 1146 = 1151
    EXPECT_EQ(problem(0, 0, 1147, 1), CommandProblem::ListingTooLong);
    EXPECT_EQ(problem(4000, 0, 100, 1), CommandProblem::ListingTooLong);
    EXPECT_EQ(problem(0, 0, 0, 32767 - 13), CommandProblem::None);  // "c" -o "o" "": 13 characters
    EXPECT_EQ(problem(0, 0, 0, 32768 - 13), CommandProblem::CommandTooLong);
}

TEST(CommandLine, BuildFlagsComeOnceAndOnlyWhole) {
    wchar_t flags[kFlagsCapacity] = L"-Wall";
    AppendBuildFlag(flags, L"--debug");
    AppendBuildFlag(flags, L"--debug");
    AppendBuildFlag(flags, L"");
    AppendBuildFlag(flags, L"-W");  // occurs in -Wall
    EXPECT_EQ(Narrow(flags), "-Wall --debug");
    AppendBuildFlag(flags, Repeat(1023 - 14 + 1));
    EXPECT_EQ(Narrow(flags), "-Wall --debug");
    AppendBuildFlag(flags, Repeat(1023 - 14));
    EXPECT_EQ(std::wstring_view(flags).size(), 1023U);
}

TEST(BuildSource, WhichSourceIncludesAFile) {
    const struct {
        const char* source;
        bool includes;
    } cases[] = {{"#INCLUDE \"part.inc\"", true},
                 {"x = 1\r\n  # include <lib/PART.INC> ' the part\r\n", true},
                 {"$INCLUDE \"..\\lib\\Part.inc\"\n", true},
                 {"' #INCLUDE \"part.inc\"", false},
                 {"#INCLUDE \"apart.inc\"", false},
                 {"#INCLUDE \"part.inc", false},
                 {"PRINT \"part.inc\"", false},
                 {"#", false},
                 {"", false}};
    for (const auto& each : cases) EXPECT_EQ(IncludesFile(each.source, L"part.inc"), each.includes) << each.source;
    // Through other files: beside the file with the line, then in the folders of the compiler; in circles, and missing.
    const std::map<std::wstring, std::string> files = {
        {L"C:\\p\\lib\\outer.inc", "#INCLUDE \"inner.inc\""},
        {L"C:\\p\\lib\\inner.inc", "#INCLUDE \"part.inc\""},
        {L"C:\\sdk\\api.inc", "#INCLUDE \"api.inc\"\n#INCLUDE \"loop.inc\""},
        {L"C:\\sdk\\loop.inc", "#INCLUDE \"api.inc\""}};
    int read = 0;
    IncludeWalk walk = {.folders = {L"C:\\sdk"},
                        .read = [&](const std::wstring& path) -> std::optional<std::string> {
                            const auto found = files.find(path);
                            if (found == files.end()) return std::nullopt;
                            return ++read, found->second;
                        }};
    const auto reaches = [&](const char* source) {
        return IncludesFileThrough(walk, L"C:\\p\\main.bas", source, L"part.inc");
    };
    EXPECT_TRUE(reaches("#INCLUDE \"lib/outer.inc\""));
    EXPECT_FALSE(reaches("#INCLUDE \"outer.inc\"")) << "there is none beside the source";
    read = 0;
    EXPECT_FALSE(reaches("#INCLUDE \"api.inc\"\n#INCLUDE \"api.inc\""));
    EXPECT_EQ(read, 2) << "each once, although they include each other";
    walk.most = 1;
    EXPECT_FALSE(reaches("#INCLUDE \"lib/outer.inc\"")) << "it gives up";
    EXPECT_TRUE(IsIncludeFile(L"C:\\a\\X.INC"));
    EXPECT_FALSE(IsIncludeFile(L"C:\\a\\inc"));
    EXPECT_FALSE(IsIncludeFile(L"C:\\a.inc\\x.bas"));
}

TEST(BuildPaths, NamesOfCopiesAndSideFiles) {
    struct Case {
        const wchar_t* source;
        CommandStyle style;
        int attempt;
        const wchar_t* target;
    };
    const Case cases[] = {
        {L"C:\\a.b\\x.kxa", CommandStyle::Kvx, 0, L"C:\\a.b\\x.pb"},
        {L"C:\\a.b\\x.KA32", CommandStyle::Kvx, 0, L"C:\\a.b\\x.bas"},
        {L"C:\\a.b\\x.ka32", CommandStyle::Kvx, 2, L"C:\\a.b\\x.kvx2.bas"},
        {L"C:\\a.b\\x.bas", CommandStyle::Kvx, 0, L""},
        {L"C:\\a.kxa\\x", CommandStyle::Kvx, 0, L""},
        {L"C:\\a.b\\x.kb", CommandStyle::Keldor, 0, L"C:\\out.dir\\x.bas"},
        {L"C:\\a.b\\x.kb", CommandStyle::Keldor, 1, L""},
    };
    for (const Case& test : cases)
        EXPECT_EQ(Narrow(StagingTarget(test.source, L"C:\\out.dir\\x.exe", test.style, test.attempt)),
                  Narrow(test.target))
            << Narrow(test.source);
    EXPECT_EQ(Narrow(ReplaceExtension(L"C:\\a.b\\x", L".log")), "C:\\a.b\\x.log");
    EXPECT_TRUE(SamePathText(L"C:/Dir/X.bas", L"c:\\dir\\x.BAS"));
    EXPECT_FALSE(SamePathText(L"C:\\dir\\x.bas", L"C:\\dir\\x.ba"));
    EXPECT_EQ(Narrow(FolderOf(L"C:\\x.exe")), "C:\\");
    EXPECT_EQ(Narrow(FolderOf(L"C:\\dir\\x.exe")), "C:\\dir");
    EXPECT_EQ(Narrow(FolderOf(L"x.exe")), "");
}

}  // namespace
