// The order of a save. Pure.
#include "files/safe_save.h"

bool SafeSave(const SaveTarget& target, const SaveSteps& steps) {
    // The copy is written first, also for a file that cannot be saved: it is then what the user is left with.
    const bool copied = steps.writeCopy();
    // Without a copy, a file that holds something is left alone: its old text is then the only one on any disk. The
    // read-only mark is respected because some systems let an administrator write in spite of it.
    const bool allowed = !target.readOnly && (copied || target.size == 0);
    if (allowed && steps.hasRoom() && steps.overwrite()) {
        const SaveCheck check = steps.check();
        if (check == SaveCheck::Same) {
            steps.discardCopy();
            return true;
        }
        steps.keepCopy();
        // A file that takes bytes but cannot be read back was saved as far as anyone can tell.
        return check == SaveCheck::Unreadable;
    }
    steps.keepCopy();
    return false;
}
