#include "documents/file_form.h"

#include <utility>

FileForm FileFormOf(const FileBinding& binding) {
    if (binding.form.utf16 == Utf16Order::Little) return FileForm::Utf16Little;
    if (binding.form.utf16 == Utf16Order::Big) return FileForm::Utf16Big;
    return binding.encoding == TextEncoding::Ansi ? FileForm::Ansi : FileForm::Utf8;
}

bool ChooseFileForm(FileBinding& binding, FileForm form) {
    binding.chosen = true;
    binding.formConfirmed = true;
    if (FileFormOf(binding) == form) return false;
    binding.readAs = SourceCode::Guess;  // the file will be another one
    binding.encoding = form == FileForm::Ansi ? TextEncoding::Ansi : TextEncoding::Utf8;
    const bool wide = form == FileForm::Utf16Little || form == FileForm::Utf16Big;
    binding.form.utf16 = form == FileForm::Utf16Little ? Utf16Order::Little
                         : form == FileForm::Utf16Big  ? Utf16Order::Big
                                                       : Utf16Order::None;
    binding.form.mark = wide;  // without the mark other programs could not tell it
    return true;
}

SourceCode SourceCodeOf(FileForm form) {
    switch (form) {
        case FileForm::Ansi: return SourceCode::Ansi;
        case FileForm::Utf16Little: return SourceCode::Utf16Little;
        case FileForm::Utf16Big: return SourceCode::Utf16Big;
        case FileForm::Utf8: break;
    }
    return SourceCode::Utf8;
}

EndingChange ChooseLineEnding(FileBinding& binding, LineEnding ending) {
    if (binding.form.keepBreaks) return EndingChange::Refused;
    binding.chosen = true;
    const bool mixed = std::exchange(binding.form.mixedBreaks, false);
    if (binding.lineEnding == ending && !mixed) return EndingChange::Same;
    binding.lineEnding = ending;
    return EndingChange::Changed;
}
