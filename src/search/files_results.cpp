#include "search/files_results.h"

#include "base/count_text.h"
#include "base/path.h"
#include "base/texts.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <utility>

void MovedPlaces::MoveStep(std::size_t to) {
    for (; step_ < to; ++step_) places_[step_] += delta_;
    while (step_ > to) places_[--step_] -= delta_;
}

template <typename Stays>
std::size_t MovedPlaces::FirstMoved(const Stays& stays) const {
    std::size_t low = 0, high = places_.size();
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        if (stays(middle))
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

void MovedPlaces::Removed(std::ptrdiff_t position, std::ptrdiff_t length) {
    MoveStep(FirstMoved([&](std::size_t i) { return At(i) <= position; }));
    for (std::size_t i = step_; i < places_.size() && At(i) < position + length; ++i)
        places_[i] = position + length - delta_;
    delta_ -= length;
}

// What is inserted at a place comes before a start and after an end, so that a hit does not grow. A hit of which nothing
// is left stays before it.
void MovedPlaces::Inserted(std::ptrdiff_t position, std::ptrdiff_t length) {
    MoveStep(FirstMoved([&](std::size_t i) {
        return At(i) < position || (At(i) == position && (i % 2 == 1 || At(i + 1) == position));
    }));
    delta_ += length;
}

namespace {

constexpr std::size_t kLongestCut = 1 << 20;  // bytes of a text that is remembered

// How many bytes of line breaks the text begins with. The breaks around moved lines change their places at the end of a
// text.
std::ptrdiff_t BreaksBefore(std::string_view text) {
    return static_cast<std::ptrdiff_t>(std::min(text.find_first_not_of("\r\n"), text.size()));
}

std::string_view WithoutBreaks(std::string_view text) {
    text.remove_prefix(static_cast<std::size_t>(BreaksBefore(text)));
    return text.substr(0, text.find_last_not_of("\r\n") + 1);
}

// The hits that are within a text that is about to go.
CutHits HitsCutBy(const ResultFile& file, std::ptrdiff_t position, std::string_view text) {
    CutHits cut;
    const std::string_view inner = WithoutBreaks(text);
    if (inner.empty() || inner.size() > kLongestCut) return cut;
    const std::ptrdiff_t from = position + BreaksBefore(text), to = from + static_cast<std::ptrdiff_t>(inner.size());
    const std::size_t count = std::min(file.hits.size(), file.places.Count() / 2);
    std::size_t low = 0, high = count;
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        (file.places.At(2 * middle) < from ? low : high) = file.places.At(2 * middle) < from ? middle + 1 : middle;
    }
    cut.first = low;
    for (std::size_t i = low; i < count && file.places.At(2 * i + 1) <= to; ++i)
        cut.offsets.insert(cut.offsets.end(), {file.places.At(2 * i) - from, file.places.At(2 * i + 1) - from});
    if (!cut.offsets.empty()) cut.text = inner;
    return cut;
}

template <typename Item>
void PutInOrder(std::vector<Item>& items, const std::vector<std::size_t>& order) {
    std::vector<Item> sorted;
    for (const std::size_t i : order) sorted.push_back(std::move(items[i]));
    items = std::move(sorted);
}

// Puts the hits of `cut` to the text that begins at `from`.
std::vector<std::size_t> BringBack(ResultFile& file, const CutHits& cut, std::ptrdiff_t from) {
    std::vector<std::pair<std::ptrdiff_t, std::ptrdiff_t>> spans;
    for (std::size_t i = 0; i < file.hits.size(); ++i)
        spans.emplace_back(file.places.At(2 * i), file.places.At(2 * i + 1));
    for (std::size_t i = 0; i < cut.offsets.size() / 2; ++i)
        spans[cut.first + i] = {from + cut.offsets[2 * i], from + cut.offsets[2 * i + 1]};
    std::vector<std::size_t> order(spans.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, [&spans](std::size_t i) { return spans[i]; });
    std::vector<std::ptrdiff_t> places;
    for (const std::size_t i : order) places.insert(places.end(), {spans[i].first, spans[i].second});
    file.places = MovedPlaces(std::move(places));
    if (std::ranges::is_sorted(order)) return {};
    PutInOrder(file.hits, order);
    std::vector<bool> ticked;
    std::vector<std::size_t> now(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        ticked.push_back(file.ticked[order[i]]);
        now[order[i]] = i;
    }
    file.ticked = std::move(ticked);
    return now;
}

}  // namespace

std::vector<std::size_t> MoveHits(ResultFile& file, std::ptrdiff_t position, std::string_view text, bool inserted) {
    const auto length = static_cast<std::ptrdiff_t>(text.size());
    if (!inserted) {
        file.cut = HitsCutBy(file, position, text);
        file.places.Removed(position, length);
        return {};
    }
    const CutHits cut = std::exchange(file.cut, {});
    file.places.Inserted(position, length);
    if (cut.text.empty() || cut.text != WithoutBreaks(text)) return {};
    return BringBack(file, cut, position + BreaksBefore(text));
}

void FilesResults::Recount() {
    ends_.clear();
    hits_ = 0;
    std::size_t row = 0;
    for (const ResultFile& file : files) {
        row += 1 + (file.folded ? 0 : file.hits.size());
        hits_ += file.hits.size();
        ends_.push_back(row);
    }
}

