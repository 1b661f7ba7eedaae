#include "recovery/snapshot_note.h"

#include "base/decimal.h"
#include "base/utf8.h"

#include <algorithm>
#include <charconv>

namespace {

constexpr std::string_view kHead = "[Unsaved text of KVX-Editor]";
constexpr std::size_t kStemLimit = 120;  // characters
constexpr std::size_t kExtensionLimit = 20;

std::uint64_t NumberOf(std::string_view text) {
    std::uint64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

void TakeValue(SnapshotNote& note, std::string_view key, std::string_view value) {
    const std::uint64_t number = NumberOf(value);
    if (key == "Path") note.path = Utf8ToWideText(value);
    if (key == "Label") note.label = Utf8ToWideText(value);
    if (key == "Encoding" && number <= 1) note.encoding = static_cast<TextEncoding>(number);
    if (key == "LineEnding" && number <= 2) note.lineEnding = static_cast<LineEnding>(number);
    if (key == "Caret") note.caret = number;
    if (key == "FileTime") note.file.written = number;
    if (key == "FileSize") note.file.size = number;
    if (key == "FileHash")
        note.file.hash = {number, NumberOf(value.substr(std::min(value.find(',') + 1, value.size())))};
}

}  // namespace

std::string SnapshotNoteText(const SnapshotNote& note) {
    std::string text{kHead};
    text += "\r\nPath=" + ToUtf8(note.path);
    text += "\r\nLabel=" + ToUtf8(note.label);
    text += "\r\nEncoding=" + std::to_string(static_cast<int>(note.encoding));
    text += "\r\nLineEnding=" + std::to_string(static_cast<int>(note.lineEnding));
    text += "\r\nCaret=" + std::to_string(note.caret) + "\r\n";
    if (!note.file.hash.IsKnown()) return text;
    text += "FileTime=" + std::to_string(note.file.written);
    text += "\r\nFileSize=" + std::to_string(note.file.size);
    text += "\r\nFileHash=" + std::to_string(note.file.hash.a) + "," + std::to_string(note.file.hash.b) + "\r\n";
    return text;
}

SnapshotNote ParseSnapshotNote(std::string_view text) {
    SnapshotNote note;
    if (!text.starts_with(kHead)) return note;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        const std::string_view line = text.substr(0, end);
        if (const std::size_t equals = line.find('='); equals != std::string_view::npos)
            TakeValue(note, line.substr(0, equals), line.substr(equals + 1));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return note;
}

std::wstring SnapshotName(std::wstring_view label, std::uint32_t number) {
    std::size_t dot = label.rfind(L'.');
    if (dot == std::wstring_view::npos || dot == 0 || label.size() - dot > kExtensionLimit) dot = label.size();
    std::wstring name{label.substr(0, std::min(dot, kStemLimit))};
    name += L" [" + std::to_wstring(number) + L"]";
    name += dot < label.size() ? label.substr(dot) : std::wstring_view{L".txt"};
    std::ranges::replace_if(
        name,
        [](wchar_t c) { return c < L' ' || std::wstring_view(L"\\/:*?\"<>|").find(c) != std::wstring_view::npos; },
        L'_');
    return name;
}

bool SnapshotIsDue(const SnapshotTimes& times, std::uint64_t now) {
    constexpr std::uint64_t kPause = 1500, kLatest = 4000, kRetry = 30000;  // ms
    constexpr std::uint64_t kCostShare = 5, kLongestGap = 60000;
    if (times.written != 0) {
        const std::uint64_t gap = times.failed ? kRetry : std::min(times.cost * kCostShare, kLongestGap);
        if (now - times.written < gap) return false;
    }
    return now - times.lastEdit >= kPause || now - times.firstEdit >= kLatest;
}
