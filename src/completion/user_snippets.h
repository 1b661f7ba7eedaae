// The snippets that the editor offers: those of the user's file "Snippets.txt" beside the settings, then the program's.
// UI thread only.
#pragma once

#include "language/snippets.h"

#include <memory>
#include <vector>

using SnippetList = std::shared_ptr<const std::vector<Snippet>>;

// Reads the file when it is first asked for, and again after it has changed. What is wrong in it is told once, in the
// output pane. Never null.
SnippetList SnippetsKnown();
// Opens the file in the editor; makes it first when it is not there.
void SnippetsEdit();
