// Decisions of a save, and the questions that saving, closing and reloading ask. Pure.
#pragma once

#include "files/text_encoding.h"
#include "ui/message.h"

#include <functional>
#include <optional>
#include <string>

// Whether the old file is copied to its ".bak" first. After a failed save the file may be cut short; the backup made
// before that save is then the good one and stays.
bool SaveMakesBackup(bool wanted, bool fileExists, bool lastSaveFailed);

// The encoding to save with, or nothing when the user would rather not save. Characters that the code page does not have
// are never replaced unasked: `ask` is called for such a text, and only then.
std::optional<TextEncoding> EncodingToSave(TextEncoding own, bool ansiHoldsText, const std::function<Answer()>& ask);

// Questions about the document of that label.
std::wstring SaveQuestion(const wchar_t* label);    // at most 511 characters
std::wstring ReloadQuestion(const wchar_t* label);  // the same
std::wstring AnsiQuestion(const wchar_t* label);
