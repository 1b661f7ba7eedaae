// Session and workspace files as text, and what the project tree shows.
#include "session/session_text.h"
#include "session/tree_rules.h"
#include "session/workspace_text.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

TEST(SessionText, ComposesInOrder) {
    SessionHeader header;
    header[SessionKey::ActiveTab] = 1;
    header[SessionKey::ActiveCompiler] = 3;
    header[SessionKey::ShowProjectTree] = 7;  // any non-zero flag is 1
    header[SessionKey::EditorZoom] = -2;
    header[SessionKey::TabCount] = 99;  // the number of files counts
    header.projectRoot = "C:\\p";
    const std::vector<SessionFile> files = {
        {.path = "C:\\a.bas",
         .hasEditor = true,
         .cursor = 5000000000,
         .scroll = 2,
         .selectionStart = 3,
         .selectionEnd = 4,
         .bookmarks = {0, 7},
         .breakpoints = {4, 9},
         .rules = {{4, false, ""}, {9, true, "RCX > 5, 6"}}},
        {.path = "C:\\b.bas", .hasEditor = false},
    };
    EXPECT_EQ(SessionCompose(header, files),
              "[Session]\r\nVersion=1\r\nActiveTab=1\r\nActiveCompiler=3\r\nProjectRoot=C:\\p\r\nShowProjectTree=1\r\n"
              "ShowOutput=0\r\nShowAsmPane=0\r\nShowAiPane=0\r\nTreeWidth=0\r\nSplitHorizontal=0\r\nSplitPos=0\r\n"
              "EditorZoom=-2\r\nWordWrap=0\r\nFullScreen=0\r\nShowIndentGuides=0\r\nBuildProfile=0\r\n"
              "EnableAutoComplete=0\r\nAutoCompleteTrigger=0\r\nAutoUpperKeywords=0\r\nTheme=0\r\nTabCount=2\r\n"
              "\r\n[File1]\r\nPath=C:\\a.bas\r\nCursor=5000000000\r\nScroll=2\r\nSelectionStart=3\r\nSelectionEnd=4\r\n"
              "Bookmarks=0,7\r\nBreakpoints=4,9\r\nBreakpointRule=4,0,\r\nBreakpointRule=9,1,RCX > 5, 6\r\n"
              "\r\n[File2]\r\nPath=C:\\b.bas\r\n");
}

// Each item as "FILE KEY NUMBER TEXT".
std::vector<std::string> Items(std::string_view text) {
    std::vector<std::string> lines;
    for (const SessionItem& item : SessionParse(text)) {
        lines.push_back(std::to_string(item.file) + " " + std::to_string(static_cast<int>(item.key)) + " " +
                        std::to_string(item.number) + " " + item.text);
    }
    return lines;
}

std::string Item(int file, SessionKey key, int number, const std::string& text) {
    return std::to_string(file) + " " + std::to_string(static_cast<int>(key)) + " " + std::to_string(number) + " " +
           text;
}

TEST(SessionText, ParsesLineByLine) {
    struct Case {
        const char* name;
        std::string text;
        std::vector<std::string> expected;
    };
    const Case cases[] = {
        {"nothing", "", {}},
        {"before any header", "ActiveTab=2\n", {Item(-1, SessionKey::ActiveTab, 2, "2")}},
        {"flags become 0 or 1", "[Session]\r\nWordWrap=-5\r\n", {Item(-1, SessionKey::WordWrap, 1, "-5")}},
        {"unknown and version lines are skipped",
         "[Session]\nVersion=9\nSomething=1\nTheme=1",
         {Item(-1, SessionKey::Theme, 1, "1")}},
        {"a blank before the sign is no key", "[File1]\nCursor =4\nScroll=5\n", {Item(0, SessionKey::Scroll, 5, "5")}},
        {"a longer key is another key", "[File1]\nPaths=x\n", {}},
        {"sections are by number, not by order",
         "[File3]\nPath=c\n[File1]\nPath=a\n",
         {Item(2, SessionKey::Path, 0, "c"), Item(0, SessionKey::Path, 0, "a")}},
        {"a header without a number leads back to the session",
         "[File]\nActiveTab=1\nPath=x\n",
         {Item(-1, SessionKey::ActiveTab, 1, "1")}},
        {"a negative section number too", "[File-7]\nActiveTab=1\n", {Item(-1, SessionKey::ActiveTab, 1, "1")}},
        {"session keys are no keys of a file", "[File1]\nActiveTab=1\n", {}},
        {"a second session header",
         "[File1]\nCursor=1\n[Session]\nTheme=0\n",
         {Item(0, SessionKey::Cursor, 1, "1"), Item(-1, SessionKey::Theme, 0, "0")}},
        {"only one carriage return is cut", "[File1]\nPath=x\r\r\n", {Item(0, SessionKey::Path, 0, "x\r")}},
        {"a value beyond 32 bits",
         "[File1]\nCursor=99999999999999999999\n",
         {Item(0, SessionKey::Cursor, 2147483647, "99999999999999999999")}},
    };
    for (const Case& test : cases) EXPECT_EQ(Items(test.text), test.expected) << test.name;
}

