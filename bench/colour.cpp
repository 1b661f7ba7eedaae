// Measures the colouring of a whole BASIC document, folds included, in one window of this program. The floor is a lexer of
// Lexilla with the same words, which makes no folds.
#include "bench.h"

#include <Scintilla.h>

#include <fstream>
#include <iterator>
#include <string>

#include "language/basic_lexer.h"
#include "language/format.h"
#include "scintilla/sci.h"
#include "scintilla/scintilla_library.h"

namespace {

constexpr std::size_t kBytes = 10'000'000;
constexpr int kRuns = 5;

void SetProperty(HWND pane, const char* key, const char* value) {
    Ask(pane, SCI_SETPROPERTY, reinterpret_cast<WPARAM>(key), reinterpret_cast<LPARAM>(value));
}

Scintilla::ILexer5* LexillasLexer() {
    const HMODULE lexilla = LoadLibraryW((DistFolder() + L"Lexilla.dll").c_str());
    if (lexilla == nullptr) Die("Lexilla.dll cannot be loaded");
    const auto create =
        reinterpret_cast<CreateLexerFunction>(reinterpret_cast<void*>(GetProcAddress(lexilla, "CreateLexer")));
    return create("vb");
}

double ColourOnce(const std::string& text, Scintilla::ILexer5* lexer) {
    const HWND pane =
        CreateWindowExW(0, L"Scintilla", L"", WS_POPUP, 0, 0, 400, 300, nullptr, nullptr, nullptr, nullptr);
    if (pane == nullptr) Die("no Scintilla window");
    Ask(pane, SCI_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    Ask(pane, SCI_SETILEXER, 0, reinterpret_cast<LPARAM>(lexer));
    constexpr WordClass kSets[] = {WordClass::Statement, WordClass::Type, WordClass::Function, WordClass::Operator};
    for (int set = 0; set < 4; ++set)
        Ask(pane, SCI_SETKEYWORDS, static_cast<WPARAM>(set),
            reinterpret_cast<LPARAM>(WordsOf(kSets[set], AnyDialect()).c_str()));
    const bool ours = Ask(pane, SCI_GETLEXER) == kBasicLexer;
    SetProperty(pane, "fold", ours ? "1" : "0");
    Ask(pane, SCI_SETMODEVENTMASK, SC_MOD_INSERTTEXT | SC_MOD_DELETETEXT);  // as the editor sets it
    const double start = NowMs();
    Ask(pane, SCI_COLOURISE, 0, -1);
    const double time = NowMs() - start;
    if (Ask(pane, SCI_GETENDSTYLED) < static_cast<LRESULT>(text.size())) Die("not all was coloured");
    DestroyWindow(pane);
    return time;
}

}  // namespace

void MeasureColour() {
    if (LoadLibraryW((DistFolder() + L"Scintilla.dll").c_str()) == nullptr) Die("Scintilla.dll cannot be loaded");
    std::size_t size = 0;
    std::ifstream stream(Narrow(SourceOfSize(kBytes, &size)), std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(stream)), {});
    std::vector<double> floor, program, formats;
    for (int i = 0; i < Runs(kRuns); ++i) {
        floor.push_back(ColourOnce(text, LexillasLexer()));
        program.push_back(ColourOnce(text, CreateBasicLexer()));
        const double start = NowMs();
        if (FormatBasicSource(text, {}).size() < text.size() / 2) Die("the text was not formatted");
        formats.push_back(NowMs() - start);
    }
    Report({.work = "10 MB of BASIC coloured",
            .floor = floor,
            .program = program,
            .maxRatio = 1.2,
            .note = "with folds; floor: a lexer of Lexilla, without",
            .headline = true});
    Report({.work = "10 MB of BASIC formatted, in memory", .program = formats, .maxValue = 500, .note = "20 MB/s"});
}
