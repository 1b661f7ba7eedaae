// Decisions about files that other programs change, and their texts. Pure.
#include "documents/outside_rules.h"

#include "base/texts.h"

OutsideKind OutsideKindOf(FileChange change, bool moved) {
    switch (change) {
        case FileChange::Changed: return OutsideKind::Changed;
        case FileChange::Replaced: return OutsideKind::Replaced;
        case FileChange::Gone: return moved ? OutsideKind::Moved : OutsideKind::Gone;
        case FileChange::None:
        case FileChange::Touched:
        case FileChange::ReadOnly: break;
    }
    return OutsideKind::None;
}

OutsideNews OutsideNewsOf(const FileState& known, const FileState& now, const OutsideChange& shown) {
    switch (FileChangeOf(known, now)) {
        case FileChange::None:
            return shown.kind != OutsideKind::None && FileLooksSame(known, now) && now.presence == FilePresence::There
                       ? OutsideNews::AsBefore
                       : OutsideNews::Nothing;
        case FileChange::Touched: return OutsideNews::AsBefore;
        case FileChange::ReadOnly: return OutsideNews::ReadOnly;
        case FileChange::Changed:
        case FileChange::Replaced:
        case FileChange::Gone: break;
    }
    return OutsideNews::Marked;
}

OutsideStep OutsideStepOf(OutsideKind kind, bool modified, bool reloads) {
    switch (kind) {
        case OutsideKind::Changed:
        case OutsideKind::Replaced: return reloads && !modified ? OutsideStep::Reload : OutsideStep::AskReload;
        case OutsideKind::Gone: return OutsideStep::Tell;
        case OutsideKind::Moved: return OutsideStep::AskName;
        case OutsideKind::None: break;
    }
    return OutsideStep::None;
}

bool SaveMeetsChange(const FileState& known, const FileState& now, bool unasked) {
    switch (FileChangeOf(known, now)) {
        case FileChange::Changed:
        case FileChange::Replaced: return true;
        case FileChange::Gone: return unasked;  // nothing is overwritten
        case FileChange::None: return unasked && known.presence == FilePresence::Missing;
        case FileChange::Touched:
        case FileChange::ReadOnly: break;
    }
    return false;
}

bool FailedSaveKeptText(SaveEnd end, const FileState& known, const FileState& now) {
    if (end == SaveEnd::NotWritten || end == SaveEnd::Different) return false;
    if (known.presence != FilePresence::There || now.presence != FilePresence::There) return false;
    const FileChange change = FileChangeOf(known, now);
    return change == FileChange::None || change == FileChange::Touched || change == FileChange::ReadOnly;
}

std::wstring OutsideWhatText(const OutsideChange& change) {
    switch (change.kind) {
        case OutsideKind::Changed: return Text(L"changed");
        case OutsideKind::Replaced: return Text(L"replaced");
        case OutsideKind::Gone: return Text(L"deleted");
        case OutsideKind::Moved:
            return TextWith(L"renamed to {1}", {change.movedTo.substr(change.movedTo.find_last_of(L'\\') + 1)});
        case OutsideKind::None: break;
    }
    return {};
}

std::wstring OutsideTipText(const OutsideChange& change, bool readOnly) {
    switch (change.kind) {
        case OutsideKind::Changed: return Text(L"Changed by another program since it was read");
        case OutsideKind::Replaced: return Text(L"Replaced by another file since it was read");
        case OutsideKind::Gone: return Text(L"The file was deleted; its text is only here");
        case OutsideKind::Moved: return TextWith(L"Renamed by another program to {1}", {change.movedTo});
        case OutsideKind::None: break;
    }
    return readOnly ? Text(L"The file is read-only") : std::wstring{};
}

std::wstring OutsideReloadText(const std::wstring& label, OutsideKind kind, bool modified) {
    const std::wstring what = TextWith(kind == OutsideKind::Replaced ? L"{1} was replaced by another program."
                                                                     : L"{1} was changed by another program.",
                                       {label});
    const std::wstring edits =
        modified ? Text(L"It also has unsaved changes here, which a reload takes away; Undo brings them back.")
                 : Text(L"It has no unsaved changes here.");
    return what + L" " + edits + L"\n\n" + Text(L"Reload it from the disk?");
}

std::wstring OutsideListText(std::size_t count, bool anyMoved) {
    return TextWith(anyMoved
                        ? L"{1} open files were changed by other programs. The ticked ones are reloaded, or have "
                          L"their new name from now on; the others stay as they are here. Undo takes a reload back."
                        : L"{1} open files were changed by other programs. The ticked ones are reloaded; the others "
                          L"stay as they are here. Undo takes a reload back.",
                    {std::to_wstring(count)});
}

std::wstring OutsideGoneText(const std::wstring& label) {
    return TextWith(L"{1} was deleted by another program. Its text is still here; a save writes the file again.",
                    {label});
}

std::wstring OutsideMovedText(const std::wstring& label, const std::wstring& newLabel) {
    return TextWith(
        L"{1} was renamed to {2} by another program.\n\nWith the old name, a save writes the file {3} again.",
        {label, newLabel, label});
}

std::wstring OutsideReadOnlyText(const std::wstring& label) {
    return TextWith(L"{1} was made read-only by another program. It can be edited, but not saved under this name.",
                    {label});
}

std::wstring OutsideSaveText(const std::wstring& label) {
    return TextWith(
        L"{1} was changed by another program since it was read or saved here. Saving overwrites these "
        L"changes.\n\nOverwrite the file?",
        {label});
}
