// Session and workspace files as text.
#include "editor/margins.h"
#include "session/session_restore.h"
#include "session/session_text.h"
#include "session/session_view.h"
#include "session/workspace_text.h"

#include <Scintilla.h>
#include <gtest/gtest.h>

#include <limits>
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
        {.path = "C:\\b.bas", .hasEditor = false, .pinned = true},
    };
    EXPECT_EQ(SessionCompose(header, files),
              "[Session]\r\nVersion=1\r\nActiveTab=1\r\nActiveCompiler=3\r\nProjectRoot=C:\\p\r\nShowProjectTree=1\r\n"
              "ShowOutput=0\r\nShowAsmPane=0\r\nShowAiPane=0\r\nTreeWidth=0\r\nSplitHorizontal=0\r\nSplitPos=0\r\n"
              "EditorZoom=-2\r\nWordWrap=0\r\nFullScreen=0\r\nShowIndentGuides=0\r\nBuildProfile=0\r\n"
              "EnableAutoComplete=0\r\nAutoCompleteTrigger=0\r\nAutoUpperKeywords=0\r\nTheme=0\r\nTabCount=2\r\n"
              "\r\n[File1]\r\nPath=C:\\a.bas\r\nCursor=5000000000\r\nScroll=2\r\nSelectionStart=3\r\nSelectionEnd=4\r\n"
              "Bookmarks=0,7\r\nBreakpoints=4,9\r\nBreakpointRule=4,0,\r\nBreakpointRule=9,1,RCX > 5, 6\r\n"
              "\r\n[File2]\r\nPath=C:\\b.bas\r\nPinned=1\r\n");
}

// The items as "FILE KEY NUMBER TEXT;".
std::string Text(const std::vector<SessionItem>& items) {
    std::string text;
    for (const SessionItem& item : items)
        text += std::to_string(item.file) + " " + std::to_string(static_cast<int>(item.key)) + " " +
                std::to_string(item.number) + " " + item.text + ";";
    return text;
}

TEST(SessionText, ParsesLineByLine) {
    using enum SessionKey;
    struct Case {
        const char *name, *text;
        std::vector<SessionItem> expected;
    };
    const Case cases[] = {
        {"nothing", "", {}},
        {"before any header", "ActiveTab=2\n", {{-1, ActiveTab, 2, "2"}}},
        {"flags become 0 or 1", "[Session]\r\nWordWrap=-5\r\n", {{-1, WordWrap, 1, "-5"}}},
        {"unknown and version lines are skipped", "[Session]\nVersion=9\nSomething=1\nTheme=1", {{-1, Theme, 1, "1"}}},
        {"a blank before the sign is no key", "[File1]\nCursor =4\nScroll=5\n", {{0, Scroll, 5, "5"}}},
        {"a longer key is another key", "[File1]\nPaths=x\n", {}},
        {"sections are by number, not by order",
         "[File3]\nPath=c\n[File1]\nPath=a\n",
         {{2, Path, 0, "c"}, {0, Path, 0, "a"}}},
        {"a header without a number leads back to the session",
         "[File]\nActiveTab=1\nPath=x\n",
         {{-1, ActiveTab, 1, "1"}}},
        {"a negative section number too", "[File-7]\nActiveTab=1\n", {{-1, ActiveTab, 1, "1"}}},
        {"session keys are no keys of a file", "[File1]\nActiveTab=1\n", {}},
        {"a second session header",
         "[File1]\nCursor=1\n[Session]\nTheme=0\n",
         {{0, Cursor, 1, "1"}, {-1, Theme, 0, "0"}}},
        {"only one carriage return is cut", "[File1]\nPath=x\r\r\n", {{0, Path, 0, "x\r"}}},
        {"a value beyond 32 bits",
         "[File1]\nCursor=99999999999999999999\n",
         {{0, Cursor, 2147483647, "99999999999999999999"}}},
    };
    for (const Case& test : cases) EXPECT_EQ(Text(SessionParse(test.text)), Text(test.expected)) << test.name;
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
        int stopFrom = 0;
    };
    for (const Case& c : {Case{"9,1,RCX > 5, 6", 9, true, "RCX > 5, 6"},
                          {"9,0:5,a,b", 9, false, "a,b", 5},
                          {"9,1:-5,", 9, true, ""},
                          {"4,0,", 4, false, ""},
                          {"", 0, true, ""},
                          {"7", 7, true, ""},
                          {"-3,1", -3, true, ""}}) {
        const SessionBreakpoint rule = SessionParseRule(c.value);
        EXPECT_EQ(rule.line, c.line) << c.value;
        EXPECT_EQ(rule.enabled, c.enabled) << c.value;
        EXPECT_EQ(rule.condition, c.condition) << c.value;
        EXPECT_EQ(rule.stopFrom, c.stopFrom) << c.value;
    }
}

