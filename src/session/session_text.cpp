// Writes and reads the text of a session file. Pure.
#include "session/session_text.h"

#include "base/decimal.h"
#include "base/lines.h"

#include <algorithm>
#include <cstring>

namespace {

enum class ValueKind : std::uint8_t { Number, Flag, Text };

struct KeyRow {
    SessionKey key;
    const char* name;
    ValueKind kind;
};

constexpr KeyRow kHeaderRows[kSessionHeaderKeys] = {
    {SessionKey::ActiveTab, "ActiveTab", ValueKind::Number},
    {SessionKey::ActiveCompiler, "ActiveCompiler", ValueKind::Number},
    {SessionKey::ProjectRoot, "ProjectRoot", ValueKind::Text},
    {SessionKey::ShowProjectTree, "ShowProjectTree", ValueKind::Flag},
    {SessionKey::ShowOutput, "ShowOutput", ValueKind::Flag},
    {SessionKey::ShowAsmPane, "ShowAsmPane", ValueKind::Flag},
    {SessionKey::ShowAiPane, "ShowAiPane", ValueKind::Flag},
    {SessionKey::TreeWidth, "TreeWidth", ValueKind::Number},
    {SessionKey::SplitHorizontal, "SplitHorizontal", ValueKind::Flag},
    {SessionKey::SplitPos, "SplitPos", ValueKind::Number},
    {SessionKey::EditorZoom, "EditorZoom", ValueKind::Number},
    {SessionKey::WordWrap, "WordWrap", ValueKind::Flag},
    {SessionKey::FullScreen, "FullScreen", ValueKind::Flag},
    {SessionKey::ShowIndentGuides, "ShowIndentGuides", ValueKind::Flag},
    {SessionKey::BuildProfile, "BuildProfile", ValueKind::Number},
    {SessionKey::EnableAutoComplete, "EnableAutoComplete", ValueKind::Flag},
    {SessionKey::AutoCompleteTrigger, "AutoCompleteTrigger", ValueKind::Number},
    {SessionKey::AutoUpperKeywords, "AutoUpperKeywords", ValueKind::Flag},
    {SessionKey::Theme, "Theme", ValueKind::Number},
    {SessionKey::TabCount, "TabCount", ValueKind::Number},
    {SessionKey::TreeExtra, "TreeExtra", ValueKind::Number},
};

constexpr KeyRow kFileRows[] = {
    {SessionKey::Path, "Path", ValueKind::Text},
    {SessionKey::Cursor, "Cursor", ValueKind::Number},
    {SessionKey::Scroll, "Scroll", ValueKind::Number},
    {SessionKey::SelectionStart, "SelectionStart", ValueKind::Number},
    {SessionKey::SelectionEnd, "SelectionEnd", ValueKind::Number},
    {SessionKey::Bookmarks, "Bookmarks", ValueKind::Text},
    {SessionKey::Breakpoints, "Breakpoints", ValueKind::Text},
    {SessionKey::BreakpointRule, "BreakpointRule", ValueKind::Text},
    {SessionKey::Pinned, "Pinned", ValueKind::Flag},
};

void WriteLine(std::string& out, const char* key, std::string_view value) {
    out.append(key).append("=").append(value).append("\r\n");
}

void WriteMarkerLines(std::string& out, const char* key, std::span<const std::int32_t> lines) {
    if (lines.empty()) return;
    std::string list;
    for (const std::int32_t line : lines) {
        if (!list.empty()) list += ',';
        list += std::to_string(line);
    }
    WriteLine(out, key, list);
}

void WriteFile(std::string& out, std::size_t number, const SessionFile& file) {
    out.append("\r\n[File").append(std::to_string(number)).append("]\r\n");
    WriteLine(out, "Path", file.path);
    if (file.pinned) WriteLine(out, "Pinned", "1");
    if (!file.hasEditor) return;
    WriteLine(out, "Cursor", std::to_string(file.cursor));
    WriteLine(out, "Scroll", std::to_string(file.scroll));
    WriteLine(out, "SelectionStart", std::to_string(file.selectionStart));
    WriteLine(out, "SelectionEnd", std::to_string(file.selectionEnd));
    WriteMarkerLines(out, "Bookmarks", file.bookmarks);
    WriteMarkerLines(out, "Breakpoints", file.breakpoints);
    for (const SessionBreakpoint& rule : file.rules) {
        const std::string count = rule.stopFrom > 1 ? ":" + std::to_string(rule.stopFrom) : "";
        WriteLine(out, "BreakpointRule",
                  std::to_string(rule.line) + (rule.enabled ? ",1" : ",0") + count + "," + rule.condition);
    }
}

const KeyRow* FindRow(std::span<const KeyRow> rows, const char* line, const char** value) {
    for (const KeyRow& row : rows) {
        *value = SessionParseLine(line, row.name);
        if (*value != nullptr) return &row;
    }
    return nullptr;
}

}  // namespace

