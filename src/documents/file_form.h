// The encoding and the line ending of a document's file, as the user chooses them. Pure.
#pragma once

#include "documents/file_binding.h"

#include <cstdint>

enum class FileForm : std::uint8_t { Utf8, Ansi, Utf16Little, Utf16Big };
FileForm FileFormOf(const FileBinding& binding);
// The next save writes the text in this form, without a question about UTF-16. Returns false when it is so already.
bool ChooseFileForm(FileBinding& binding, FileForm form);
SourceCode SourceCodeOf(FileForm form);

enum class EndingChange : std::uint8_t { Same, Changed, Refused };  // Refused: the breaks are data of the file
EndingChange ChooseLineEnding(FileBinding& binding, LineEnding ending);
