// Texts of a stop. Must not know an editor or a process.
#include "debugui/stop_view.h"

#include "base/hex_text.h"
#include "base/texts.h"

#include <algorithm>

StopPlace StopPlaceOf(std::int32_t currentLine, std::uint32_t currentFileId, bool found, std::uint32_t fileId,
                      std::uint32_t line) {
    if (currentLine > 0) return {.fileId = currentFileId, .line = currentLine};
    if (!found || line > kLastMapLine) return {};
    return {.fileId = fileId, .line = static_cast<int>(line)};
}

std::wstring StopPlaceText(const std::wstring& fileName, int line, bool ofCaller, std::uint64_t address, bool x64) {
    const std::wstring code = L"0x" + HexText(address, x64 ? 16 : 8);
    if (fileName.empty()) return TextWith(L"{1}, no source", {code});
    const std::wstring place = fileName + L":" + std::to_wstring(line);
    return ofCaller ? TextWith(L"{1}, called from {2}", {code, place}) : place;
}

bool TakeStaleLook(StaleWarnings* warnings, const std::wstring& path, std::uint64_t now) {
    constexpr std::uint64_t kBetweenLooksMs = 1000;
    if (path == warnings->lookedAt && now - warnings->lookedAtTime < kBetweenLooksMs) return false;
    warnings->lookedAt = path;
    warnings->lookedAtTime = now;
    return true;
}

std::vector<std::wstring> NewStaleWarnings(StaleWarnings* warnings, const std::wstring& fileName, SourceAge age) {
    std::vector<std::wstring> news;
    const auto say = [&](const wchar_t* what) {
        std::wstring text = TextWith(what, {fileName});
        if (std::ranges::find(warnings->said, text) != warnings->said.end()) return;
        warnings->said.push_back(text);
        news.push_back(std::move(text));
    };
    if (age.newer) say(English(L"[Debug] {1} is newer than the program: its lines may not be those that run.\n"));
    if (age.unsaved) say(English(L"[Debug] {1} has changes that are not saved: the program runs without them.\n"));
    return news;
}
