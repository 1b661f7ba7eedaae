// Decisions of a save, and the questions that saving, closing and reloading ask. Pure.
#pragma once

#include "documents/file_binding.h"
#include "files/save_report.h"
#include "settings/settings.h"
#include "ui/message.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

// Whether the old file is copied to its ".bak" first. Not after a failed save: the file may then be cut, and the backup
// from before that save must stay.
bool SaveMakesBackup(bool wanted, bool fileExists, bool lastSaveFailed);

// The encoding to save with, or nothing when the user cancelled. `ask` is called only for an ANSI document with
// characters that the code page does not have, because these are never replaced without a question.
std::optional<TextEncoding> EncodingToSave(TextEncoding own, bool ansiHoldsText, const std::function<Answer()>& ask);

// What the user wants when the file cannot simply be written as its encoding says.
enum class FormChoice : std::uint8_t { Save, OtherName, Cancel };
// Asks about a file that is UTF-16 (once: the answer is noted in `binding`), and before bytes are lost that could not
// be decoded. `sameFile`: the save overwrites the file from which the text was read.
struct FormQuestion {
    std::wstring text;
    std::wstring yes, no;  // what the buttons are called
};
FormChoice ChooseForm(FileBinding& binding, bool sameFile, const std::function<Answer(const FormQuestion&)>& ask);
// Whether a save of the document under its own name asks such a question.
bool SaveAsksAboutForm(const FileBinding& binding);

// What the box says about a failed save. `systemText`: the system's words for `report.error`, or empty. `copy`: the
// path of the recovery copy, or empty.
std::wstring FailedSaveText(const wchar_t* path, const SaveReport& report, const std::wstring& systemText,
                            const std::wstring& copy);

// Whether the file has line breaks of several kinds, of which a save makes one.
bool SaveUnifiesBreaks(const FileBinding& binding);
// What the user is told when a file with an unusual form is opened; empty for an ordinary file.
std::wstring FormNotice(const FileBinding& binding);

// The questions about the document with that label.
std::wstring SaveQuestion(const wchar_t* label);  // at most 511 characters
// The same. `undone`: Undo brings the changes back.
std::wstring ReloadQuestion(const wchar_t* label, bool undone);
std::wstring AnsiQuestion(const wchar_t* label);

// The encoding in which the next save writes the document, as far as nobody is asked. Without a file yet it is that of a
// new name.
TextEncoding EncodingOfNextSave(const FileBinding& binding, TextEncoding newFiles);
TextEncoding EncodingOfNewFiles(const Settings& settings);

// The name that is proposed for a document without a file: its label as the name of a source.
std::wstring NameToPropose(std::wstring_view label);
