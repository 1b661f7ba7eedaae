// What a program folder keeps for recovery, as a test sees it.
#pragma once

#include "window/harness.h"

#include <filesystem>
#include <set>
#include <string>

inline constexpr wchar_t kRecovered[] = L"Recovered Files";

inline std::filesystem::path RecoveryOf(const ProgramFolder& folder) {
    return folder.File(L"local\\KVX-Editor\\Recovery");
}

// The texts that are kept at the moment; `unfinished`: also those that have not taken the place of the last ones yet.
inline std::set<std::string> KeptTexts(const ProgramFolder& folder, bool unfinished = false) {
    std::set<std::string> texts;
    std::error_code fault;
    std::filesystem::recursive_directory_iterator at(RecoveryOf(folder), fault), end;
    for (; !fault && at != end; at.increment(fault)) {
        const std::wstring name = at->path().filename().wstring();
        std::error_code gone;
        const bool isText =
            !name.ends_with(L".note") && !name.ends_with(L".path") && (unfinished || !name.ends_with(L".new"));
        if (!at->is_regular_file(gone) || !isText || name == L"owner") continue;
        if (const auto bytes = ReadBytes(at->path().wstring())) texts.insert(*bytes);
    }
    return texts;
}

inline void Kill(Editor& editor) {
    TerminateProcess(editor.process, 9);
    EXPECT_TRUE(editor.ExitCode());
}
