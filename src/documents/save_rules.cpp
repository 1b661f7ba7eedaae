// Decisions of a save, and its questions. Pure.
#include "documents/save_rules.h"

#include "base/path.h"
#include "documents/file_binding.h"

namespace {

constexpr std::size_t kLongestQuestion = 511;

std::wstring Cut(std::wstring question) {
    if (question.size() > kLongestQuestion) question.resize(kLongestQuestion);
    return question;
}

}  // namespace

FileBinding BindingForNewName(const wchar_t* path) {
    FileBinding binding;
    SafeCopyW(binding.path, path);
    PathGetFile(path, binding.label, kLabelCapacity);
    binding.encoding = TextEncoding::Ansi;
    binding.lineEnding = LineEnding::CrLf;
    binding.hasFile = true;
    return binding;
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
