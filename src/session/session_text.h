// Writes and reads the text of a session file, which is UTF-8. session_view turns the values into settings and editor
// messages. Pure.
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
    ProjectRoot,  // text; the other keys of the header are numbers
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
    TreeExtra,  // what the tree is wider than TreeWidth may say; readers that do not know the key leave it out
    // Keys of a file section
    Path,
    Cursor,
    Scroll,
    SelectionStart,
    SelectionEnd,
    Bookmarks,
    Breakpoints,
    BreakpointRule,  // once for each SessionBreakpoint
    Pinned,          // only of a pinned tab; readers that do not know the key leave it out
};
inline constexpr std::size_t kSessionHeaderKeys = static_cast<std::size_t>(SessionKey::Path);

// The values of the session's header, by SessionKey. A flag may be any number and is written as 0 or 1.
struct SessionHeader {
    std::int32_t numbers[kSessionHeaderKeys] = {};
    std::string projectRoot;  // UTF-8

    std::int32_t& operator[](SessionKey key) { return numbers[static_cast<std::size_t>(key)]; }
};

// A breakpoint that is disabled, or does not stop at each hit.
struct SessionBreakpoint {
    std::int32_t line = 0;  // 0-based
    bool enabled = true;
    std::string condition;      // UTF-8, without line breaks
    std::int32_t stopFrom = 0;  // stops from this hit on; 0 and 1: at each
};

struct SessionFile {
    std::string path;          // UTF-8
    bool hasEditor = false;    // false: only the path is written
    std::uint64_t cursor = 0;  // positions are bytes
    std::uint64_t scroll = 0;  // first visible display line
    std::uint64_t selectionStart = 0;
    std::uint64_t selectionEnd = 0;
    std::vector<std::int32_t> bookmarks = {};    // 0-based lines
    std::vector<std::int32_t> breakpoints = {};  // 0-based lines
    std::vector<SessionBreakpoint> rules = {};   // for the breakpoints that need one
    bool pinned = false;
};

// The text of the whole file, with CR LF. "TabCount" is the number of `files`, not the header's value.
std::string SessionCompose(const SessionHeader& header, std::span<const SessionFile> files);

// The text after "KEY=" when the line begins with that (case-sensitive), else null. Points into `line`.
const char* SessionParseLine(const char* line, const char* key);

// One line with a known key.
struct SessionItem {
    int file;  // 0-based number of the file section; below 0: the header
    SessionKey key;
    std::int32_t number;  // SessionNumber of the value; a flag is 0 or 1
    std::string text;     // the value as it is in the file
};

// The lines with a known key, in the order of the file. Other lines are skipped. The lines after a "[File" without a
// number above 0 count as header lines.
std::vector<SessionItem> SessionParse(std::string_view text);

// Sets the value of a line of a file section in `file`.
void SessionTakeItem(SessionFile& file, const SessionItem& item);

// True when the text has the header line that every session begins with.
bool SessionHasHeader(std::string_view text);

// True when a line of the text is "Path=" with a value that is not empty.
bool SessionListsFiles(std::string_view text);

// The project tree's width that a session restores: `stored`, limited to 100..200.
std::int32_t SessionTreeWidth(std::int32_t stored);

// The numbers of a comma-separated list.
std::vector<std::int32_t> SessionParseLines(std::string_view list);

// Reads the value of a BreakpointRule: "line,enabled,condition"; "line,enabled:hit,condition" for one that stops from a
// hit on.
SessionBreakpoint SessionParseRule(std::string_view value);

// The number at the start of a text: blanks, a sign, decimal digits. 0 without digits; the nearest 32-bit value on
// overflow.
std::int32_t SessionNumber(std::string_view text);
