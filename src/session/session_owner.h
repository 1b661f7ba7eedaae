// Of several running copies that share a settings file one keeps its session: the list of open files that the next start
// brings back. The others neither offer nor overwrite it. UI thread only.
#pragma once

// Whether this copy is the one. The first call decides, and takes the place when it is free; so does each call of
// SessionTakePlace, because the copy that had it may have ended.
bool SessionIsOurs();
bool SessionTakePlace();
