// Decisions of a save, and its questions. Pure.
#include "documents/save_rules.h"

#include "base/path.h"

namespace {

constexpr std::size_t kLongestQuestion = 511;

std::wstring Cut(std::wstring question) {
    if (question.size() > kLongestQuestion) question.resize(kLongestQuestion);
    return question;
}

}  // namespace

FileBinding BindingForNewName(const wchar_t* path, const FileBinding& before) {
    FileBinding binding;
    binding.form = before.form;
    binding.formConfirmed = before.formConfirmed;
    SafeCopyW(binding.path, path);
    PathGetFile(path, binding.label, kLabelCapacity);
    binding.chosen = before.chosen;
    binding.encoding = before.chosen ? before.encoding : TextEncoding::Ansi;
    binding.lineEnding = before.chosen ? before.lineEnding : LineEnding::CrLf;
    binding.hasFile = true;
    return binding;
}

TextEncoding EncodingOfNextSave(const FileBinding& binding) {
    return binding.hasFile || binding.chosen ? binding.encoding : TextEncoding::Ansi;
}

bool SaveMakesBackup(bool wanted, bool fileExists, bool lastSaveFailed) {
    return wanted && fileExists && !lastSaveFailed;
}

std::optional<TextEncoding> EncodingToSave(TextEncoding own, bool ansiHoldsText, const std::function<Answer()>& ask) {
    if (own != TextEncoding::Ansi || ansiHoldsText) return own;
    switch (ask()) {
        case Answer::Yes: return TextEncoding::Utf8;
        case Answer::No: return own;
        case Answer::Cancel: break;
    }
    return std::nullopt;
}

FormChoice ChooseForm(FileBinding& binding, bool sameFile, const std::function<Answer(const std::wstring& text)>& ask) {
    const std::wstring label = binding.label;
    if (binding.form.inexact && sameFile) {
        const Answer answer = ask(
            label +
            L" holds bytes that the system's code page cannot decode. Saving over it loses them, also in lines that "
            L"you "
            L"did not change.\n\nSave under another name instead?\n\nYes: choose another name, this file stays as it "
            L"is\nNo: save over this file, these bytes are lost\nCancel: do not save");
        if (answer != Answer::No) return answer == Answer::Yes ? FormChoice::OtherName : FormChoice::Cancel;
    }
    if (binding.form.utf16 != Utf16Order::None && !binding.formConfirmed) {
        const Answer answer =
            ask(label +
                L" is UTF-16 text, which most compilers do not read.\n\nKeep it UTF-16?\n\nYes: "
                L"save as UTF-16, as the file is now\nNo: save as " +
                (binding.encoding == TextEncoding::Ansi ? L"ANSI" : L"UTF-8") + L"\nCancel: do not save");
        if (answer == Answer::Cancel) return FormChoice::Cancel;
        binding.formConfirmed = answer == Answer::Yes;
        if (answer == Answer::No) binding.form.utf16 = Utf16Order::None;
    }
    if (binding.form.utf16 != Utf16Order::None) binding.encoding = TextEncoding::Utf8;
    return FormChoice::Save;
}

bool SaveAsksAboutForm(const FileBinding& binding) {
    return binding.form.inexact || (binding.form.utf16 != Utf16Order::None && !binding.formConfirmed);
}

std::wstring FailedSaveText(const wchar_t* path, const SaveReport& report, const std::wstring& systemText,
                            const std::wstring& copy) {
    std::wstring text = std::wstring{L"Failed to save file: "} + path + L"\n\n";
    switch (report.end) {
        case SaveEnd::Saved:
        case SaveEnd::Cancelled: break;
        case SaveEnd::NotEncoded: text += L"There is not enough memory to convert the text."; break;
        case SaveEnd::ReadOnly: text += L"The file is read-only."; break;
        case SaveEnd::NoCopy:
            text += L"No recovery copy of the text could be written, and without one the file is not overwritten.";
            break;
        case SaveEnd::NoRoom: text += L"There is not enough room on the disk. The file is as it was."; break;
        case SaveEnd::NotOpened: text += L"The file could not be opened for writing and is as it was."; break;
        case SaveEnd::NotWritten: text += L"The file may be incomplete, because writing it failed."; break;
        case SaveEnd::Different: text += L"The file is damaged: other bytes came back from the disk."; break;
    }
    if (!systemText.empty()) text += L"\n" + systemText + L" (error " + std::to_wstring(report.error) + L")";
    return text + (copy.empty() ? L"\n\nThe text is only in this window." : L"\n\nThe text is kept in:\n" + copy);
}

std::wstring ReadOnlyChoices() {
    return L"\n\nYes: make the file writable and save\nNo: save under another name\nCancel: do not save";
}

std::wstring FormNotice(const FileBinding& binding) {
    const std::wstring label = binding.label;
    if (binding.form.inexact)
        return label +
               L" holds bytes that the system's code page cannot decode; they are shown as other characters. A save "
               L"will ask before it writes over them.";
    if (binding.form.utf16 != Utf16Order::None)
        return label + L" is UTF-16 text. The first save will ask in which encoding it is written.";
    if (binding.form.keepBreaks) return label + L" holds NUL bytes. Its line breaks are saved as they are.";
    return {};
}

std::wstring SaveQuestion(const wchar_t* label) { return Cut(L"Save changes to " + std::wstring{label} + L"?"); }

std::wstring ReloadQuestion(const wchar_t* label) {
    return Cut(L"Reload " + std::wstring{label} + L" and lose the changes made here?");
}

std::wstring AnsiQuestion(const wchar_t* label) {
    return std::wstring{label} +
           L" contains characters that the system's code page (ANSI) does not have. Saved as ANSI, each of them would "
           L"be "
           L"replaced.\n\nSave as UTF-8 instead?\n\nYes: save as UTF-8, nothing is lost\nNo: save as ANSI, these "
           L"characters are replaced\nCancel: do not save";
}

std::wstring NameToPropose(std::wstring_view label) {
    std::wstring name;
    for (const wchar_t c : label)
        name += c < L' ' || std::wstring_view(L"<>:\"/\\|?*").find(c) != std::wstring_view::npos ? L'_' : c;
    while (!name.empty() && (name.back() == L' ' || name.back() == L'.')) name.pop_back();
    if (name.empty()) name = L"Untitled";
    return name.find(L'.') == std::wstring::npos ? name + L".bas" : name;
}
