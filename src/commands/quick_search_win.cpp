// Searches the texts of a source. UI thread, but for the worker's own part.
#include "commands/quick_search.h"

#include "base/texts.h"
#include "base/worker.h"
#include "resources/ids.h"
#include "search/fuzzy_crew.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

constexpr std::size_t kAtOnce = 5000;  // so many texts take about a millisecond

constexpr const QuickSource* kSources[] = {&kQuickFiles,           &kQuickCommands,       &kQuickLine,
                                           &kQuickDocumentSymbols, &kQuickProjectSymbols, &kQuickTabs};

struct SearchState {
    QuickSearch now;
    unsigned generation = 0;  // of the source, for `now.found`
    unsigned request = 0;
    FuzzyIndices asked;                                 // the texts of the request
    decltype(FuzzyCrewStart()) crew{nullptr, nullptr};  // started with the first search over many texts
};
SearchState g_search;

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
    const auto shown = [](std::uint32_t number) {
        const QuickSearch& search = g_search.now;
        return search.source->hides == nullptr || !search.source->hides(ItemOf(search.texts, number));
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
    if (g_search.crew) FuzzyCrewStop(*g_search.crew);
    ++g_search.request;
    const FuzzyIndices& texts = source.texts(now.query);
    const unsigned generation = source.generation != nullptr ? source.generation() : 0;
    if (generation != g_search.generation || !source.filters) now.found = nullptr;
    g_search.generation = generation;
    const std::wstring pattern = source.filters ? now.query.pattern : L"";
    FuzzyPlan plan = FuzzyPlanOf(texts, pattern, now.found, kMostQuickRows);
    if (plan.places > kAtOnce && !g_search.crew) g_search.crew = FuzzyCrewStart();
    now.running = plan.places > kAtOnce && g_search.crew;
    if (now.running) {
        g_search.asked = texts;
        FuzzyCrewSearch(*g_search.crew, window, MSG_QUICK_FOUND, g_search.request, std::move(plan));
    } else {
        TakeFound(std::make_shared<const FuzzyResult>(FuzzySearch(plan)), texts);
    }
    return !now.running;
}

bool QuickSearchOnFound(HWND, WPARAM posted) {
    const FuzzyFoundPtr found = WorkerTake<FuzzyFoundPtr>(posted);
    if (found->request != g_search.request || !g_search.now.running) return false;
    TakeFound(found->result, std::exchange(g_search.asked, {}));
    return true;
}

void QuickSearchForget() {
    g_search.now = {};
    g_search.generation = 0;
    ++g_search.request;
    g_search.asked = {};
    g_search.crew.reset();
}

void QuickSearchDrop(HWND window) {
    QuickSearchForget();
    WorkerDropPosts<FuzzyFoundPtr>(window, MSG_QUICK_FOUND);
}

std::wstring QuickSearchStatus() {
    const QuickSearch& now = g_search.now;
    if (now.source == nullptr || now.found == nullptr) return {};
    std::wstring text;
    if (now.source->filters) {
        const std::size_t twice = now.source->hidden != nullptr ? now.source->hidden() : 0;
        const std::wstring all = Grouped(now.found->covered - twice) + L" " + Text(now.source->title);
        const std::size_t matching = now.found->matching.size() - now.hidden;
        text = now.letters.words.empty() ? all : TextWith(L"{1} of {2}", {Grouped(matching), all});
    }
    const std::wstring more = now.source->status != nullptr ? now.source->status(now.rows.empty()) : L"";
    if (!text.empty() && !more.empty()) text += L" - ";
    return text + more;
}
