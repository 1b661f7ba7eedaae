// The status bar: its texts and its painting. UI thread.
#include "commands/status_bar.h"

#include "base/texts.h"
#include "commands/command_state.h"
#include "commands/commands_state.h"
#include "commands/focus_frame.h"
#include "commands/status_bar_text.h"
#include "commands/status_fields.h"
#include "commands/status_fields_window.h"
#include "compile/build_source.h"
#include "documents/document_row.h"
#include "documents/save_rules.h"
#include "scintilla/sci.h"
#include "settings/compiler_presence.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"
#include "ui/accessible.h"
#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/paint.h"
#include "ui/subclass.h"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace {

// The texts of the control. They are kept here too, because each key compares them, each paint draws them, and a
// message to the control takes longer.
std::array<std::wstring, kStatusPartCount> g_texts;

// The document that the message is about; 0: about none.
DocumentId g_textAbout = 0;
ULONGLONG g_textSince = 0;  // GetTickCount64 value when the message came

// True while the control takes a text. It then asks for a paint at once, which would delay the keys that wait: the part
// stays invalid and is painted when the message queue is empty.
bool g_takesText = false;

constexpr int kMinimumMessage = 140;  // at 96 dpi, like the next two
constexpr int kBeforeText = 8;
constexpr int kAfterText = 4;

struct StatusSizes {
    StatusWidths wanted = {};
    StatusWidths longest = {};  // characters of the longest text measured
    int width = 0;              // of the bar
};
StatusSizes g_sizes;

void ShareStatusWidth() {
    StatusWidths wanted = g_sizes.wanted;
    for (int part = 0; part < kStatusPartCount; ++part)
        if (StatusFieldIsHidden(g_settings.statusHidden, static_cast<StatusPart>(part)))
            wanted[static_cast<std::size_t>(part)] = 0;
    StatusWidths ends = FitStatusParts(g_sizes.width, wanted);
    // Without progress its place is the message's: the verdict of a build comes as its progress goes.
    if (g_texts[kProgress].empty()) ends[kMessage] = ends[kProgress];
    ends.back() = -1;  // SB_SETPARTS: to the right edge
    SendMessageW(g_commands.hStatusBar, SB_SETPARTS, kStatusPartCount, reinterpret_cast<LPARAM>(ends.data()));
    InvalidateRect(g_commands.hStatusBar, nullptr, FALSE);
}

// Makes a part wide enough for a text whose width is known.
bool WidenStatusPart(std::size_t part, int textWidth) {
    const int width = UiScaled(kBeforeText) + textWidth + UiScaled(kAfterText);
    if (width <= g_sizes.wanted[part]) return false;
    g_sizes.wanted[part] = width;
    return true;
}

// Returns false when the part is wide enough already. A text that is no longer than one before is taken to be so.
bool WidenForText(std::size_t part, const std::wstring& text) {
    const int length = static_cast<int>(text.size());
    if (part == kMessage || part == kProject || length <= g_sizes.longest[part]) return false;
    g_sizes.longest[part] = length;
    return WidenStatusPart(part, UiTextWidth(text.c_str(), length));
}

// As wide as its text, because another project is rarely opened, and most people have none.
void MeasureProjectPart() {
    const std::wstring& text = g_texts[kProject];
    g_sizes.wanted[kProject] = 0;
    if (!text.empty()) WidenStatusPart(kProject, UiTextWidth(text.c_str(), static_cast<int>(text.size())));
}

void MeasureStatusParts() {
    g_sizes.longest = {};
    g_sizes.wanted = {UiScaled(kMinimumMessage)};
    std::vector<std::wstring> texts;
    const auto samples = StatusSamples();
    for (const auto& sample : samples) texts.push_back(sample.second);
    const std::vector<int> widths = UiTextWidths(texts);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        int& longest = g_sizes.longest[samples[i].first];
        longest = std::max(longest, static_cast<int>(texts[i].size()));
        WidenStatusPart(samples[i].first, widths[i]);
    }
    for (std::size_t part = 0; part < kStatusPartCount; ++part) WidenForText(part, g_texts[part]);
    MeasureProjectPart();
}

void SetStatusPart(int part, const std::wstring& text) {
    std::wstring& shown = g_texts[static_cast<std::size_t>(part)];
    if (g_commands.hStatusBar == nullptr || text == shown) return;
    const bool appears = part == kProgress && shown.empty() != text.empty();
    shown = text;
    if (WidenForText(static_cast<std::size_t>(part), text) || appears) ShareStatusWidth();
    g_takesText = true;
    SendMessageW(g_commands.hStatusBar, SB_SETTEXTW, static_cast<WPARAM>(part | SBT_NOBORDERS),
                 reinterpret_cast<LPARAM>(text.c_str()));
    g_takesText = false;
}

