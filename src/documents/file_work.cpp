// The wait for a file that is being read or written, and the text about it. Pure.
#include "documents/file_work.h"

#include "base/texts.h"

#include <algorithm>

bool WorkIsShown(const WorkWatch& watch, std::uint64_t now) { return now - watch.began >= kQuietMs; }

bool WorkHangs(WorkWatch& watch, const FileProgress& progress, std::uint64_t now) {
    if (!progress.cancel || !progress.mayCancel) return false;
    if (watch.cancelled == 0) watch.cancelled = now;
    return now - watch.cancelled >= kHangsMs;
}

std::wstring FileWorkText(const wchar_t* verb, const wchar_t* label, const FileProgress& progress) {
    std::wstring text = std::wstring{verb} + L' ' + label;
    const std::uint64_t total = progress.total;
    if (total > 0) text += L": " + std::to_wstring(std::min<std::uint64_t>(progress.done * 100 / total, 100)) + L" %";
    if (progress.cancel) return TextWith(L"{1} (stopping)", {text});
    return progress.mayCancel ? TextWith(L"{1} (Esc cancels)", {text}) : text;
}
