// Measures one keystroke from the posted character to the painted result. The character is posted, not sent, because a
// real one also comes through the message loop, where work on an empty queue delays the next key. The floor program and
// the editor take turns of 40 keys, so that both have the same load of the machine; a turn is a run of the table.
#include "bench.h"

#include <Scintilla.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace {

constexpr int kTurns = 10, kTurnsOfNames = 5;
constexpr int kKeysOfTurn = 40;
constexpr int kNewLineEvery = 40;
constexpr DWORD kTypistMs = 60;  // 200 words a minute
constexpr double kKeyLimitMs = 20000;
constexpr std::string_view kTyped = "total = total + 12 ' sum ";
// With beginnings of names that all 200,000 declarations have, or many, or few. A line is as long as a new line needs it,
// so that no list is open then.
constexpr std::string_view kTypedNames = "na12 = name3456 + nam(na7) - name12 + 1 ";
static_assert(kTypedNames.size() == kNewLineEvery);

double TypeOne(HWND pane, int number, std::string_view typed) {
    const LRESULT before = Ask(pane, SCI_GETLENGTH);
    const double start = NowMs();
    // Enter is posted as a key, because Scintilla binds it to a command.
    const BOOL posted =
        number % kNewLineEvery == kNewLineEvery - 1
            ? PostMessageW(pane, SCI_NEWLINE, 0, 0)
            : PostMessageW(pane, WM_CHAR, static_cast<WPARAM>(typed[static_cast<std::size_t>(number) % typed.size()]),
                           1);
    if (!posted) Die("a key cannot be posted");
    // The program answers SCI_GETLENGTH between two messages. When the text is longer, the key has been handled and the
    // changed part waits to be painted.
    while (Ask(pane, SCI_GETLENGTH) == before)
        if (NowMs() - start > kKeyLimitMs) Die("a key was not taken");
    AwaitPainted(pane, start + kKeyLimitMs);
    Ask(pane, WM_NULL);  // the update region is empty when painting begins; WM_NULL is answered after the painting
    return NowMs() - start;
}

struct Place {
    const char* name;
    double share;  // place in the document, 0 to 1
};
constexpr Place kPlaces[] = {{"start", 0.0}, {"middle", 0.5}, {"end", 1.0}};

void GoTo(HWND pane, const Place& place) {
    const auto length = static_cast<double>(Ask(pane, SCI_GETLENGTH));
    const LRESULT line = Ask(pane, SCI_LINEFROMPOSITION, static_cast<WPARAM>(place.share * length));
    Ask(pane, SCI_GOTOLINE, static_cast<WPARAM>(line));
    Ask(pane, SCI_LINEEND);
    AwaitQuiet(pane);
}

// Rests for `paceMs` after each key.
void TypeTurn(const Program& program, int turn, std::string_view typed, DWORD paceMs, std::vector<double>* times) {
    BringToFront(program);
    const HWND pane = program.Sci();
    for (int i = 0; i < kKeysOfTurn; ++i) {
        times->push_back(TypeOne(pane, turn * kKeysOfTurn + i, typed));
        if (paceMs != 0) Sleep(paceMs);
    }
}

// A source of about 10 MB with more than 200,000 names.
std::string SourceWithNames() {
    std::string text;
    for (int i = 0; text.size() < 10'000'000; ++i) {
        const std::string number = std::to_string(i);
        text += "GLOBAL name" + number + " AS LONG\r\n";
        if (i % 4 == 0)
            text += "SUB Work" + number + "(first AS LONG)\r\n    LOCAL name" + number +
                    "x AS LONG, here AS LONG\r\n"
                    "    here = first + name" +
                    number + " ' adds what was there\r\nEND SUB\r\n";
    }
    return text;
}

double Within95(const Program& program, int turn, std::string_view typed, DWORD paceMs, std::vector<double>* medians) {
    std::vector<double> times;
    TypeTurn(program, turn, typed, paceMs, &times);
    medians->push_back(Median(times));
    return Quantile(times, 0.95);
}

// The editor with the setting off takes the place of the floor.
void MeasureKeysWith(const char* what, const wchar_t* section, const wchar_t* setting, std::string_view typed,
                     DWORD paceMs) {
    const std::string text = SourceWithNames();
    const std::wstring file = RunFolder() + L"names.bas";
    WriteText(file, text);
    const Folder without, with;
    WritePrivateProfileStringW(section, setting, L"0", (without.Path() + L"Editor.ini").c_str());
    WritePrivateProfileStringW(section, setting, L"1", (with.Path() + L"Editor.ini").c_str());
    Program bare(Kind::Editor, without, file);
    bare.AwaitReady(text.size());
    Program editor(Kind::Editor, with, file);
    editor.AwaitReady(text.size());
    std::vector<double> more;  // of the medians
    for (const Place& place : kPlaces) {
        std::vector<double> off, on, offMedians, onMedians;
        GoTo(bare.Sci(), place);
        GoTo(editor.Sci(), place);
        for (int turn = 0; turn < Runs(kTurnsOfNames); ++turn) {
            off.push_back(Within95(bare, turn, typed, paceMs, &offMedians));
            on.push_back(Within95(editor, turn, typed, paceMs, &onMedians));
            more.push_back(std::max(onMedians.back() - offMedians.back(), 0.0));
        }
        Report({.work = std::string("a key with ") + what + " at the " + place.name + " of 10 MB, 95 of 100 within",
                .floor = off,
                .program = on,
                .maxValue = 5.0,
                .note = "floor: the editor without",
                .headline = paceMs != 0});
    }
    Report({.work = std::string("- ") + what + " adds to the median key", .program = more, .maxValue = 2.0});
    const Memory off = bare.SettledMemory(), on = editor.SettledMemory();
    Report({.work = std::string("memory with ") + what + " of 10 MB: resident",
            .floor = {off.residentMb},
            .program = {on.residentMb},
            .unit = "MB",
            .note = "floor: the editor without"});
}

}  // namespace

void MeasureKeys() {
    for (const auto& [name, about] : {std::pair{"50 kB", std::size_t{50'000}}, {"10 MB", std::size_t{10'000'000}}}) {
        std::size_t size = 0;
        const std::wstring file = SourceOfSize(about, &size);
        const Folder folder;
        Program floor(Kind::Floor, folder, file);
        floor.AwaitReady(size);
        Program editor(Kind::Editor, folder, file);
        editor.AwaitReady(size);
        for (const Place& place : kPlaces) {
            std::vector<double> bare, keys, bareMedians, medians;
            GoTo(floor.Sci(), place);
            GoTo(editor.Sci(), place);
            for (int turn = 0; turn < Runs(kTurns); ++turn) {
                bare.push_back(Within95(floor, turn, kTyped, 0, &bareMedians));
                keys.push_back(Within95(editor, turn, kTyped, 0, &medians));
            }
            char note[64];
            std::snprintf(note, sizeof(note), "median key %.2f, floor's %.2f", Median(medians), Median(bareMedians));
            Report({.work = std::string("a key at the ") + place.name + " of " + name + ", 95 of 100 within",
                    .floor = bare,
                    .program = keys,
                    .maxRatio = 2.0,
                    .note = note,
                    .headline = true});
        }
    }
}

// The list opens in the first pause of the typing, so the keys come at the pace of a quick typist.
void MeasureCompletion() { MeasureKeysWith("completion", L"Editor", L"EnableAutoComplete", kTypedNames, kTypistMs); }
void MeasureKeysWithSymbols() { MeasureKeysWith("symbols", L"Project", L"ShowOutline", kTyped, 0); }
