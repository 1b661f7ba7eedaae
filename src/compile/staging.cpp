#include "compile/staging.h"

#include "base/path.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "compile/build_plan.h"
#include "settings/file_type_table.h"

#include <charconv>

namespace {

constexpr int kStageNames = 9;  // names tried for a copy, and for a file that is moved aside

std::wstring AsideName(const std::wstring& path, int attempt) {
    return path + L".kvx-aside" + std::to_wstring(attempt);
}

std::uint32_t CopyToStage(const StageDisk& disk, const std::wstring& source, const std::wstring& target,
                          StagedSource* staged) {
    const std::uint32_t error = disk.copyNew(source, target);
    if (error != 0) return error;
    staged->path = target;
    staged->copied = true;
    disk.stamp(target, &staged->stamp);
    disk.note(source, *staged);
    return 0;
}

// Moves the user's file at `path` to a free name beside it. Returns that name; empty when it could not be moved.
std::wstring MoveAside(const StageDisk& disk, const std::wstring& source, const std::wstring& path) {
    for (int attempt = 1; attempt <= kStageNames; ++attempt) {
        std::wstring aside = AsideName(path, attempt);
        if (disk.exists(aside)) continue;
        disk.note(source, {.path = path, .aside = aside});
        if (disk.move(path, aside)) return aside;
    }
    return {};
}

bool StageForKeldor(const StageDisk& disk, const std::wstring& source, const std::wstring& target, StagedSource* staged,
                    std::uint32_t* error) {
    // The editor was ended during an earlier build: the file with the user's name may be a copy made then.
    if (const std::wstring first = AsideName(target, 1); disk.exists(first)) staged->leftover = first;
    if (disk.sameFile(source, target)) return true;
    if (!disk.claim(target)) {
        staged->leftover.clear();  // it is of that editor's build
        *error = kErrorStagedElsewhere;
        return false;
    }
    *error = CopyToStage(disk, source, target, staged);
    if (*error == 0) return true;
    if (*error != kErrorFileThere) return false;
    staged->aside = MoveAside(disk, source, target);
    if (staged->aside.empty()) return false;
    staged->path = target;
    *error = CopyToStage(disk, source, target, staged);
    if (*error == 0) return true;
    UnstageOnDisk(disk, staged);
    staged->path = source;
    return false;
}

// Deletes the copy. Returns a line for the user when the copy is kept, else empty text.
std::wstring RemoveCopy(const StageDisk& disk, const StagedSource& staged) {
    FileStamp now;
    if (!disk.stamp(staged.path, &now)) return {};
    if (now != staged.stamp)
        return TextWith(L"The temporary source was changed during the build and is kept: {1}\r\n", {staged.path});
    if (!disk.remove(staged.path))
        return TextWith(L"The temporary source could not be deleted: {1}\r\n", {staged.path});
    return {};
}

}  // namespace

std::wstring StagingTarget(std::wstring_view source, std::wstring_view output, CommandStyle style, int attempt) {
    if (style == CommandStyle::Keldor) return attempt == 0 ? ReplaceExtension(output, L".bas") : std::wstring();
    const FileType* type = FileTypeOfPath(source);
    if (type == nullptr || type->stagedAs.empty()) return {};
    const std::wstring mark = attempt == 0 ? std::wstring() : L".kvx" + std::to_wstring(attempt);
    return ReplaceExtension(source, mark + std::wstring(type->stagedAs));
}

bool StageOnDisk(const StageDisk& disk, const std::wstring& source, const std::wstring& output, CommandStyle style,
                 StagedSource* staged, std::uint32_t* error) {
    *staged = {.path = source};
    *error = 0;
    if (style == CommandStyle::Keldor)
        return StageForKeldor(disk, source, StagingTarget(source, output, style, 0), staged, error);
    for (int attempt = 0; attempt <= kStageNames; ++attempt) {
        const std::wstring target = StagingTarget(source, output, style, attempt);
        if (target.empty() || CopyToStage(disk, source, target, staged) != kErrorFileThere) break;
    }
    return true;
}

std::string StageNoteText(const StageNote& note) {
    std::string text = std::to_string(note.stamp.written) + '\n' + std::to_string(note.stamp.length) + '\n';
    for (const std::wstring& path : {note.source, note.target, note.aside}) text += ToUtf8(path) + '\n';
    return text;
}

StageNote StageNoteOfText(std::string_view text) {
    std::string_view lines[5];
    for (std::string_view& line : lines) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos) return {};
        line = text.substr(0, end);
        text.remove_prefix(end + 1);
    }
    StageNote note = {.source = Utf8ToWideText(lines[2]),
                      .target = Utf8ToWideText(lines[3]),
                      .aside = Utf8ToWideText(lines[4]),
                      .stamp = {}};
    std::from_chars(lines[0].data(), lines[0].data() + lines[0].size(), note.stamp.written);
    std::from_chars(lines[1].data(), lines[1].data() + lines[1].size(), note.stamp.length);
    return note;
}

std::wstring RecoverOnDisk(const StageDisk& disk, const StageNote& note) {
    // The copy has the time and the length of its source, so it is known even when the note is older than the copy.
    FileStamp expected = note.stamp;
    FileStamp target;
    const bool expects = expected != FileStamp{} || disk.stamp(note.source, &expected);
    const bool there = disk.stamp(note.target, &target);
    const bool isCopy = there && expects && target == expected;
    if (note.aside.empty() || !disk.exists(note.aside)) {
        if (isCopy && note.aside.empty() && note.stamp != FileStamp{}) disk.remove(note.target);
        return {};
    }
    if (there && !isCopy) return LeftoverLine(note.target, note.aside);
    if ((there && !disk.remove(note.target)) || !disk.move(note.aside, note.target))
        return LeftoverLine(note.target, note.aside);
    return TextWith(L"A build was cut off when the editor ended: your file {1} has been put back.\r\n", {note.target});
}

std::wstring UnstageOnDisk(const StageDisk& disk, StagedSource* staged) {
    std::wstring notice;
    if (staged->copied) notice = RemoveCopy(disk, *staged);
    staged->copied = false;
    if (staged->aside.empty()) return notice;
    if (!disk.move(staged->aside, staged->path))
        notice += TextWith(L"Your file {1} was moved aside for the build and is kept as {2}\r\n",
                           {staged->path, staged->aside});
    staged->aside.clear();
    return notice;
}