void PaintStatusPart(HDC dc, int part, const RECT& area, const ThemeChrome& chrome) {
    if (area.right <= area.left) return;
    const std::wstring& text = g_texts[static_cast<std::size_t>(part)];
    RECT inner = area;
    inner.left += UiScaled(kBeforeText);
    if (part == kMessage) inner.right -= UiScaled(kAfterText);
    SetTextColor(dc, part == kProgress ? chrome.accent : chrome.statusText);
    DrawTextW(dc, text.c_str(), -1, &inner, DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
    if (part != kMessage && part != kProgress) {
        RECT line = {area.left, area.top + UiScaled(5), area.left + 1, area.bottom - UiScaled(5)};
        FillArea(dc, line, chrome.line);
    }
    if (part != StatusFieldWithKeyboard()) return;
    DrawFocusFrame(dc, {area.left + 1, area.top + 1, area.right - 1, area.bottom - 1});
}

void PaintStatusBar(HWND window) {
    const BufferedPaint paint(window);
    const HDC dc = paint.Dc();
    const RECT& client = paint.Client();
    const ThemeChrome& chrome = ThemeCurrentChrome();
    FillArea(dc, client, chrome.statusBack);
    FillArea(dc, {0, 0, client.right, 1}, chrome.line);
    SetBkMode(dc, TRANSPARENT);
    const HGDIOBJ oldFont = SelectObject(dc, UiFont());
    int ends[kStatusPartCount] = {};
    SendMessageW(window, SB_GETPARTS, kStatusPartCount, reinterpret_cast<LPARAM>(ends));
    int left = 0;
    for (int part = 0; part < kStatusPartCount; ++part) {
        const int right = ends[part] < 0 ? static_cast<int>(client.right) : ends[part];
        if (left < paint.Area().right && right > paint.Area().left)
            PaintStatusPart(dc, part, {left, 1, right, client.bottom}, chrome);
        left = right;
    }
    SelectObject(dc, oldFont);
}

// What a screen reader says of a part: "Encoding: UTF-8".
std::wstring NameOfPart(int part) {
    const std::wstring name = Text(StatusFieldOf(static_cast<StatusPart>(part)).name);
    const std::wstring& text = g_texts[static_cast<std::size_t>(part)];
    return text.empty() ? name : name + L": " + text;
}

LRESULT CALLBACK StatusBarProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    switch (message) {
        case WM_ERASEBKGND: return 1;
        case WM_PAINT:
            if (!g_takesText) PaintStatusBar(window);
            return 0;
        case WM_GETOBJECT:
            return AccessibleAnswer(window, wParam, lParam, Text(L"Status Bar"),
                                    SubclassNext(window, message, wParam, lParam), {kStatusPartCount, NameOfPart});
        default:
            if (StatusFieldsTake(window, message, wParam, lParam)) return 0;
            break;
    }
    return SubclassNext(window, message, wParam, lParam);
}

// The bytes that the file has, or will have after the next save; -1: this would take long to find out. Scintilla counts
// the characters of the lines while they change, so that no key looks at the whole text.
LRESULT BytesInFile(const DocumentTab& tab) {
    constexpr LRESULT kCounted = 32 << 20;  // bytes of UTF-8; the first count takes some 10 ms
    if (tab.hasFile && !tab.modified && tab.onDisk.presence == FilePresence::There)
        return static_cast<LRESULT>(tab.onDisk.size);
    const LRESULT length = SciSend(tab.editor, SCI_GETLENGTH);
    const bool utf16 = tab.form.utf16 != Utf16Order::None;
    if (!utf16 && EncodingOfNextSave(tab, EncodingOfNewFiles(g_settings)) == TextEncoding::Utf8) return length;
    CPINFO page = {};
    if (length > kCounted || (!utf16 && (GetCPInfo(CP_ACP, &page) == FALSE || page.MaxCharSize != 1))) return -1;
    if (SciSend(tab.editor, SCI_GETLINECHARACTERINDEX) == SC_LINECHARACTERINDEX_NONE)
        SciSend(tab.editor, SCI_ALLOCATELINECHARACTERINDEX, SC_LINECHARACTERINDEX_UTF16);
    const LRESULT last = SciSend(tab.editor, SCI_GETLINECOUNT) - 1;
    const LRESULT start = SciSend(tab.editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(last));
    const LRESULT units =
        SciSend(tab.editor, SCI_INDEXPOSITIONFROMLINE, static_cast<WPARAM>(last), SC_LINECHARACTERINDEX_UTF16) +
        SciSend(tab.editor, SCI_COUNTCODEUNITS, static_cast<WPARAM>(start), length);
    return utf16 ? 2 * units + (tab.form.mark ? 2 : 0) : units;
}

// Counting the characters of a large selection takes long, so these are told in bytes.
SelectionFacts SelectionOf(const DocumentTab& tab) {
    const HWND editor = tab.editor;
    constexpr LRESULT kCounted = 1 << 20;  // bytes
    constexpr LRESULT kAdded = 2000;       // selections whose lengths are asked for
    SelectionFacts facts = {.selections = SciSend(editor, SCI_GETSELECTIONS)};
    if (SciSend(editor, SCI_GETSELECTIONEMPTY) != 0) {
        facts.length = BytesInFile(tab);
        return facts;
    }
    const auto lineOf = [&](LRESULT at) { return SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(at)); };
    for (LRESULT i = 0; i < std::min<LRESULT>(facts.selections, kAdded); ++i) {
        const auto index = static_cast<WPARAM>(i);
        const LRESULT start = SciSend(editor, SCI_GETSELECTIONNSTART, index);
        const LRESULT end = SciSend(editor, SCI_GETSELECTIONNEND, index);
        facts.inBytes = facts.inBytes || end - start > kCounted;
        facts.characters +=
            facts.inBytes ? end - start : SciSend(editor, SCI_COUNTCHARACTERS, static_cast<WPARAM>(start), end);
        if (facts.selections == 1) facts.lines = lineOf(end) - lineOf(start) + 1;
    }
    if (facts.selections > kAdded) facts.characters = 0;
    return facts;
}

}  // namespace

