// The fields of the status bar as the user meets them: their names, what a click offers, and which are shown. Pure.
#pragma once

#include "commands/status_bar_fit.h"

#include <cstdint>
#include <span>

struct StatusField {
    const wchar_t* name;                 // for the menu that shows and hides it, the tip, and screen readers
    const wchar_t* tip = nullptr;        // what a click does; null: nothing
    std::span<const int> commands = {};  // of its menu; 0: a gap between groups. One alone is carried out at once
    bool canBeHidden = true;
};
const StatusField& StatusFieldOf(StatusPart part);
bool StatusFieldReacts(StatusPart part);

// What a click on the field of progress ends: of the work that runs, that which the field shows first.
struct ProgressStop {
    int command = 0;  // 0: nothing runs
    const wchar_t* tip = nullptr;
};
ProgressStop StatusProgressStop(bool builds, bool searches);

// `hidden` is the setting: a bit for each part that is not shown.
bool StatusFieldIsHidden(std::int32_t hidden, StatusPart part);
std::int32_t StatusFieldToggled(std::int32_t hidden, StatusPart part);

// The part at `x`, by the right ends of the parts.
StatusPart StatusPartAt(const StatusWidths& ends, int x);
// The next part that reacts and is shown, or the one before; `from` itself when there is no other.
StatusPart StatusPartBeside(const StatusWidths& ends, StatusPart from, bool next);
