// Renaming a symbol: a dialog shows all of its places and takes the new name. UI thread only.
#pragma once

#include "symbols/references.h"

// Shows the dialog, or tells why the symbol cannot be renamed. Asks when the new name is used already, though nothing
// declares it. The places are changed in their documents, those of closed files after opening them; each document can
// undo it in one step, and none is saved.
void RenameDialogShow(References references);