TEST(SessionText, KeepsMarkerListsOfAnyLength) {
    SessionFile file{.path = "x", .hasEditor = true};
    for (int line = 0; line < 5000; ++line) file.breakpoints.push_back(line * 3);
    std::vector<std::int32_t> found;
    for (const SessionItem& item : SessionParse(SessionCompose({}, {&file, 1})))
        if (item.key == SessionKey::Breakpoints) found = SessionParseLines(item.text);
    EXPECT_EQ(found, file.breakpoints);
}

TEST(SessionText, ReadsTheRulesOfBreakpoints) {
    struct Case {
        const char* value;
        int line;
        bool enabled;
        const char* condition;
    };
    for (const Case& c : {Case{"9,1,RCX > 5, 6", 9, true, "RCX > 5, 6"},
                          {"4,0,", 4, false, ""},
                          {"", 0, true, ""},
                          {"7", 7, true, ""},
                          {"-3,1", -3, true, ""}}) {
        const SessionBreakpoint rule = SessionParseRule(c.value);
        EXPECT_EQ(rule.line, c.line) << c.value;
        EXPECT_EQ(rule.enabled, c.enabled) << c.value;
        EXPECT_EQ(rule.condition, c.condition) << c.value;
    }
}

TEST(SessionText, Numbers) {
    EXPECT_EQ(SessionNumber("12x"), 12);
    EXPECT_EQ(SessionNumber("x12"), 0);
    EXPECT_EQ(SessionNumber(""), 0);
    EXPECT_EQ(SessionNumber("-"), 0);
    EXPECT_EQ(SessionNumber(" -40"), -40);
    EXPECT_EQ(SessionNumber("-99999999999"), -2147483647 - 1);
    EXPECT_EQ(SessionParseLines("1,,x,4,"), (std::vector<std::int32_t>{1, 0, 0, 4}));
    EXPECT_EQ(SessionTreeWidth(50), 100);
    EXPECT_EQ(SessionTreeWidth(150), 150);
    EXPECT_EQ(SessionTreeWidth(500), 200);
}

TEST(SessionText, OffersOnlySessionsWithFiles) {
    EXPECT_FALSE(SessionListsFiles("[Session]\r\nTabCount=0\r\n"));
    EXPECT_FALSE(SessionListsFiles("[File1]\r\nPath=\r\n"));
    EXPECT_FALSE(SessionListsFiles(" Path=x\nThePath=x\n"));
    EXPECT_TRUE(SessionListsFiles("[File1]\r\nPath=\r\n[File2]\r\nPath=x"));
}

TEST(WorkspaceText, ComposesWithTheCommaOfAllTabs) {
    const std::vector<WorkspaceTab> tabs = {{.path = L"C:\\a\"b.bas", .cursor = 12}, {.path = L"", .cursor = 3}};
    EXPECT_EQ(WorkspaceCompose(tabs, 1, 9, L"-x \"q\" \\"),
              L"{\r\n  \"version\": \"1.0\",\r\n  \"files\": [\r\n"
              L"    {\"path\": \"C:\\\\a\\\"b.bas\", \"cursorPos\": 12},\r\n"
              L"  ],\r\n  \"activeFile\": 1,\r\n  \"compiler\": \"KVXA64\",\r\n"
              L"  \"compilerFlags\": \"-x \"q\" \\\"\r\n}\r\n");
}

struct FileList {
    wchar_t paths[kWorkspaceMaxFiles][kPathCapacity];
    int cursors[kWorkspaceMaxFiles];
};

TEST(WorkspaceText, ReadsWhatItWrites) {
    std::vector<WorkspaceTab> tabs;
    for (int i = 0; i < 70; ++i)
        tabs.push_back({.path = L"C:\\dir \"q\"\\f" + std::to_wstring(i) + L".bas", .cursor = i * 10 - 10});
    tabs.push_back({.path = std::wstring(kPathCapacity - 1, L'\\'), .cursor = 1});
    const std::wstring text = WorkspaceCompose(tabs, 5, 4, L"-O2");
    const auto files = std::make_unique<FileList>();
    ASSERT_EQ(JsonParseFiles(text.c_str(), files->paths, files->cursors, kWorkspaceMaxFiles), kWorkspaceMaxFiles);
    for (std::size_t i = 0; i < kWorkspaceMaxFiles; ++i) {
        EXPECT_EQ(files->paths[i], tabs[i].path);
        EXPECT_EQ(files->cursors[i], tabs[i].cursor);
    }
    EXPECT_EQ(JsonExtractInt(text.c_str(), L"activeFile", 0), 5);

    // A path of backslashes only is the longest that escaping makes; it comes back whole.
    const std::wstring longest = WorkspaceCompose({&tabs.back(), 1}, 0, 0, L"");
    ASSERT_EQ(JsonParseFiles(longest.c_str(), files->paths, files->cursors, kWorkspaceMaxFiles), 1);
    EXPECT_EQ(files->paths[0], tabs.back().path);
}

