// Searches the texts of a source. UI thread, but for the worker's own part.
#include "commands/quick_search.h"

#include "base/worker.h"
#include "resources/ids.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

constexpr std::size_t kAtOnce = 5000;  // so many texts take about a millisecond

constexpr const QuickSource* kSources[] = {&kQuickFiles, &kQuickCommands, &kQuickLine, &kQuickDocumentSymbols,
                                           &kQuickProjectSymbols};

struct QuickFound {
    unsigned request = 0;
    std::shared_ptr<const FuzzyResult> result;
};
using QuickFoundPtr = std::unique_ptr<QuickFound>;

struct SearchRequest {
    HWND window;
    unsigned number;
    FuzzyIndices texts;
    std::wstring pattern;
    std::shared_ptr<const FuzzyResult> before;
};

struct SearchState {
    QuickSearch now;
    unsigned generation = 0;  // of the source, for `now.found`
    unsigned request = 0;
    FuzzyIndices asked;  // the texts of the request
    Worker worker;
};
SearchState g_search;

void SearchTexts(SearchRequest& request, const WorkerCancel& cancel) {
    auto result = std::make_shared<FuzzyResult>(FuzzySearch(request.texts, request.pattern, request.before.get(),
                                                            kMostQuickRows, [&cancel] { return !cancel.Asked(); }));
    if (!result->whole) return;
    auto found = std::make_unique<QuickFound>(QuickFound{request.number, std::move(result)});
    WorkerPost(request.window, MSG_QUICK_FOUND, std::move(found));
}

QuickItem ItemOf(const FuzzyIndices& texts, std::uint32_t number) {
    const FuzzyPlace place = FuzzyPlaceOf(texts, number);
    return {number, FuzzyTextOf(*texts[place.index], place.entry)};
}

void TakeFound(std::shared_ptr<const FuzzyResult> result, FuzzyIndices texts) {
    QuickSearch& now = g_search.now;
    now.running = false;
    now.found = std::move(result);
    now.texts = std::move(texts);
    now.letters = FuzzyQueryOf(now.found->typed);
    now.rows.clear();
    const auto shown = [&now](std::uint32_t number) {
        return now.source->hides == nullptr || !now.source->hides(ItemOf(now.texts, number));
    };
    std::ranges::copy_if(now.found->best, std::back_inserter(now.rows), shown);
    now.hidden = now.found->best.size() - now.rows.size();
}

std::wstring Grouped(std::size_t number) {
    std::wstring text = std::to_wstring(number);
    for (std::size_t at = text.size(); at > 3;) text.insert(at -= 3, L",");
    return text;
}

}  // namespace

std::span<const QuickSource* const> QuickSources() { return kSources; }

const QuickSource& QuickSourceOf(wchar_t prefix) {
    const auto* const found =
        std::ranges::find_if(kSources, [prefix](const QuickSource* source) { return source->prefix == prefix; });
    return found != std::end(kSources) ? **found : kQuickFiles;
}

std::wstring QuickPrefixes() {
    std::wstring prefixes;
    for (const QuickSource* source : kSources)
        if (source->prefix != L'\0') prefixes += source->prefix;
    return prefixes;
}

const QuickSearch& QuickSearchNow() { return g_search.now; }

QuickItem QuickSearchItem(std::size_t row) { return ItemOf(g_search.now.texts, g_search.now.rows[row]); }

bool QuickSearchType(HWND window, std::wstring_view typed) {
    QuickSearch& now = g_search.now;
    now.query = QuickQueryOf(typed, QuickPrefixes());
    const QuickSource& source = QuickSourceOf(now.query.prefix);
    if (&source != now.source) {
        QuickSearchForget();
        now.query = QuickQueryOf(typed, QuickPrefixes());
        now.source = &source;
        if (source.begin != nullptr) source.begin(window);
    }
    if (g_search.worker) WorkerAskToEnd(g_search.worker);
    ++g_search.request;
    const FuzzyIndices& texts = source.texts(now.query);
    const unsigned generation = source.generation != nullptr ? source.generation() : 0;
    if (generation != g_search.generation || !source.filters) now.found = nullptr;
    g_search.generation = generation;
    const std::wstring pattern = source.filters ? now.query.pattern : L"";
    SearchRequest request{window, g_search.request, texts, pattern, now.found};
    if (FuzzyCount(texts) > kAtOnce && !pattern.empty()) {
        g_search.asked = texts;
        g_search.worker = WorkerStart<SearchTexts>(request);
        now.running = static_cast<bool>(g_search.worker);
        if (now.running) return false;
    }
    TakeFound(std::make_shared<const FuzzyResult>(FuzzySearch(texts, pattern, now.found.get(), kMostQuickRows)), texts);
    return true;
}

bool QuickSearchOnFound(HWND, WPARAM posted) {
    const QuickFoundPtr found = WorkerTake<QuickFoundPtr>(posted);
    if (found->request != g_search.request || !g_search.now.running) return false;
    TakeFound(found->result, std::exchange(g_search.asked, {}));
    return true;
}

void QuickSearchForget() {
    if (g_search.worker) WorkerAskToEnd(g_search.worker);
    g_search = {.now = {}, .generation = 0, .request = g_search.request + 1, .asked = {}, .worker = {}};
}

void QuickSearchDrop(HWND window) {
    QuickSearchForget();
    WorkerDropPosts<QuickFoundPtr>(window, MSG_QUICK_FOUND);
}

std::wstring QuickSearchStatus() {
    const QuickSearch& now = g_search.now;
    if (now.source == nullptr || now.found == nullptr) return {};
    std::wstring text;
    if (now.source->filters) {
        const std::size_t twice = now.source->hidden != nullptr ? now.source->hidden() : 0;
        const std::wstring all = Grouped(now.found->covered - twice) + L" " + now.source->title;
        const std::size_t matching = now.found->matching.size() - now.hidden;
        text = now.letters.words.empty() ? all : Grouped(matching) + L" of " + all;
    }
    const std::wstring more = now.source->status != nullptr ? now.source->status(now.rows.empty()) : L"";
    if (!text.empty() && !more.empty()) text += L" - ";
    return text + more;
}
