// Decisions of a save, and its questions. Pure.
#include "documents/save_rules.h"

#include "base/path.h"
#include "base/texts.h"

namespace {

constexpr std::size_t kLongestQuestion = 511;

std::wstring Cut(std::wstring question) {
    if (question.size() > kLongestQuestion) question.resize(kLongestQuestion);
    return question;
}

std::wstring MixedBreaksNotice(const FileBinding& binding) {
    if (!SaveUnifiesBreaks(binding)) return {};
    constexpr const wchar_t* kNames[] = {L"CRLF", L"LF", L"CR"};
    return TextWith(L"{1} has line breaks of several kinds. A save makes all of them {2}.",
                    {binding.label, kNames[static_cast<std::size_t>(binding.lineEnding)]});
}

}  // namespace

FileBinding BindingForNewName(const wchar_t* path, const FileBinding& before, TextEncoding newFiles) {
    FileBinding binding;
    binding.form = before.form;
    binding.formConfirmed = before.formConfirmed;
    SafeCopyW(binding.path, path);
    PathGetFile(path, binding.label, kLabelCapacity);
    binding.chosen = before.chosen;
    binding.encoding = before.chosen ? before.encoding : newFiles;
    binding.lineEnding = before.chosen ? before.lineEnding : LineEnding::CrLf;
    binding.hasFile = true;
    return binding;
}

TextEncoding EncodingOfNewFiles(const Settings& settings) {
    return settings.newFileEncoding == 1 ? TextEncoding::Utf8 : TextEncoding::Ansi;
}

TextEncoding EncodingOfNextSave(const FileBinding& binding, TextEncoding newFiles) {
    return binding.hasFile || binding.chosen ? binding.encoding : newFiles;
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

FormChoice ChooseForm(FileBinding& binding, bool sameFile, const std::function<Answer(const FormQuestion&)>& ask) {
    const std::wstring label = binding.label;
    if (binding.form.inexact && sameFile) {
        const Answer answer =
            ask({TextWith(L"{1} holds bytes that the system's code page cannot decode. Saving over it loses them, also "
                          L"in lines that you did not change.\n\nUnder another name, this file stays as it is.",
                          {label}),
                 Text(L"Save &As..."), Text(L"&Overwrite")});
        if (answer != Answer::No) return answer == Answer::Yes ? FormChoice::OtherName : FormChoice::Cancel;
    }
    if (binding.form.utf16 != Utf16Order::None && !binding.formConfirmed) {
        const Answer answer =
            ask({TextWith(L"{1} is UTF-16 text, which most compilers do not read. Keep it UTF-16?", {label}),
                 Text(L"&Keep UTF-16"),
                 binding.encoding == TextEncoding::Ansi ? Text(L"Save as &ANSI") : Text(L"Save as &UTF-8")});
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
    std::wstring text = TextWith(L"Failed to save file: {1}", {path}) + L"\n\n";
    switch (report.end) {
        case SaveEnd::Saved:
        case SaveEnd::Cancelled: break;
        case SaveEnd::NotEncoded: text += Text(L"There is not enough memory to convert the text."); break;
        case SaveEnd::ReadOnly: text += Text(L"The file is read-only."); break;
        case SaveEnd::NoCopy:
            text +=
                Text(L"No recovery copy of the text could be written, and without one the file is not overwritten.");
            break;
        case SaveEnd::NoRoom: text += Text(L"There is not enough room on the disk. The file is as it was."); break;
        case SaveEnd::NotOpened: text += Text(L"The file could not be opened for writing and is as it was."); break;
        case SaveEnd::NoFolder: text += Text(L"The folder of the file is not there any more."); break;
        case SaveEnd::NotWritten: text += Text(L"The file may be incomplete, because writing it failed."); break;
        case SaveEnd::Different: text += Text(L"The file is damaged: other bytes came back from the disk."); break;
    }
    if (!systemText.empty()) text += TextWith(L"\n{1} (error {2})", {systemText, std::to_wstring(report.error)});
    return text + (copy.empty() ? Text(L"\n\nThe text is only in this window.")
                                : TextWith(L"\n\nThe text is kept in:\n{1}", {copy}));
}

bool SaveUnifiesBreaks(const FileBinding& binding) { return binding.form.mixedBreaks && !binding.form.keepBreaks; }

std::wstring FormNotice(const FileBinding& binding) {
    const std::wstring label = binding.label;
    if (binding.form.inexact)
        return TextWith(
            L"{1} holds bytes that the system's code page cannot decode; they are shown as other characters. A save "
            L"will ask before it writes over them.",
            {label});
    if (binding.form.utf16 != Utf16Order::None)
        return TextWith(L"{1} is UTF-16 text. The first save will ask in which encoding it is written.", {label});
    if (binding.form.keepBreaks)
        return TextWith(L"{1} holds NUL bytes. Its line breaks are saved as they are.", {label});
    return MixedBreaksNotice(binding);
}

std::wstring SaveQuestion(const wchar_t* label) { return Cut(TextWith(L"Save changes to {1}?", {label})); }

std::wstring ReloadQuestion(const wchar_t* label, bool undone) {
    return Cut(undone ? TextWith(L"Reload {1} from the disk? Undo then brings back the changes made here.", {label})
                      : TextWith(L"Reload {1} from the disk? The changes made here are then lost.", {label}));
}

std::wstring AnsiQuestion(const wchar_t* label) {
    return TextWith(
        L"{1} contains characters that the system's code page (ANSI) does not have. Saved as ANSI, each of them would "
        L"be replaced. In UTF-8 nothing is lost.",
        {label});
}

std::wstring NameToPropose(std::wstring_view label) {
    std::wstring name;
    for (const wchar_t c : label)
        name += c < L' ' || std::wstring_view(L"<>:\"/\\|?*").find(c) != std::wstring_view::npos ? L'_' : c;
    while (!name.empty() && (name.back() == L' ' || name.back() == L'.')) name.pop_back();
    if (name.empty()) name = L"Untitled";
    return name.find(L'.') == std::wstring::npos ? name + L".bas" : name;
}
