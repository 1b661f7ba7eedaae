// The session file as text, in UTF-8: its keys in their order, writing it, and reading it line by line. What the values mean
// to the program is in session_view. Pure.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// In the order of the file.
enum class SessionKey : std::uint8_t {
    ActiveTab,
    ActiveCompiler,
    ProjectRoot,  // the only one that is text
    ShowProjectTree,
    ShowOutput,
    ShowAsmPane,
    ShowAiPane,
    TreeWidth,
    SplitHorizontal,
    SplitPos,
    EditorZoom,
    WordWrap,
    FullScreen,
    ShowIndentGuides,
    BuildProfile,
    EnableAutoComplete,
    AutoCompleteTrigger,
    AutoUpperKeywords,
    Theme,
    TabCount,
    // Keys of a file section
    Path,
    Cursor,
    Scroll,
    SelectionStart,
    SelectionEnd,
    Bookmarks,
    Breakpoints,
    BreakpointRule,  // once for each breakpoint that is more than a line
};
inline constexpr std::size_t kSessionHeaderKeys = static_cast<std::size_t>(SessionKey::Path);

// What the session's header holds, by SessionKey; flags are any number, written as 0 or 1.
struct SessionHeader {
    std::int32_t numbers[kSessionHeaderKeys] = {};
    std::string projectRoot;  // UTF-8

    std::int32_t& operator[](SessionKey key) { return numbers[static_cast<std::size_t>(key)]; }
};

// What a breakpoint is beyond its line.
struct SessionBreakpoint {
    std::int32_t line = 0;  // 0-based
    bool enabled = true;
    std::string condition;  // UTF-8, without line breaks
};

struct SessionFile {
    std::string path;        // UTF-8
    bool hasEditor = false;  // without one, only the path is written
    std::uint64_t cursor = 0;
    std::uint64_t scroll = 0;  // first visible line
    std::uint64_t selectionStart = 0;
    std::uint64_t selectionEnd = 0;
    std::vector<std::int32_t> bookmarks = {};    // 0-based lines
    std::vector<std::int32_t> breakpoints = {};  // 0-based lines
    std::vector<SessionBreakpoint> rules = {};   // of those that are disabled or have a condition
};

// The whole file, lines ending in CR LF. "TabCount" is the number of `files`, whatever the header says.
std::string SessionCompose(const SessionHeader& header, std::span<const SessionFile> files);

// Text after "KEY=" when the line begins with exactly that, else null.
const char* SessionParseLine(const char* line, const char* key);

// One recognised line.
struct SessionItem {
    int file;  // 0-based number of the file section, below 0 in the header
    SessionKey key;
    std::int32_t number;  // the value as a decimal number, 0 when it is none
    std::string text;     // the value as it stands
};

// Every line that the program knows, in the order of the file; all else is skipped. A "[File" header without a number
// makes what follows header lines again.
std::vector<SessionItem> SessionParse(std::string_view text);

// True when some line of the text is a "Path=" with something after it.
bool SessionListsFiles(std::string_view text);

// The project tree's width as a session restores it.
std::int32_t SessionTreeWidth(std::int32_t stored);

// Numbers of a comma-separated list of lines.
std::vector<std::int32_t> SessionParseLines(std::string_view list);

// The value of a BreakpointRule, "line,enabled,condition".
SessionBreakpoint SessionParseRule(std::string_view value);

// Leading blanks, a sign, decimal digits; 0 when there are none; what 32 bits cannot hold is the nearest that they can.
std::int32_t SessionNumber(std::string_view text);
