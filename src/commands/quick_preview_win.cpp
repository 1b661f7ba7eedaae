// Reads and draws the preview of the file finder. UI thread, but for the worker's own part.
#include "commands/quick_preview.h"

#include "base/handles.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/worker.h"
#include "documents/document_row.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "search/preview_lines.h"
#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/paint.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

namespace {

constexpr UINT kPauseMs = 120;  // on a row, before its file is read
constexpr int kMostLines = 80;
constexpr LONGLONG kMostBytes = 1 << 20;

struct QuickPreviewText {
    unsigned request = 0;
    PreviewLines text;
};
using QuickPreviewTextPtr = std::unique_ptr<QuickPreviewText>;

struct ReadRequest {
    HWND window;
    unsigned number;
    std::wstring path;
    int line;
};

struct PreviewState {
    QuickPreview what;
    PreviewLines text;
    unsigned request = 0;
    Worker worker;  // one at a time: it may hang on a share that is gone
    bool waits = false;
};
PreviewState g_preview;

PreviewLines Problem(const wchar_t* text) { return {.first = 1, .lines = {}, .problem = text}; }

PreviewLines ReadPreview(const std::wstring& path, int line) {
    if (!PathAnswers(path.c_str())) return Problem(Text(L"The network folder does not answer"));
    WIN32_FILE_ATTRIBUTE_DATA facts = {};
    if (GetFileAttributesExW(PathExtended(path).c_str(), GetFileExInfoStandard, &facts) == FALSE)
        return Problem(Text(L"The file is not there"));
    if ((static_cast<LONGLONG>(facts.nFileSizeHigh) << 32 | facts.nFileSizeLow) > kMostBytes)
        return Problem(Text(L"Too large for a preview"));
    std::size_t length = 0;
    const HeapBlock<char> text(ReadSourceFileForEditor(path.c_str(), &length, nullptr, nullptr));
    return text ? PreviewLinesOf({text.get(), length}, line, kMostLines) : Problem(Text(L"The file cannot be read"));
}

void ReadForPreview(ReadRequest& request, const WorkerCancel&) {
    auto text = std::make_unique<QuickPreviewText>();
    text->request = request.number;
    text->text = ReadPreview(request.path, request.line);
    WorkerPost(request.window, MSG_QUICK_PREVIEW, std::move(text));
}

PreviewLines LinesOfDocument(const DocumentTab& document, int line) {
    const HWND editor = document.editor;
    const auto caret = static_cast<WPARAM>(SciSend(editor, SCI_GETCURRENTPOS));
    if (line == 0) line = static_cast<int>(SciSend(editor, SCI_LINEFROMPOSITION, caret)) + 1;
    constexpr int kBefore = 8;
    const int first = std::max(line - kBefore, 1);
    PreviewLines lines{.first = first, .lines = {}, .problem = {}};
    const auto last = std::min<LRESULT>(SciSend(editor, SCI_GETLINECOUNT), first + kMostLines - 1);
    for (LRESULT number = first; number <= last; ++number) {
        const auto index = static_cast<WPARAM>(number - 1);
        constexpr LRESULT kMostOfLine = 4096;
        const LRESULT start = SciSend(editor, SCI_POSITIONFROMLINE, index);
        const LRESULT end = std::min(SciSend(editor, SCI_GETLINEENDPOSITION, index), start + kMostOfLine);
        std::string text(static_cast<std::size_t>(end - start) + 1, '\0');
        Sci_TextRangeFull range = {{start, end}, text.data()};
        SciSend(editor, SCI_GETTEXTRANGEFULL, 0, reinterpret_cast<LPARAM>(&range));
        text.pop_back();
        std::erase(text, '\0');
        const PreviewLines one = PreviewLinesOf(text + "\n", 0, 1);
        lines.lines.push_back(one.lines.empty() ? L"" : one.lines.front());
    }
    return lines;
}

}  // namespace

void QuickPreviewSelect(HWND window, const QuickPreview& what) {
    if (what == g_preview.what) return;
    g_preview.what = what;
    ++g_preview.request;
    KillTimer(window, TIMER_QUICK_PREVIEW);
    const int tab = TabBarFindDocument(what.document);
    if (tab >= 0 && TabAt(tab).editor == nullptr) g_preview.what.path = TabAt(tab).path;  // is read when it is shown
    if (tab >= 0 && TabAt(tab).editor != nullptr)
        g_preview.text = LinesOfDocument(TabAt(tab), what.line);
    else if (g_preview.what.path.empty())
        g_preview.text = {};
    else
        SetTimer(window, TIMER_QUICK_PREVIEW, kPauseMs, nullptr);  // until then the former text stays
}

void QuickPreviewOnTimer(HWND window) {
    if (!WorkerWait(g_preview.worker, 0)) return;  // tries again with the next tick
    KillTimer(window, TIMER_QUICK_PREVIEW);
    g_preview.worker =
        WorkerStart<ReadForPreview>(ReadRequest{window, g_preview.request, g_preview.what.path, g_preview.what.line});
}

bool QuickPreviewOnText(WPARAM posted) {
    QuickPreviewTextPtr text = WorkerTake<QuickPreviewTextPtr>(posted);
    if (text->request != g_preview.request) return false;
    g_preview.text = std::move(text->text);
    return true;
}

void QuickPreviewDraw(HDC dc, const RECT& area) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const UiFontSizes& sizes = UiSizes();
    FillArea(dc, area, chrome.paneBack);
    const HGDIOBJ font = SelectObject(dc, UiFixedFont());
    SetBkMode(dc, TRANSPARENT);
    RECT line = {area.left + UiScaled(4), area.top + UiScaled(2), area.right - UiScaled(2), area.bottom};
    const PreviewLines& text = g_preview.text;
    SetTextColor(dc, ThemeQuietText());
    if (!text.problem.empty())
        DrawTextW(dc, text.problem.c_str(), -1, &line, DT_CENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    const int last = text.first + static_cast<int>(text.lines.size()) - 1;
    const int numbers = static_cast<int>(std::to_wstring(last).size()) * sizes.fixedWidth;
    for (int i = 0; text.first + i <= last && line.top + sizes.fixedHeight <= area.bottom; ++i) {
        line.bottom = line.top + sizes.fixedHeight;
        if (text.first + i == g_preview.what.line)
            FillArea(dc, {area.left, line.top, area.right, line.bottom}, chrome.selected);
        RECT number = {line.left, line.top, line.left + numbers, line.bottom};
        SetTextColor(dc, ThemeQuietText());
        DrawTextW(dc, std::to_wstring(text.first + i).c_str(), -1, &number, DT_RIGHT | DT_SINGLELINE);
        RECT words = {number.right + 2 * sizes.fixedWidth, line.top, line.right, line.bottom};
        SetTextColor(dc, chrome.paneText);
        const std::wstring& shown = text.lines[static_cast<std::size_t>(i)];
        ExtTextOutW(dc, words.left, words.top, ETO_CLIPPED, &words, shown.c_str(), static_cast<UINT>(shown.size()),
                    nullptr);
        line.top = line.bottom;
    }
    SelectObject(dc, font);
}

void QuickPreviewForget(HWND window) {
    KillTimer(window, TIMER_QUICK_PREVIEW);
    g_preview.what = {};
    g_preview.text = {};
    ++g_preview.request;
}

void QuickPreviewDrop(HWND window) {
    QuickPreviewForget(window);
    WorkerDropPosts<QuickPreviewTextPtr>(window, MSG_QUICK_PREVIEW);
}
