// Decisions of a save, and the questions that saving, closing and reloading ask. Pure.
#pragma once

#include "files/text_encoding.h"
#include "ui/message.h"

#include <functional>
#include <optional>
#include <string>

// Whether the old file is copied to its ".bak" first. Not after a failed save: the file may then be cut, and the backup
// from before that save must stay.
bool SaveMakesBackup(bool wanted, bool fileExists, bool lastSaveFailed);

// The encoding to save with, or nothing when the user cancelled. `ask` is called only for an ANSI document with
// characters that the code page does not have, because these are never replaced without a question.
std::optional<TextEncoding> EncodingToSave(TextEncoding own, bool ansiHoldsText, const std::function<Answer()>& ask);

// The questions about the document with that label.
std::wstring SaveQuestion(const wchar_t* label);    // at most 511 characters
std::wstring ReloadQuestion(const wchar_t* label);  // the same
std::wstring AnsiQuestion(const wchar_t* label);