TEST(SessionText, ASectionComesBackAsAFile) {
    const SessionFile file{.path = "a",
                           .hasEditor = true,
                           .cursor = 7,
                           .scroll = 2,
                           .selectionStart = 5,
                           .selectionEnd = 9,
                           .bookmarks = {1, 4},
                           .breakpoints = {3},
                           .rules = {{3, false, "x > 1"}}};
    const std::string text = SessionCompose({}, {&file, 1});
    SessionFile read;
    for (const SessionItem& item : SessionParse(text))
        if (item.file == 0) SessionTakeItem(read, item);
    EXPECT_EQ(SessionCompose({}, {&read, 1}), text);
}

TEST(SessionText, Numbers) {
    EXPECT_EQ(SessionNumber("12x"), 12);
    EXPECT_EQ(SessionNumber(" -40"), -40);
    for (const char* none : {"x12", "", "-"}) EXPECT_EQ(SessionNumber(none), 0) << none;
    EXPECT_EQ(SessionNumber("-99999999999"), -2147483647 - 1);
    EXPECT_EQ(SessionParseLines("1,,x,4,"), (std::vector<std::int32_t>{1, 0, 0, 4}));
    for (const auto& [stored, used] : {std::pair{50, 100}, {150, 150}, {500, 200}})
        EXPECT_EQ(SessionTreeWidth(stored), used);
}

TEST(SessionView, SettingsAndFrameComeBack) {
    const auto settings = std::make_unique<Settings>(), restored = std::make_unique<Settings>();
    settings->activeCompiler = 4;
    settings->projectTreeWidth = 200;
    settings->projectTreeExtra = 130;
    settings->editorZoom = -3;
    settings->wordWrap = 1;
    settings->theme = 1;
    SafeCopyW(settings->projectRoot, L"C:\\\u00FCber");
    const SessionFrame frame{.activeTab = 2, .showOutput = true, .fullScreen = true};
    SessionFrame found;
    for (const SessionItem& item : SessionParse(SessionCompose(SessionHeaderOf(*settings, frame), {})))
        SessionApplyHeader(item, *restored, found);
    EXPECT_EQ(restored->activeCompiler, 4);
    EXPECT_EQ(restored->projectTreeWidth + restored->projectTreeExtra, 330);
    SessionApplyHeader({-1, SessionKey::TreeWidth, 150, ""}, *restored, found);
    EXPECT_EQ(restored->projectTreeWidth + restored->projectTreeExtra, 150) << "of a session without the rest";
    EXPECT_EQ(restored->editorZoom, -3);
    EXPECT_EQ(restored->wordWrap, 1);
    EXPECT_EQ(restored->theme, 1);
    EXPECT_STREQ(restored->projectRoot, L"C:\\\u00FCber");
    EXPECT_EQ(found.activeTab, 2);
    EXPECT_TRUE(found.showOutput && found.fullScreen && !found.showAsmPane && !found.splitHorizontal);
    restored->splitter = 333;
    for (const std::int32_t wild :
         {std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()}) {
        for (const SessionKey key : {SessionKey::ActiveCompiler, SessionKey::SplitPos, SessionKey::EditorZoom,
                                     SessionKey::BuildProfile, SessionKey::AutoCompleteTrigger, SessionKey::Theme})
            SessionApplyHeader({-1, key, wild, ""}, *restored, found);
        EXPECT_EQ(restored->activeCompiler, kDefaultCompiler);
        EXPECT_EQ(restored->splitter, 333);
        EXPECT_EQ(restored->editorZoom, wild > 0 ? 60 : -10);
        EXPECT_EQ(restored->profile, 0);
        EXPECT_EQ(restored->autoCompleteTrigger, wild > 0 ? 10 : 2);
        EXPECT_EQ(restored->theme, wild > 0 ? 1 : 0);
    }
}

TEST(SessionView, LinesBecomeMessagesToTheEditor) {
    using Messages = std::vector<EditorMessage>;
    EXPECT_EQ(SessionEditorMessages({0, SessionKey::Cursor, 7, "7"}), (Messages{{SCI_GOTOPOS, 7, 0}}));
    EXPECT_EQ(SessionEditorMessages({0, SessionKey::Bookmarks, 4, "4,-1,9"}),
              (Messages{{SCI_MARKERADD, 4, kMarkBookmark}, {SCI_MARKERADD, 9, kMarkBookmark}}));
    EXPECT_EQ(SessionEditorMessages({0, SessionKey::Breakpoints, 3, "3"}),
              (Messages{{SCI_MARKERADD, 3, kMarkBreakpoint}}));
    EXPECT_EQ(SessionEditorMessages({0, SessionKey::Path, 0, "x"}), Messages{});
}

