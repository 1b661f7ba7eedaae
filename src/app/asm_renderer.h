// Fills the ASM pane behind the listing's text: the listing in columns, and the built program's code with its source
// lines.
#pragma once

// Once at start-up.
void AsmRendererInstall();