void FilesResults::Add(std::vector<ResultFile> found) {
    const auto before = [](const ResultFile& a, const ResultFile& b) { return a.key < b.key; };
    std::ranges::stable_sort(found, before);
    const auto middle = static_cast<std::ptrdiff_t>(files.size());
    std::ranges::move(found, std::back_inserter(files));
    std::inplace_merge(files.begin(), files.begin() + middle, files.end(), before);
    Recount();
}

void FilesResults::Clear() {
    files.clear();
    Recount();
}

void FilesResults::Remove(ResultRow row) {
    if (row.file >= files.size()) return;
    ResultFile& file = files[row.file];
    file.cut = {};
    if (row.hit && *row.hit < file.hits.size() && file.hits.size() > 1) {
        std::vector<std::ptrdiff_t> places;
        for (std::size_t i = 0; i < file.places.Count(); ++i)
            if (i / 2 != *row.hit) places.push_back(file.places.At(i));
        file.places = MovedPlaces(std::move(places));
        file.hits.erase(file.hits.begin() + static_cast<std::ptrdiff_t>(*row.hit));
        file.ticked.erase(file.ticked.begin() + static_cast<std::ptrdiff_t>(*row.hit));
    } else {
        files.erase(files.begin() + static_cast<std::ptrdiff_t>(row.file));
    }
    Recount();
}

void FilesResults::TakeReplaced(std::wstring_view key, std::vector<FileHit> hits) {
    const std::size_t index = FindFile(key);
    if (index >= files.size()) return;
    ResultFile& file = files[index];
    file.cut = {};
    file.ticked.resize(hits.size());
    for (std::size_t i = 0; i < hits.size(); ++i) file.ticked[i] = file.ticked[i] && !hits[i].replaced;
    std::vector<std::ptrdiff_t> places;
    for (const FileHit& hit : hits)
        places.insert(places.end(), {static_cast<std::ptrdiff_t>(hit.start),
                                     static_cast<std::ptrdiff_t>(hit.start) + static_cast<std::ptrdiff_t>(hit.length)});
    file.hits = std::move(hits);
    if (file.document != 0) file.places = MovedPlaces(std::move(places));
    Recount();
}

ResultRow FilesResults::RowAt(std::size_t index) const {
    const auto file = static_cast<std::size_t>(std::ranges::upper_bound(ends_, index) - ends_.begin());
    const std::size_t within = index - (file == 0 ? 0 : ends_[file - 1]);
    return {file, within == 0 ? std::nullopt : std::optional{within - 1}};
}

std::size_t FilesResults::IndexOf(ResultRow row) const {
    const std::size_t first = row.file == 0 ? 0 : ends_[row.file - 1];
    return first + (row.hit && !files[row.file].folded ? *row.hit + 1 : 0);
}

std::optional<ResultRow> FilesResults::Beside(std::optional<ResultRow> from, bool forward) const {
    if (files.empty()) return std::nullopt;
    const auto lastOf = [this](std::size_t file) { return ResultRow{file, files[file].hits.size() - 1}; };
    if (!from) return forward ? ResultRow{0, 0} : lastOf(files.size() - 1);
    const std::size_t file = from->file;
    if (forward) {
        const std::size_t next = from->hit ? *from->hit + 1 : 0;
        if (next < files[file].hits.size()) return ResultRow{file, next};
        return file + 1 < files.size() ? std::optional{ResultRow{file + 1, 0}} : std::nullopt;
    }
    if (from->hit && *from->hit > 0) return ResultRow{file, *from->hit - 1};
    return file > 0 ? std::optional{lastOf(file - 1)} : std::nullopt;
}

std::size_t FilesResults::FindFile(std::wstring_view key) const {
    const auto found = std::ranges::lower_bound(files, key, {}, &ResultFile::key);
    return found != files.end() && found->key == key ? static_cast<std::size_t>(found - files.begin())
                                                     : std::wstring_view::npos;
}

std::wstring PathBelow(std::wstring_view path, std::wstring_view root) {
    while (root.ends_with(L'\\')) root.remove_suffix(1);
    const bool below = !root.empty() && path.size() > root.size() + 1 && path[root.size()] == L'\\' &&
                       PathEqualsIgnoreCase(path.substr(0, root.size()), root);
    return std::wstring{below ? path.substr(root.size() + 1) : path};
}

std::wstring HitsInFilesText(std::size_t hits, std::size_t files) {
    return TextWith(L"{1} in {2}", {CountText(hits, English(L"{1} hit"), English(L"{1} hits")),
                                    CountText(files, English(L"{1} file"), English(L"{1} files"))});
}

std::wstring FilesSummaryText(const FilesSummary& summary) {
    const std::wstring found =
        summary.hits == 0 ? std::wstring{Text(L"No hits")} : HitsInFilesText(summary.hits, summary.files);
    std::wstring text =
        TextWith(L"{1}; {2}",
                 {found, CountText(summary.searched, English(L"{1} file searched"), English(L"{1} files searched"))});
    if (summary.binary > 0) text += TextWith(L", {1} binary left out", {std::to_wstring(summary.binary)});
    if (summary.unreadable > 0) text += TextWith(L", {1} unreadable", {std::to_wstring(summary.unreadable)});
    if (summary.running) return TextWith(L"Searching... {1}", {text});
    if (summary.limited) return TextWith(L"Ended at the limit of {1} hits: {2}", {std::to_wstring(kMaxHits), text});
    return summary.stopped ? TextWith(L"Stopped: {1}", {text}) : text;
}