HWND StatusBarCreate(HWND parent, int controlId) {
    HWND bar = CreateWindowExW(
        0, STATUSCLASSNAMEW, nullptr, WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | CCS_NORESIZE | CCS_NOPARENTALIGN, 0, 0,
        0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(controlId)), g_ui.hInstance, nullptr);
    if (bar == nullptr) return nullptr;
    SubclassAdd(bar, StatusBarProc);
    // The parts must exist before a text is set. StatusBarLayout sets their widths.
    int ends[kStatusPartCount] = {};
    SendMessageW(bar, SB_SETPARTS, kStatusPartCount, reinterpret_cast<LPARAM>(ends));
    return bar;
}

int StatusBarHeight() { return UiScaled(24); }

void StatusBarLayout(int width) {
    if (g_commands.hStatusBar == nullptr) return;
    g_sizes.width = width;
    ShareStatusWidth();
}

void StatusBarApplyTheme() {
    SendMessageW(g_commands.hStatusBar, WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE);
    StatusFieldsApplyTheme();
    MeasureStatusParts();
    ShareStatusWidth();
}

void StatusBarSetText(const wchar_t* text) {
    g_textAbout = 0;
    g_textSince = GetTickCount64();
    SetStatusPart(kMessage, text != nullptr ? text : L"");
}

void StatusBarSetDocumentText(DocumentId document, const wchar_t* text) {
    const bool empty = text == nullptr || text[0] == L'\0';
    if (empty && g_textAbout != document) return;
    StatusBarSetText(text);
    if (!empty) g_textAbout = document;
}

void StatusBarForgetOthers(DocumentId document) {
    if (g_textAbout != 0 && g_textAbout != document) StatusBarSetText(L"");
}

void StatusBarPassText() {
    constexpr ULONGLONG kReadMs = 8000;  // in which everybody has read it
    if (!g_texts[kMessage].empty() && GetTickCount64() - g_textSince >= kReadMs) StatusBarSetText(L"");
}

void StatusBarSetProgress(const wchar_t* text) { SetStatusPart(kProgress, text != nullptr ? text : L""); }

void StatusBarUpdateCompiler() {
    const std::uint32_t id = CompilerNow();
    SetStatusPart(kCompiler, CompilerLabel(id, CompilerSeemsInstalled(id)));
}

void StatusBarSetProject(const std::wstring& name) {
    SetStatusPart(kProject, ProjectPartText(name));
    MeasureProjectPart();
    ShareStatusWidth();
}

std::wstring StatusBarCutMessage() {
    const std::wstring& text = g_texts[kMessage];
    const int room = StatusBarEnds()[kMessage] - UiScaled(kBeforeText) - UiScaled(kAfterText);
    return UiTextWidth(text.c_str(), static_cast<int>(text.size())) > room ? text : std::wstring();
}

StatusWidths StatusBarEnds() {
    StatusWidths ends = {};
    SendMessageW(g_commands.hStatusBar, SB_GETPARTS, kStatusPartCount, reinterpret_cast<LPARAM>(ends.data()));
    RECT client = {};
    GetClientRect(g_commands.hStatusBar, &client);
    for (int& end : ends)
        if (end < 0) end = client.right;
    return ends;
}

void StatusBarUpdatePosition() {
    SetStatusPart(kTabWidth, TabText(g_settings.tabWidth, g_settings.useTabs != 0));
    SetStatusPart(kZoom, ZoomText(g_settings.fontSize, g_settings.editorZoom));
    if (!IsTabIndex(g_documents.activeTab)) {
        for (const StatusPart part : {kPosition, kSelection, kEncoding, kLineEnding}) SetStatusPart(part, L"");
        return;
    }
    const DocumentTab& tab = TabAt(g_documents.activeTab);
    const LRESULT position = SciSend(tab.editor, SCI_GETCURRENTPOS);
    const LRESULT line = SciSend(tab.editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(position));
    const LRESULT column = SciSend(tab.editor, SCI_GETCOLUMN, static_cast<WPARAM>(position));
    SetStatusPart(kPosition, PositionText(line + 1, column + 1));
    SetStatusPart(kSelection, SelectionText(SelectionOf(tab)));
    SetStatusPart(kEncoding, EncodingName(EncodingOfNextSave(tab, EncodingOfNewFiles(g_settings)), tab.form));
    SetStatusPart(kLineEnding, LineEndingName(static_cast<int>(tab.lineEnding), SaveUnifiesBreaks(tab)));
}
