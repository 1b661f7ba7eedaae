// The box of Help > About. UI thread only.
#pragma once

// Shows the versions of the program and of its parts, and where it keeps its files. Ctrl+C copies the text of the box.
void AboutShow();
