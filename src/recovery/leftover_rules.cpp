#include "recovery/leftover_rules.h"

#include "base/path.h"

// A snapshot that is written later than the copy of a save may hold an earlier text, because a worker takes its time. So
// it replaces nothing.
bool LeftoverReplaces(const LeftoverOrigin& later, const LeftoverOrigin& earlier) {
    return later.ofSave && !later.path.empty() && !later.run.empty() && later.time >= earlier.time &&
           later.run == earlier.run && PathEqualsIgnoreCase(later.path, earlier.path);
}