TEST(SessionRestore, AMissingFileShiftsThePlacesOfLaterOnes) {
    std::vector<std::string> open;
    std::string sent;
    std::vector<std::string> pinned;
    int frames = 0;
    const SessionTarget target = {.open =
                                      [&](const std::string& path) {
                                          if (path != "gone") open.push_back(path);
                                          return path != "gone";
                                      },
                                  .has = [&](int index) { return index >= 0 && index < static_cast<int>(open.size()); },
                                  .keep = [](int, const SessionItem&) { return false; },
                                  .send =
                                      [&](int index, const EditorMessage& message) {
                                          sent += std::to_string(index) + ":" + std::to_string(message.wParam) + " ";
                                      },
                                  .setRule =
                                      [&](int index, const SessionBreakpoint& rule) {
                                          sent += std::to_string(index) + "!" + std::to_string(rule.line) + " ";
                                      },
                                  .pin = [&] { pinned.push_back(open.back()); },
                                  .showFrame = [&](const SessionFrame&) { ++frames; }};
    Settings settings = {};
    SessionFrame frame = {.activeTab = 9, .showOutput = true};
    const std::vector<SessionFile> missing = SessionRestore(
        SessionParse("[Session]\nShowOutput=1\nShowAsmPane=1\nWordWrap=1\n[File1]\nPath=a\nPinned=1\nCursor=1\n"
                     "[File2]\nPath=gone\nPinned=1\nCursor=2\nBookmarks=7\nBreakpointRule=5,0,\n[File3]\nPath="
                     "b\nPinned=1\nCursor=3\n"
                     "[File2]\nCursor=4\nBreakpointRule=6,0,\n"),
        target, settings, frame);
    EXPECT_EQ(sent, "0:1 1:4 1!6 ") << "the third section has no third document";
    EXPECT_EQ(frames, 1);
    EXPECT_EQ(pinned, (std::vector<std::string>{"a", "b"})) << "the files themselves";
    EXPECT_TRUE(frame.showAsmPane && settings.wordWrap == 1 && frame.activeTab == 0);
    ASSERT_EQ(missing.size(), 1U);
    EXPECT_EQ(missing[0].path, "gone");
    EXPECT_EQ(missing[0].cursor, 2U) << "not that of a section of the same number, after the next file";
    EXPECT_TRUE(missing[0].pinned && missing[0].bookmarks.size() == 1 && missing[0].rules.size() == 1);
    for (const bool back : {false, true})
        EXPECT_EQ(SessionFilesToSave({{.path = "a"}}, missing, [back](const std::string&) { return back; }).size(),
                  back ? 1U : 2U);
}

TEST(SessionText, OffersOnlySessionsWithFiles) {
    EXPECT_FALSE(SessionListsFiles("[Session]\r\nTabCount=0\r\n"));
    EXPECT_FALSE(SessionListsFiles("[File1]\r\nPath=\r\n"));
    EXPECT_FALSE(SessionListsFiles(" Path=x\nThePath=x\n"));
    EXPECT_TRUE(SessionListsFiles("[File1]\r\nPath=\r\n[File2]\r\nPath=x"));
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
    const std::wstring text = WorkspaceCompose(tabs, 5, 9, L"-O2");
    EXPECT_NE(text.find(L"\"compiler\": \"KVXA64\""), std::wstring::npos) << "for an unknown compiler";
    const auto files = std::make_unique<FileList>();
    ASSERT_EQ(JsonParseFiles(text.c_str(), files->paths, files->cursors, kWorkspaceMaxFiles), kWorkspaceMaxFiles);
    for (std::size_t i = 0; i < kWorkspaceMaxFiles; ++i) {
        EXPECT_EQ(files->paths[i], tabs[i].path);
        EXPECT_EQ(files->cursors[i], tabs[i].cursor);
    }
    EXPECT_EQ(JsonExtractInt(text.c_str(), L"activeFile", 0), 5);

    // A path of backslashes becomes longest by escaping. It comes back whole.
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
    EXPECT_EQ(files->cursors[0], 0);  // the cursor after the list does not belong to it
    EXPECT_EQ(parse(L"{\"path\": \"a\"}"), 0);
    EXPECT_EQ(parse(L"{\"files\": [{\"path\": \"a\""), 0);
    EXPECT_EQ(parse(L"{\"files\": []}"), 0);
    EXPECT_EQ(parse(L"{\"files\": [{\"path\": \"a[1]\\\"].bas\"}, {\"path\": \"b\"}]}"), 2) << "not in a path";
}

