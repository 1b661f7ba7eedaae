// Measures large edits and their undo: Replace All of 20,000 matches, and Format Document of 200,000 lines. The floor is
// Scintilla alone, which makes the same replacements.
#include "bench.h"

#include <Scintilla.h>

#include <cstdio>
#include <string>

#include "resources/ids.h"

namespace {

constexpr int kMatches = 20'000;
constexpr int kFormatted = 200'000;  // lines that the formatter changes
constexpr int kRuns = 5;

std::string Repeated(std::string_view line, int count) {
    std::string text = "FUNCTION PBMAIN() AS LONG\r\n";
    for (int i = 0; i < count; ++i) text += line;
    return text + "END FUNCTION\r\n";
}

struct Edit {
    const char* name;
    const wchar_t* floor;  // its argument for the floor program
    std::string text;      // of the document
    void (*run)(const Program& editor);
};

void AwaitPainted(const Program& editor) {
    Ask(editor.Sci(), WM_PAINT);
    Ask(editor.Main(), WM_NULL);
}

void ReplaceAll(const Program& editor) {
    const HWND dialog = FindWindowW(L"#32770", L"Find and Replace");
    if (dialog == nullptr) Die("there is no find dialog");
    Ask(dialog, WM_COMMAND, IDC_FIND_REPLACE_ALL);
    AwaitPainted(editor);
}

void FillReplaceDialog(const Program& editor) {
    Ask(editor.Main(), WM_COMMAND, IDM_EDIT_REPLACE);
    const HWND dialog = FindWindowW(L"#32770", L"Find and Replace");
    for (const auto& [control, text] : {std::pair{IDC_FIND_WHAT, L"total"}, {IDC_FIND_WITH, L"grand_total"}})
        Ask(GetDlgItem(dialog, control), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
}

void FormatAll(const Program& editor) {
    Ask(editor.Main(), WM_COMMAND, IDM_EDIT_FORMAT_DOCUMENT);
    AwaitPainted(editor);
}

struct Times {
    double edit = 0;
    double undo = 0;
};

Times EditOnce(const Edit& edit, const std::wstring& file) {
    const Folder folder;
    Program editor(Kind::Editor, folder, file);
    editor.AwaitReady(edit.text.size());
    editor.SettledMemory();
    if (edit.run == ReplaceAll) FillReplaceDialog(editor);
    Times times;
    double start = NowMs();
    edit.run(editor);
    times.edit = NowMs() - start;
    if (Ask(editor.Sci(), SCI_GETLENGTH) <= static_cast<LRESULT>(edit.text.size())) Die("nothing was edited");
    editor.SettledMemory();
    start = NowMs();
    Ask(editor.Sci(), SCI_UNDO);
    AwaitPainted(editor);
    times.undo = NowMs() - start;
    if (Ask(editor.Sci(), SCI_GETLENGTH) != static_cast<LRESULT>(edit.text.size())) Die("the undo is not complete");
    return times;
}

void MeasureEdit(const Edit& edit) {
    const Folder folder;
    const std::wstring file = folder.Path() + L"edited.bas";
    WriteText(file, edit.text);
    std::vector<double> floor[2];
    std::vector<double> program[2];
    for (int i = 0; i < Runs(kRuns); ++i) {
        for (int undo = 0; undo < 2; ++undo)
            floor[undo].push_back(
                RunFloor(L"--" + std::wstring(edit.floor) + (undo != 0 ? L" undo \"" : L" edit \"") + file + L"\""));
        const Times times = EditOnce(edit, file);
        program[0].push_back(times.edit);
        program[1].push_back(times.undo);
    }
    for (int undo = 0; undo < 2; ++undo)
        Report({.work = std::string(edit.name) + (undo != 0 ? ", undone" : ""),
                .floor = floor[undo],
                .program = program[undo],
                .maxRatio = 2,
                .note = "floor: Scintilla alone",
                .headline = true});
}

}  // namespace

void MeasureEdits() {
    MeasureEdit({"20,000 replaced", L"replace", Repeated("  total = count + 12 ' sum\r\n", kMatches), ReplaceAll});
    MeasureEdit(
        {"200,000 lines formatted", L"indent", Repeated("count = count + 12 ' sum\r\n", kFormatted), FormatAll});
}
