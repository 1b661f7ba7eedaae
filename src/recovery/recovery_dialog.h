// The list of what earlier runs have left, and what the user wants of it. UI thread only.
#pragma once

#include "recovery/leftovers.h"

#include <string>
#include <vector>

enum class RecoveryWish : std::uint8_t { Later, Restore, Beside, Discard };

// Shows the list. Returns a wish for each of them; those that the user has not decided about stay for later.
// `crash`: what is told about one; empty: nothing.
std::vector<RecoveryWish> RecoveryDialogShow(const std::vector<Leftover>& leftovers, const std::wstring& crash);
