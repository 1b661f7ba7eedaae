#include "session/session_restore.h"

namespace {

// Applies one line of a file section. `missingSection` is the section of the last file of `missing` while its lines
// follow, otherwise below 0.
void ApplyFileItem(const SessionItem& item, const SessionTarget& target, std::vector<SessionFile>& missing,
                   int& missingSection) {
    if (item.key == SessionKey::Path && !item.text.empty()) {
        missingSection = -1;
        if (!target.open(item.text)) {
            missing.emplace_back();
            missingSection = item.file;
        }
    }
    if (item.file == missingSection) SessionTakeItem(missing.back(), item);
    if (item.key == SessionKey::Pinned && item.number != 0 && item.file != missingSection) target.pin();
    if (item.key == SessionKey::Path || item.key == SessionKey::Pinned || !target.has(item.file) ||
        target.keep(item.file, item))
        return;
    if (item.key == SessionKey::BreakpointRule) target.setRule(item.file, SessionParseRule(item.text));
    for (const EditorMessage& message : SessionEditorMessages(item)) target.send(item.file, message);
}

}  // namespace

std::vector<SessionFile> SessionRestore(std::span<const SessionItem> items, const SessionTarget& target,
                                        Settings& settings, SessionFrame& frame) {
    std::vector<SessionFile> missing;
    int missingSection = -1;
    frame.activeTab = 0;
    for (const SessionItem& item : items) {
        if (item.file >= 0) {
            ApplyFileItem(item, target, missing, missingSection);
            continue;
        }
        const SessionFrame before = frame;
        SessionApplyHeader(item, settings, frame);
        if (frame != before) target.showFrame(frame);
    }
    return missing;
}

std::vector<SessionFile> SessionFilesToSave(std::vector<SessionFile> open, std::span<const SessionFile> missing,
                                            const std::function<bool(const std::string& path)>& isOpen) {
    for (const SessionFile& file : missing)
        if (!isOpen(file.path)) open.push_back(file);
    return open;
}
