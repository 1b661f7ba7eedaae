// Fills the ASM pane after the listing's text: the listing in columns, and the built program's code with its source lines.
#pragma once

#include "disasm/asm_feed.h"

#include <string>

// On the feed's thread. `listing` is null when there is none.
void AsmRender(AsmFeed& feed, const AsmRequest& request, const std::string* listing);
