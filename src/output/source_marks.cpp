#include "output/source_marks.h"

#include "base/path.h"
#include "base/texts.h"
#include "output/diagnostics.h"

#include <algorithm>

namespace {

constexpr std::size_t kMostTexts = 12;  // told of one place

MarkedFile* FileFor(SourceMarks& marks, const CompilerError& error) {
    const auto key = std::pair(error.build, std::wstring(error.file));
    const auto known = marks.index.find(key);
    if (known != marks.index.end()) return &marks.files[known->second];
    if (marks.files.size() >= kMostMarkedFiles) return nullptr;
    marks.index[key] = marks.files.size();
    return &marks.files.emplace_back(MarkedFile{.name = key.second, .build = error.build});
}

bool IsSame(const SourceMark& mark, const CompilerError& error) {
    return mark.line == error.line && mark.column == error.column && mark.severity == error.severity &&
           mark.message == error.message;
}

}  // namespace

bool HasPlaceInSource(const CompilerError& error, std::wstring_view program) {
    if (error.line < 1) return false;
    if (error.line > 1 || error.column > 1 || program.empty()) return true;
    return PathKey(error.message).find(PathKey(program)) == std::wstring::npos;
}

bool SourceMarksAdd(SourceMarks& marks, const CompilerError& error) {
    MarkedFile* file = FileFor(marks, error);
    if (file == nullptr) return false;
    const auto same = [&](const SourceMark& mark) { return IsSame(mark, error); };
    if (file->marks.size() < kMostMarksOfFile && std::ranges::any_of(file->marks, same)) return true;
    ++file->total;
    if (file->marks.size() >= kMostMarksOfFile) return false;
    file->marks.push_back({.line = error.line,
                           .column = error.column,
                           .severity = error.severity,
                           .compilerId = error.compilerId,
                           .message = error.message,
                           .fileLine = std::max(error.line - 1, 0)});
    return true;
}

std::wstring MarkText(const SourceMark& mark) {
    std::wstring text = TextWith(mark.severity == 0 ? L"Error: {1}" : L"Warning: {1}", {mark.message});
    std::ranges::replace_if(
        text, [](wchar_t c) { return c < L' '; }, L' ');
    return text;
}

std::wstring MarkTexts(std::vector<const SourceMark*> marks, std::wstring_view between) {
    std::ranges::stable_sort(marks, {}, &SourceMark::severity);
    std::wstring text;
    for (std::size_t i = 0; i < marks.size() && i < kMostTexts; ++i) {
        if (i > 0) text += between;
        text += MarkText(*marks[i]);
    }
    if (marks.size() > kMostTexts)
        text += TextWith(L"{1}... and {2} more", {between, std::to_wstring(marks.size() - kMostTexts)});
    return text;
}

std::wstring MarksLeftOutText(std::wstring_view file, std::size_t shown, std::size_t total) {
    return TextWith(L"[Marks] The first {1} of {2} errors and warnings are marked in {3}.\r\n",
                    {std::to_wstring(shown), std::to_wstring(total), file});
}
