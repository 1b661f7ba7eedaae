// Turns the values of a session into settings and editor messages. Pure.
#include "session/session_view.h"

#include "base/texts.h"
#include "base/utf8.h"
#include "editor/margins.h"
#include "settings/settings_schema.h"
#include "ui/box_text.h"

#include <Scintilla.h>

#include <algorithm>

namespace {

// The keys of the header that are settings.
constexpr struct {
    SessionKey key;
    std::int32_t Settings::*field;
} kSettingKeys[] = {
    {SessionKey::ActiveCompiler, &Settings::activeCompiler},
    {SessionKey::ShowProjectTree, &Settings::showProjectTree},
    {SessionKey::ShowAiPane, &Settings::showAiSidebar},
    {SessionKey::TreeWidth, &Settings::projectTreeWidth},
    {SessionKey::SplitPos, &Settings::splitter},
    {SessionKey::EditorZoom, &Settings::editorZoom},
    {SessionKey::WordWrap, &Settings::wordWrap},
    {SessionKey::ShowIndentGuides, &Settings::showIndentGuides},
    {SessionKey::BuildProfile, &Settings::profile},
    {SessionKey::EnableAutoComplete, &Settings::enableAutoComplete},
    {SessionKey::AutoCompleteTrigger, &Settings::autoCompleteTrigger},
    {SessionKey::AutoUpperKeywords, &Settings::autoUpperKeywords},
    {SessionKey::Theme, &Settings::theme},
    {SessionKey::TreeExtra, &Settings::projectTreeExtra},
};

constexpr struct {
    SessionKey key;
    bool SessionFrame::*field;
} kFrameKeys[] = {
    {SessionKey::ShowOutput, &SessionFrame::showOutput},
    {SessionKey::ShowAsmPane, &SessionFrame::showAsmPane},
    {SessionKey::SplitHorizontal, &SessionFrame::splitHorizontal},
    {SessionKey::FullScreen, &SessionFrame::fullScreen},
};

// Wider than any desktop, and the editor's own limits of the zoom.
constexpr std::int32_t kLastSplit = 100000;  // pixels
constexpr std::int32_t kLeastZoom = -10, kMostZoom = 60;

std::int32_t LimitedNumber(const Settings& settings, SessionKey key, std::int32_t Settings::*field,
                           std::int32_t number) {
    switch (key) {
        case SessionKey::TreeWidth: return SessionTreeWidth(number);
        case SessionKey::SplitPos: return number < 1 || number > kLastSplit ? settings.*field : number;
        case SessionKey::EditorZoom: return std::clamp(number, kLeastZoom, kMostZoom);
        case SessionKey::Theme: return std::clamp(number, 0, 1);
        default: break;
    }
    static const Settings record{};
    const auto offset = static_cast<std::size_t>(reinterpret_cast<const char*>(&(record.*field)) -
                                                 reinterpret_cast<const char*>(&record));
    const auto rows = SettingRows();
    const auto row = std::ranges::find(rows, offset, &SettingRow::offset);
    return row != rows.end() ? ApplyLimits(row->limits, number) : number;
}

EditorMessages MarkersOnLines(std::string_view lines, int marker) {
    EditorMessages messages;
    for (const std::int32_t line : SessionParseLines(lines))
        if (line >= 0) messages.push_back({SCI_MARKERADD, line, marker});
    return messages;
}

}  // namespace

SessionHeader SessionHeaderOf(const Settings& settings, const SessionFrame& frame) {
    SessionHeader header;
    for (const auto& row : kSettingKeys) header[row.key] = settings.*row.field;
    for (const auto& row : kFrameKeys) header[row.key] = frame.*row.field ? 1 : 0;
    header[SessionKey::ActiveTab] = frame.activeTab;
    header.projectRoot = ToUtf8(settings.projectRoot);
    return header;
}

void SessionApplyHeader(const SessionItem& item, Settings& settings, SessionFrame& frame) {
    const std::int32_t number = item.number;
    for (const auto& row : kSettingKeys)
        if (row.key == item.key) settings.*row.field = LimitedNumber(settings, row.key, row.field, number);
    for (const auto& row : kFrameKeys)
        if (row.key == item.key) frame.*row.field = number != 0;
    if (item.key == SessionKey::TreeWidth) settings.projectTreeExtra = 0;  // TreeExtra comes later, if at all
    if (item.key == SessionKey::ActiveTab) frame.activeTab = number;
    if (item.key == SessionKey::ProjectRoot) SafeCopyW(settings.projectRoot, Utf8ToWideText(item.text));
}

std::vector<SessionBreakpoint> SessionRulesOf(std::span<const UserBreakpoint> breakpoints, DocumentId document) {
    std::vector<SessionBreakpoint> rules;
    for (const UserBreakpoint& breakpoint : breakpoints)
        if (breakpoint.document == document &&
            (!breakpoint.enabled || !breakpoint.condition.empty() || breakpoint.stopFrom > 1))
            rules.push_back({breakpoint.line - 1, breakpoint.enabled, breakpoint.condition,
                             static_cast<std::int32_t>(breakpoint.stopFrom)});
    return rules;
}

std::wstring MissingFilesQuestion(std::span<const SessionFile> missing) {
    constexpr std::size_t kShown = 12;
    std::wstring text = Text(L"These files of the session could not be opened:\n");
    for (std::size_t i = 0; i < std::min(missing.size(), kShown); ++i)
        text += L"\n" + ShortenedPath(Utf8ToWideText(missing[i].path));
    if (missing.size() > kShown) text += TextWith(L"\nand {1} more", {std::to_wstring(missing.size() - kShown)});
    return TextWith(L"{1}\n\nKeep them in the session, so that they are opened once they are there again?", {text});
}

EditorMessages SessionEditorMessages(const SessionItem& item) {
    switch (item.key) {
        case SessionKey::Cursor: return {{SCI_GOTOPOS, item.number, 0}};
        case SessionKey::Scroll: return {{SCI_SETFIRSTVISIBLELINE, item.number, 0}};
        case SessionKey::SelectionStart: return {{SCI_SETSELECTIONSTART, item.number, 0}};
        case SessionKey::SelectionEnd: return {{SCI_SETSELECTIONEND, item.number, 0}};
        case SessionKey::Bookmarks: return MarkersOnLines(item.text, kMarkBookmark);
        case SessionKey::Breakpoints: return MarkersOnLines(item.text, kMarkBreakpoint);
        default: return {};
    }
}