TEST(WorkspaceText, ExtractsByPlainSearch) {
    struct Case {
        const char* name;
        const wchar_t* text;
        int found;
        const wchar_t* value;
    };
    const Case cases[] = {
        {"white space around the colon", L"{ \"key\" \t\r\n: \n \"v\" }", 1, L"v"},
        {"escapes", L"\"key\": \"a\\\\b\\\"c\\nd\\te\\rf\\zg\"", 1, L"a\\b\"c\nd\te\rfzg"},
        {"no colon", L"\"key\" \"v\"", 0, L""},
        {"no opening quote", L"\"key\": 5", 0, L""},
        {"the first match counts, even as a value", L"\"a\": \"key\", \"key\": \"v\"", 0, L""},
        {"no closing quote", L"\"key\": \"v", 1, L"v"},
        {"a backslash at the very end", L"\"key\": \"v\\", 1, L"v"},
        {"cut to the capacity", L"\"key\": \"0123456789abcdefghij\"", 1, L"0123456789abcde"},
        {"missing", L"\"other\": \"v\"", 0, L""},
    };
    for (const Case& test : cases) {
        wchar_t out[16] = {};
        EXPECT_EQ(JsonExtractString(test.text, L"key", out, 16), test.found) << test.name;
        EXPECT_STREQ(out, test.value) << test.name;
    }
    EXPECT_EQ(JsonExtractInt(L"\"n\" : -12,", L"n", 7), -12);
    EXPECT_EQ(JsonExtractInt(L"\"n\": x", L"n", 7), 0);
    EXPECT_EQ(JsonExtractInt(L"\"n\" 5", L"n", 7), 7);
}

TEST(WorkspaceText, ListEndsAtTheFirstClosingBracket) {
    const auto files = std::make_unique<FileList>();
    const auto parse = [&](const wchar_t* text) {
        return JsonParseFiles(text, files->paths, files->cursors, kWorkspaceMaxFiles);
    };
    EXPECT_EQ(parse(L"{\"files\": [{\"path\": \"a\"}], \"path\": \"b\", \"cursorPos\": 4}"), 1);
    EXPECT_EQ(files->cursors[0], 0);  // the one behind the list is not its own
    EXPECT_EQ(parse(L"{\"path\": \"a\"}"), 0);
    EXPECT_EQ(parse(L"{\"files\": [{\"path\": \"a\""), 0);
    EXPECT_EQ(parse(L"{\"files\": []}"), 0);
}

TEST(WorkspaceText, EscapingStopsInTime) {
    wchar_t out[6];
    JsonEscape(L"abcdefgh", out, 6);
    EXPECT_STREQ(out, L"abcd");
    JsonEscape(L"\\\\\\\\", out, 6);
    EXPECT_STREQ(out, L"\\\\\\\\");
    EXPECT_EQ(WorkspaceFlagsAsRead(L"-D \"x\" -O"), L"-D ");
    EXPECT_EQ(WorkspaceCompilerId(L"KeldorBasic"), 3);
    EXPECT_EQ(WorkspaceCompilerId(L"keldorbasic"), -1);
}

TEST(TreeRules, ShowsAndSorts) {
    EXPECT_TRUE(TreeShows(L"src", true, false));
    EXPECT_TRUE(TreeShows(L"a.BAS", false, false));
    EXPECT_FALSE(TreeShows(L"a.exe", false, false));
    EXPECT_FALSE(TreeShows(L"..", true, false));
    EXPECT_FALSE(TreeShows(L".git", true, false));
    EXPECT_FALSE(TreeShows(L"a.bas", false, true));

    std::vector<TreeEntry> entries = {{L"b.bas", false}, {L"Z", true}, {L"A.bas", false}, {L"y", true}};
    TreeSort(entries);
    std::wstring order;
    for (const TreeEntry& entry : entries) order += entry.name + L" ";
    EXPECT_EQ(order, L"y Z A.bas b.bas ");
    EXPECT_EQ(TreeRootLabel(L"C:\\work\\demo\\"), L"demo");
    EXPECT_EQ(TreeRootLabel(L"C:\\"), L"C:");
    EXPECT_EQ(TreeRootLabel(L"\\"), L"\\");
}

}  // namespace
