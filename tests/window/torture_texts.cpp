// The texts of the documents beside a model of them.
#include "window/torture_driver.h"

#include <algorithm>

#include "resources/ids.h"

namespace torture {

namespace {

constexpr int kMostUndone = 20000;  // steps of an undo that ends

// Where two texts part, for a report.
std::string Difference(const std::string& expected, const std::string& text) {
    const auto [a, b] = std::ranges::mismatch(expected, text);
    const auto at = static_cast<std::size_t>(a - expected.begin()), from = at - std::min<std::size_t>(at, 20);
    return "at byte " + std::to_string(at) + " of " + std::to_string(expected.size()) + ", now " +
           std::to_string(text.size()) + ": expected " + testing::PrintToString(expected.substr(from, 60)) + ", is " +
           testing::PrintToString(text.substr(from, 60));
}

std::wstring WideOf(const std::string& bytes, UINT codePage) {
    const int size = static_cast<int>(bytes.size());
    std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(codePage, 0, bytes.data(), size, nullptr, 0)),
                      L'\0');
    MultiByteToWideChar(codePage, 0, bytes.data(), size, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

// A save gives all lines the ending of the file.
std::string WithOneEnding(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] != '\r')
            out += text[i];
        else if (i + 1 == text.size() || text[i + 1] != '\n')
            out += '\n';
    return out;
}

// A file in one of the encodings that the program writes.
bool IsTextOf(const std::string& bytes, const std::string& text) {
    const auto same = [&](const std::string& utf8) { return WithOneEnding(utf8) == WithOneEnding(text); };
    if (same(bytes) || (bytes.starts_with("\xEF\xBB\xBF") && same(bytes.substr(3)))) return true;
    // UTF-16 of both orders, with a mark or without one.
    for (const bool turned : {false, true}) {
        std::wstring wide(bytes.size() / 2, L'\0');
        std::copy(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(wide.size() * 2),
                  reinterpret_cast<char*>(wide.data()));
        if (turned)
            for (wchar_t& unit : wide) unit = static_cast<wchar_t>(unit >> 8 | unit << 8);
        if (same(Utf8(wide)) || (wide.starts_with(L'\xFEFF') && same(Utf8(wide.substr(1))))) return true;
    }
    return same(Utf8(WideOf(bytes, CP_ACP)));
}

}  // namespace

void Driver::LookAtText(Texts texts) {
    if (faulty || Ended()) return;
    if (texts == Texts::Any || GetTickCount64() < unsureUntil) models.clear();
    const HWND sci = editor.Sci();
    if (sci == nullptr) return;
    const std::string text = editor.Text();
    if (const auto model = models.find(sci); model == models.end())
        models[sci] = text;
    else if (model->second != text && editor.Sci() == sci) {
        Fault("the text is not what it should be, " + Difference(model->second, text));
        model->second = text;
    }
}

void Driver::CheckUndo() {
    const HWND sci = editor.Sci();
    if (sci == nullptr || editor.Sci(SCI_GETREADONLY) != 0 || editor.Sci(SCI_GETLENGTH) > 200000) return;
    const auto all = [&](UINT can, UINT step) {
        int steps = 0;
        while (!faulty && editor.Sci() == sci && editor.Sci(can) != 0 && ++steps < kMostUndone) editor.Sci(step);
        return editor.Text();
    };
    const auto redone = [&] { return all(SCI_CANREDO, SCI_REDO); };
    const auto undone = [&] { return all(SCI_CANUNDO, SCI_UNDO); };
    const std::string end = redone(), beginning = undone(), endAgain = redone(), beginningAgain = undone();
    if (faulty || editor.Sci() != sci) return;
    if (end != endAgain) Fault("redo does not lead back to the end, " + Difference(end, endAgain));
    if (beginning != beginningAgain) Fault("undo does not lead to the start, " + Difference(beginning, beginningAgain));
    const auto known = beginnings.try_emplace(sci, beginning).first;
    if (known->second != beginning) Fault("undo leads to another start, " + Difference(known->second, beginning));
    if (Chance(70)) redone();
    models.erase(sci);
}

std::wstring Driver::ActiveFile() const {
    std::wstring title = editor.Title();
    const std::size_t end = title.rfind(L" - KVXE Editor");
    title.resize(end == std::wstring::npos ? 0 : end);
    return title.size() > 3 && title[1] == L':' ? title : std::wstring();
}

void Driver::CheckSaved() {
    const std::wstring path = ActiveFile();
    const HWND sci = editor.Sci();
    if (path.empty() || sci == nullptr || Box() != nullptr || editor.Modified()) return;
    const std::string text = editor.Text();
    const std::optional<std::string> bytes = ReadBytes(path);
    if (!bytes || editor.Sci() != sci || editor.Modified() || Box() != nullptr) return;
    if (!IsTextOf(*bytes, text))
        Fault("the saved file is not the text: " + Utf8(path) + ", " + Difference(text, *bytes));
}

}  // namespace torture
