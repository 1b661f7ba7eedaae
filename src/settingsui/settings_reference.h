// All settings as a document, made from the table of their pages. Pure.
#pragma once

#include <string>

// In Markdown and UTF-8: for each page a table of its settings with key, default and meaning.
std::string SettingsReference();
