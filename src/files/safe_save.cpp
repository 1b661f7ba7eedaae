// The order of a save. Pure.
#include "files/safe_save.h"

bool SafeSave(const SaveTarget& target, const SaveSteps& steps) {
    // The copy is written first, also for a file that cannot be saved, because the user then has at least the copy.
    const bool copied = steps.writeCopy();
    // Without a copy, a file that holds something is not overwritten, because its old text is then the only text on a
    // disk. The read-only attribute is checked here, because some systems let an administrator write in spite of it.
    const bool allowed = !target.readOnly && (copied || target.size == 0);
    if (allowed && steps.hasRoom() && steps.overwrite()) {
        const SaveCheck check = steps.check();
        if (check == SaveCheck::Same) {
            steps.discardCopy();
            return true;
        }
        steps.keepCopy();
        // A file that was written but cannot be read back counts as saved.
        return check == SaveCheck::Unreadable;
    }
    steps.keepCopy();
    return false;
}