std::string SessionCompose(const SessionHeader& header, std::span<const SessionFile> files) {
    std::string out = "[Session]\r\nVersion=1\r\n";
    for (const KeyRow& row : kHeaderRows) {
        const std::int32_t number = header.numbers[static_cast<std::size_t>(row.key)];
        if (row.key == SessionKey::TreeExtra && number == 0) continue;
        if (row.kind == ValueKind::Text)
            WriteLine(out, row.name, header.projectRoot);
        else if (row.key == SessionKey::TabCount)
            WriteLine(out, row.name, std::to_string(files.size()));
        else
            WriteLine(out, row.name, std::to_string(row.kind == ValueKind::Flag ? (number != 0 ? 1 : 0) : number));
    }
    for (std::size_t i = 0; i < files.size(); ++i) WriteFile(out, i + 1, files[i]);
    return out;
}

const char* SessionParseLine(const char* line, const char* key) {
    if (line == nullptr || key == nullptr) return nullptr;
    const std::size_t length = std::strlen(key);
    return std::strncmp(line, key, length) == 0 && line[length] == '=' ? line + length + 1 : nullptr;
}

std::vector<SessionItem> SessionParse(std::string_view text) {
    std::vector<SessionItem> items;
    int file = -1;
    while (!text.empty()) {
        const std::string line{TakeLine(text)};  // a copy with a terminator; a NUL inside ends the value
        if (line.starts_with("[File")) {
            const std::int32_t number = SessionNumber(std::string_view{line}.substr(5));
            file = std::max(number, 0) - 1;
            continue;
        }
        if (line.starts_with("[Session]")) {
            file = -1;
            continue;
        }
        const char* value = nullptr;
        const KeyRow* row = FindRow(file < 0 ? std::span<const KeyRow>{kHeaderRows} : kFileRows, line.c_str(), &value);
        if (row == nullptr) continue;
        const std::int32_t number = SessionNumber(value);
        items.push_back({.file = file,
                         .key = row->key,
                         .number = row->kind == ValueKind::Flag ? (number != 0 ? 1 : 0) : number,
                         .text = value});
    }
    return items;
}

void SessionTakeItem(SessionFile& file, const SessionItem& item) {
    const auto position = static_cast<std::uint64_t>(std::max(item.number, 0));
    file.hasEditor = file.hasEditor || (item.key != SessionKey::Path && item.key != SessionKey::Pinned);
    switch (item.key) {
        case SessionKey::Path: file.path = item.text; break;
        case SessionKey::Cursor: file.cursor = position; break;
        case SessionKey::Scroll: file.scroll = position; break;
        case SessionKey::SelectionStart: file.selectionStart = position; break;
        case SessionKey::SelectionEnd: file.selectionEnd = position; break;
        case SessionKey::Bookmarks: file.bookmarks = SessionParseLines(item.text); break;
        case SessionKey::Breakpoints: file.breakpoints = SessionParseLines(item.text); break;
        case SessionKey::BreakpointRule: file.rules.push_back(SessionParseRule(item.text)); break;
        case SessionKey::Pinned: file.pinned = item.number != 0; break;
        default: break;
    }
}

bool SessionHasHeader(std::string_view text) {
    while (!text.empty())
        if (TakeLine(text).starts_with("[Session]")) return true;
    return false;
}

bool SessionListsFiles(std::string_view text) {
    while (!text.empty()) {
        const std::string line{TakeLine(text)};
        const char* value = SessionParseLine(line.c_str(), "Path");
        if (value != nullptr && value[0] != '\0') return true;
    }
    return false;
}

std::int32_t SessionTreeWidth(std::int32_t stored) { return std::clamp(stored, 100, 200); }

std::vector<std::int32_t> SessionParseLines(std::string_view list) {
    std::vector<std::int32_t> lines;
    while (!list.empty()) {
        const std::size_t end = list.find(',');
        lines.push_back(SessionNumber(list.substr(0, end)));
        list = end == std::string_view::npos ? std::string_view{} : list.substr(end + 1);
    }
    return lines;
}

SessionBreakpoint SessionParseRule(std::string_view value) {
    const auto next = [&value] {
        const std::size_t end = value.find(',');
        const std::string_view field = value.substr(0, end);
        value = end == std::string_view::npos ? std::string_view{} : value.substr(end + 1);
        return field;
    };
    SessionBreakpoint rule;
    rule.line = SessionNumber(next());
    std::string_view enabled = next();
    if (const std::size_t colon = enabled.find(':'); colon != std::string_view::npos) {
        rule.stopFrom = std::max(0, SessionNumber(enabled.substr(colon + 1)));
        enabled = enabled.substr(0, colon);
    }
    rule.enabled = enabled != "0";
    rule.condition = value;
    return rule;
}

std::int32_t SessionNumber(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t");
    return start == std::string_view::npos ? 0 : DecimalNumber(text.substr(start));
}
