// Offers what earlier runs could not save, and carries out what the user wants. UI thread only.
#pragma once

// At the start, once the documents of the session are open. Shows nothing when nothing was left.
void RecoveryOffer();
// The command: the same, and says so when there is nothing.
void RecoveryShow();
// The program ends.
void RecoveryEnd();
