// "--detect": the search for compilers, logged and shown. UI thread only.
#pragma once

// Searches, writes the log, and returns how many of the five compilers exist.
int RunCompilerDetect();

// RunCompilerDetect with its result in a message box.
void ShowDetectReport();
