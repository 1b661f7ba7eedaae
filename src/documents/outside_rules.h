// What another program has done to the file of a document, and what the user is told and asked about it. Pure.
#pragma once

#include "files/disk_file.h"
#include "files/save_report.h"

#include <cstdint>
#include <string>
#include <vector>

enum class OutsideKind : std::uint8_t {
    None,
    Changed,
    Replaced,  // by another file
    Gone,
    Moved,  // gone, and in its folder under another name
};
struct OutsideChange {
    OutsideKind kind = OutsideKind::None;
    bool asked = false;  // the user knows, or is not to be asked before he comes back to the program or the document
    bool again = false;  // it has changed again since the user was asked
    bool madeUnsaved = false;  // it has set DocumentTab.mustSave
    FileState now;             // of the file
    std::wstring movedTo;      // the path, with OutsideKind::Moved
};

// What a look at the file means for its document.
enum class OutsideNews : std::uint8_t {
    Nothing,
    AsBefore,  // it is (again) what was last read or written; takes back a mark
    ReadOnly,  // the same text, but it must not be written any more
    Marked,    // the change is to be shown, and asked about
};
OutsideNews OutsideNewsOf(const FileState& known, const FileState& now, const OutsideChange& shown);
OutsideKind OutsideKindOf(FileChange change, bool moved);

// What is done about a change that the user does not know.
enum class OutsideStep : std::uint8_t { None, Reload, AskReload, AskName, Tell };
// `reloads`: the setting that reloads without a question.
OutsideStep OutsideStepOf(OutsideKind kind, bool modified, bool reloads);

// Before a save overwrites a file: whether it is no longer the one that was last read or written. `unasked`: the save
// comes by itself, so a file that was deleted is not made again either.
bool SaveMeetsChange(const FileState& known, const FileState& now, bool unasked);
// Whether the file still holds the text that was last read or written, after a save that ended otherwise than by success.
bool FailedSaveKeptText(SaveEnd end, const FileState& known, const FileState& now);

// --- Texts. `label`: of the document.
std::wstring OutsideWhatText(const OutsideChange& change);                // in a list: "changed"
std::wstring OutsideTipText(const OutsideChange& change, bool readOnly);  // a sentence; empty: nothing to tell
std::wstring OutsideReloadText(const std::wstring& label, OutsideKind kind, bool modified);
std::wstring OutsideListText(std::size_t count, bool anyMoved);
std::wstring OutsideGoneText(const std::wstring& label);
std::wstring OutsideMovedText(const std::wstring& label, const std::wstring& newLabel);
std::wstring OutsideReadOnlyText(const std::wstring& label);
std::wstring OutsideSaveText(const std::wstring& label);