TEST(WorkspaceText, IsToldFromOtherFilesByItsMembers) {
    for (const auto& tabs : {std::vector<WorkspaceTab>{}, {{.path = L"a"}}})
        EXPECT_TRUE(WorkspaceIsOurs(WorkspaceCompose(tabs, 0, 0, L"").c_str()));
    EXPECT_TRUE(WorkspaceIsOurs(L" {\"files\":[{\"path\":\"a\",\"cursorPos\":1}]}"));
    for (const wchar_t* other :
         {L"", L"{}", L"[]", L"{\"version\": \"1.0\", \"files\": [\"dist\"], \"activeFile\": 1}",
          L"{\"folders\": [{\"path\": \".\"}], \"activeFile\": 0}", L"{\"files\": []}",
          L"{\"files\": [{\"path\": \"a\", \"size\": 5}]}",
          L"{\"x\": \"files\", \"y\": [{\"path\": \"a\"}], \"activeFile\": 1}",
          L"{\"files\": [{\"name\": \"a\"}], \"path\": 1, \"activeFile\": 1}", L"{\"files\": [{\"path\": \"a\""})
        EXPECT_FALSE(WorkspaceIsOurs(other)) << std::string(other, other + std::wcslen(other));
}

TEST(WorkspaceText, ASaveTouchesOnlyItsOwnFile) {
    const std::vector<WorkspaceTab> none = {{.path = L""}}, one = {{.path = L""}, {.path = L"C:\\a.bas"}};
    using enum WorkspaceFile;
    using Step = WorkspaceSaveStep;
    for (const WorkspaceFile file : {Foreign, Unreadable})
        for (const bool isDefault : {false, true}) EXPECT_EQ(WorkspaceSaveStepOf(file, one, isDefault), Step::Refuse);
    for (const WorkspaceFile file : {Missing, Ours}) EXPECT_EQ(WorkspaceSaveStepOf(file, one, false), Step::Write);
    EXPECT_EQ(WorkspaceSaveStepOf(Ours, none, true), Step::DeleteFile);
    EXPECT_EQ(WorkspaceSaveStepOf(Ours, none, false), Step::LeaveFile) << "the user has named it";
    EXPECT_EQ(WorkspaceSaveStepOf(Missing, none, true), Step::LeaveFile);
    EXPECT_EQ(WorkspaceFileOf(true, nullptr), Unreadable);
    EXPECT_EQ(WorkspaceFileOf(true, L""), Missing);
    EXPECT_EQ(WorkspaceFileOf(true, L"{}"), Foreign);
}

TEST(WorkspaceText, ReadsAsAWhole) {
    const Workspace read = WorkspaceParse(
        L"{\"files\": [{\"path\": \"a\", \"cursorPos\": 3},{\"path\": \"b\", \"cursorPos\": 0},{\"path\": \"c\", "
        L"\"cursorPos\": 5}], \"activeFile\": 2, \"compiler\": \"KVXB64\", \"compilerFlags\": \"-x\"}");
    ASSERT_EQ(read.files.size(), 3U);
    EXPECT_EQ(read.files[2].path, L"c");
    EXPECT_EQ(read.activeFile, 2);
    EXPECT_EQ(read.compiler, 1);
    EXPECT_EQ(read.flags, L"-x");
    const std::vector<WorkspaceCaret> all = WorkspaceCarets(read, 9), two = WorkspaceCarets(read, 2);
    ASSERT_EQ(all.size(), 2U) << "a caret at the start needs no message";
    EXPECT_TRUE(all[1].tab == 2 && all[1].position == 5);
    EXPECT_EQ(two.size(), 1U) << "no more tabs than there are";
    EXPECT_EQ(WorkspaceParse(L"").compiler, -1);
    EXPECT_EQ(WorkspaceParse(L"\"compiler\": \"none\"").compiler, -1);

    EXPECT_EQ(WorkspaceFlagsToSet(L"-D \"x\"", L"-D "), L"-D \"x\"") << "not its own mutilated copy";
    EXPECT_EQ(WorkspaceFlagsToSet(L"-O", L"-x"), L"-x");
    const struct {
        const wchar_t *given, *current, *path;
    } paths[] = {{L"", L"", L"C:\\exe\\workspace.json"},
                 {L"", L"D:\\w.json", L"D:\\w.json"},
                 {L"n.json", L"D:\\w.json", L"C:\\exe\\n.json"},
                 {L"\\n.json", L"", L"\\n.json"}};
    for (const auto& test : paths) EXPECT_EQ(WorkspacePathFor(test.given, test.current, L"C:\\exe\\"), test.path);
}

TEST(WorkspaceText, EscapingStopsInTime) {
    wchar_t out[6];
    JsonEscape(L"abcdefgh", out, 6);
    EXPECT_STREQ(out, L"abcd");
    JsonEscape(L"\\\\\\\\", out, 6);
    EXPECT_STREQ(out, L"\\\\\\\\");
}

}  // namespace
