// Measures the settings dialog: from its command until everything in it is painted, and from Fetch until 5,000 models are
// in the list. The floor of the list is a bare WinHTTP call for the same reply.
#include "support/http_server.h"

#include "bench.h"

#include "ai/http.h"
#include "resources/ids.h"
#include "settingsui/settings_pages.h"

#include <cstdlib>
#include <string>

namespace {

constexpr int kStarts = 5;
constexpr int kOpenings = 20;
constexpr int kFetches = 10;
constexpr int kModels = 5000;
constexpr double kSettingsLimitMs = 20000;
constexpr wchar_t kPageShown[] = L"LM-Studio";

template <typename Condition>
void AwaitOrDie(const char* what, Condition condition) {
    const double end = NowMs() + kSettingsLimitMs;
    while (!condition()) {
        if (NowMs() > end) Die(what);
        Pause(kLookMs);
    }
}

HWND FindSettings(const Program& editor) {
    for (HWND window = nullptr; (window = FindWindowExW(nullptr, window, L"#32770", L"Settings")) != nullptr;)
        if (GetWindow(window, GW_OWNER) == editor.Main()) return window;
    return nullptr;
}

BOOL CALLBACK AwaitChildPainted(HWND child, LPARAM) {
    if (IsWindowVisible(child)) AwaitPainted(child, NowMs() + kSettingsLimitMs);
    return TRUE;
}

void AwaitAllPainted(HWND dialog) {
    AwaitPainted(dialog, NowMs() + kSettingsLimitMs);
    EnumChildWindows(dialog, AwaitChildPainted, 0);
    Ask(dialog, WM_NULL);  // the update region is empty when painting begins; WM_NULL is answered after the painting
}

HWND PageOf(HWND dialog, std::size_t page) {
    return GetDlgItem(dialog, IDC_SETTINGS_PAGE_FIRST + static_cast<int>(page));
}

double OpenOnce(const Program& editor, std::size_t page, HWND* dialog) {
    const double start = NowMs();
    PostMessageW(editor.Main(), WM_COMMAND, IDM_PROJECT_SETTINGS, 0);
    AwaitOrDie("the settings do not open", [&] {
        *dialog = FindSettings(editor);
        return *dialog != nullptr && IsWindowVisible(PageOf(*dialog, page));
    });
    AwaitAllPainted(*dialog);
    return NowMs() - start;
}

void Close(const Program& editor, HWND dialog) {
    Ask(dialog, WM_COMMAND, IDCANCEL);
    AwaitOrDie("the settings do not close", [&] { return FindSettings(editor) == nullptr; });
    Ask(editor.Main(), WM_NULL);
}

void GoToPage(HWND dialog, std::size_t page) {
    const HWND list = GetDlgItem(dialog, IDC_SETTINGS_PAGES);
    Ask(list, LB_SETCURSEL, page);
    Ask(dialog, WM_COMMAND, MAKEWPARAM(IDC_SETTINGS_PAGES, LBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
    AwaitAllPainted(dialog);
}

std::size_t NumberOfPage(std::wstring_view title) {
    std::size_t page = 0;
    while (SettingsPages()[page].title != title) ++page;
    return page;
}

// The place of the list of models among the items of its page.
int NumberOfModels(std::size_t page) {
    int item = 0;
    while (SettingsPages()[page].items[static_cast<std::size_t>(item)].control != SettingControl::Model) ++item;
    return item;
}

void MeasureFirstOpenings() {
    std::vector<double> times;
    for (int i = 0; i < Runs(kStarts); ++i) {
        const Folder folder;
        std::size_t size = 0;
        const std::wstring file = SourceOfSize(50'000, &size);
        Program editor(Kind::Editor, folder, file);
        editor.AwaitReady(size);
        editor.SettledMemory();
        HWND dialog = nullptr;
        times.push_back(OpenOnce(editor, 0, &dialog));
    }
    Report(
        {.work = "from the command to painted, the first time", .program = times, .maxValue = 150, .headline = true});
}

void MeasureOpenings(const Program& editor) {
    for (const wchar_t* const title : {L"Editor", L"Appearance"}) {
        const std::size_t page = NumberOfPage(title);
        HWND dialog = nullptr;
        OpenOnce(editor, 0, &dialog);
        GoToPage(dialog, page);  // the dialog opens with the page from before
        Close(editor, dialog);
        std::vector<double> times;
        for (int i = 0; i < Runs(kOpenings); ++i) {
            times.push_back(OpenOnce(editor, page, &dialog));
            Close(editor, dialog);
        }
        Report({.work = "- again, at " + Narrow(title), .program = times, .maxValue = 150, .headline = true});
        // Back to the first page, at which the next dialog opens.
        OpenOnce(editor, page, &dialog);
        GoToPage(dialog, 0);
        Close(editor, dialog);
    }
}

double FetchOnce(HWND dialog, std::size_t page, int item) {
    const int first = IDC_SETTINGS_ITEM_FIRST + item * SETTINGS_PARTS;
    const HWND window = PageOf(dialog, page);
    const HWND list = GetDlgItem(window, first);
    Ask(list, CB_RESETCONTENT);
    const double start = NowMs();
    Ask(GetDlgItem(window, first + 2), BM_CLICK);
    AwaitOrDie("the models do not come", [&] { return Ask(list, CB_GETCOUNT) == kModels; });
    AwaitAllPainted(dialog);
    return NowMs() - start;
}

double GetOnce(const std::wstring& url) {
    const double start = NowMs();
    HttpResponseBuffer reply;
    if (WinHttpGet(url.c_str(), nullptr, &reply) == 0) Die("the bare call has failed");
    std::free(reply.data);
    return NowMs() - start;
}

}  // namespace

void MeasureSettings() {
    MeasureFirstOpenings();
    std::string models;
    for (int i = 0; i < kModels; ++i)
        models += (i == 0 ? "" : ",") + std::string(R"({"id":"publisher/model-)") + std::to_string(i * 7919 % kModels) +
                  R"(-instruct"})";
    HttpServer server([&](const std::string& request) {
        const bool known = request.starts_with("GET /v1/models ");
        return HttpAnswer(known ? 200 : 404, known ? R"({"data":[)" + models + "]}" : "{}");
    });
    const Folder folder;
    WritePrivateProfileStringW(L"AI", L"LMStudioUrl", server.Url(L"/v1").c_str(),
                               (folder.Path() + L"Editor.ini").c_str());
    std::size_t size = 0;
    const std::wstring file = SourceOfSize(50'000, &size);
    Program editor(Kind::Editor, folder, file);
    editor.AwaitReady(size);
    editor.SettledMemory();
    MeasureOpenings(editor);
    const std::size_t page = NumberOfPage(kPageShown);
    HWND dialog = nullptr;
    OpenOnce(editor, 0, &dialog);
    GoToPage(dialog, page);
    std::vector<double> floor, program;
    for (int i = 0; i < Runs(kFetches); ++i) {
        floor.push_back(GetOnce(server.Url(L"/v1/models")));
        program.push_back(FetchOnce(dialog, page, NumberOfModels(page)));
    }
    Report({.work = "5,000 models, fetched and listed",
            .floor = floor,
            .program = program,
            .maxValue = 100,
            .note = "floor: WinHTTP alone",
            .headline = true});
}
