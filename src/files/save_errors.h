// What a save does after an error of the system. Pure.
#pragma once

// The refusals of a file that another program has open, mostly for a moment only: a scanner, an indexer, a compiler.
bool IsHeldElsewhere(unsigned long error);

// Whether a file is written in place because no file can be made beside it. A folder that takes no new file, or not under
// this name, may still have a file that can be written. After any other error - a full disk, for which there are three, or
// a broken one - that would cost the old content as well.
bool MayWriteInPlace(unsigned long error);
