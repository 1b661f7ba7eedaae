// The order of a save. Pure.
#include "files/safe_save.h"

namespace {

SaveEnd Overwrite(const SaveSteps& steps) {
    if (!steps.hasRoom()) return SaveEnd::NoRoom;
    if (!steps.overwrite()) return SaveEnd::NotWritten;
    const SaveCheck check = steps.check();
    if (check == SaveCheck::Different) return SaveEnd::Different;
    if (check == SaveCheck::Same)
        steps.discardCopy();
    else
        steps.keepCopy();  // a file that was written but cannot be read back counts as saved
    return SaveEnd::Saved;
}

}  // namespace

SaveEnd SafeSave(const SaveTarget& target, const SaveSteps& steps) {
    // The copy is written first, also for a file that cannot be saved, because the user then has at least the copy.
    const bool copied = steps.writeCopy();
    // The read-only attribute is checked here, because some systems let an administrator write in spite of it.
    // Without a copy, a file that holds something is not overwritten, because its old text is then the only text on a
    // disk.
    const SaveEnd end = steps.isCancelled()          ? SaveEnd::Cancelled
                        : target.readOnly            ? SaveEnd::ReadOnly
                        : !copied && target.size > 0 ? SaveEnd::NoCopy
                                                     : Overwrite(steps);
    if (end != SaveEnd::Saved) steps.keepCopy();
    return end;
}
