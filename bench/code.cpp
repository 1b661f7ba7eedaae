// Measures the rendering of five megabytes of machine code as text, and whether the window answers while the ASM pane
// is filled to its limits.
#include "bench.h"

#include <richedit.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>

#include "disasm/renderer.h"
#include "program/pe_image.h"
#include "resources/ids.h"
#include "support/pe_bytes.h"

namespace {

constexpr std::size_t kCodeBytes = std::size_t{5} << 20;
constexpr std::size_t kBudget = 20000;
constexpr int kStatements = 8000;   // enough for a listing of over 8,000 lines
constexpr int kLinesShown = 24000;  // three parts of 8,000 lines
constexpr double kLimitMs = 120000;
constexpr int kRuns = 5;
constexpr DWORD kPauseMs = 5;  // between two messages to a program that is busy

// Makes a program whose code is the editor's own code, repeated.
pe_bytes::Bytes ProgramOfCode() {
    std::ifstream stream(Narrow(DistFolder()) + "KVX-Editor.exe", std::ios::binary);
    const pe_bytes::Bytes file((std::istreambuf_iterator<char>(stream)), {});
    const PeImage image = PeImageRead(file);
    const auto text = std::find_if(image.sections.begin(), image.sections.end(),
                                   [](const PeSection& section) { return section.isCode && !section.data.empty(); });
    if (text == image.sections.end()) Die("KVX-Editor.exe has no code");
    pe_bytes::Bytes code;
    while (code.size() < kCodeBytes) code.insert(code.end(), text->data.begin(), text->data.end());
    code.resize(kCodeBytes);
    return pe_bytes::Build({.sections = {{".text", 0x1000, code}}});
}

std::string SourceOfManyLines() {
    std::string text = "FUNCTION PBMAIN () AS LONG\r\n";
    for (int i = 0; i < kStatements; ++i) text += "  PRINT 1\r\n";
    return text + "END FUNCTION\r\n";
}

struct Rendering {
    double time = 0;
    double longestSlice = 0;
    std::size_t bytes = 0;
};

Rendering RenderOnce(const pe_bytes::Bytes& file) {
    Rendering result;
    const double start = NowMs();
    const DisasmRendererPtr renderer = DisasmRendererNew({.file = file});
    std::string text;
    for (bool more = true; more;) {
        text.clear();
        const double slice = NowMs();
        more = DisasmRenderNext(*renderer, kBudget, &text);
        result.longestSlice = std::max(result.longestSlice, NowMs() - slice);
        result.bytes += text.size();
    }
    result.time = NowMs() - start;
    if (result.bytes < kCodeBytes * 10) Die("the code was not rendered: " + text.substr(0, 200));
    return result;
}

// Sends messages until the pane has so many lines. Returns the milliseconds of the slowest answer.
double FillPane(HWND window, int lines) {
    double slowest = 0;
    const double start = NowMs();
    const auto linesShown = [window] {  // the editor may replace the pane between the two calls
        DWORD_PTR count = 0;
        SendMessageTimeoutW(GetDlgItem(window, IDC_ASM), EM_GETLINECOUNT, 0, 0, SMTO_NORMAL, 60000, &count);
        return static_cast<int>(count);
    };
    while (linesShown() < lines) {
        const double question = NowMs();
        Ask(window, WM_NULL);
        slowest = std::max(slowest, NowMs() - question);
        if (question - start > kLimitMs) Die("the ASM pane does not fill");
        Sleep(kPauseMs);
    }
    return slowest;
}

struct PaneTimes {
    std::vector<double> filled, slowest;
};

void MeasurePane(const pe_bytes::Bytes& program, PaneTimes* times) {
    const Folder folder;
    const std::wstring file = folder.Path() + L"main.bas";
    const std::string source = SourceOfManyLines();
    WriteText(file, source);
    Program editor(Kind::Editor, folder, file);
    editor.AwaitReady(source.size());
    editor.SettledMemory();
    const HWND window = editor.Main();
    Ask(window, WM_COMMAND, IDM_USE_KVXB64);
    Ask(window, WM_COMMAND, IDM_VIEW_ASM);
    Ask(window, WM_COMMAND, IDM_BUILD);
    FillPane(window, 300);
    editor.SettledMemory();
    WriteText(folder.Path() + L"main.exe", {reinterpret_cast<const char*>(program.data()), program.size()});
    Ask(window, WM_COMMAND, IDM_VIEW_ASM);
    const double start = NowMs();
    Ask(window, WM_COMMAND, IDM_VIEW_ASM);
    const double command = NowMs() - start;
    const double slowest = std::max(command, FillPane(window, kLinesShown));
    times->filled.push_back(NowMs() - start);
    times->slowest.push_back(slowest);
}

}  // namespace

void MeasureCode() {
    const pe_bytes::Bytes file = ProgramOfCode();
    std::vector<double> times, slices;
    PaneTimes pane;
    for (int i = 0; i < Runs(kRuns); ++i) {
        const Rendering rendering = RenderOnce(file);
        times.push_back(rendering.time);
        slices.push_back(rendering.longestSlice);
        MeasurePane(file, &pane);
    }
    Report({.work = "5 MB of code rendered", .program = times, .maxValue = 2000});
    Report({.work = "- the longest slice of 20,000 instructions", .program = slices, .figure = Figure::Most});
    Report({.work = "ASM pane filled with 24,000 lines", .program = pane.filled});
    Report({.work = "- slowest answer of the window meanwhile",
            .program = pane.slowest,
            .figure = Figure::Most,
            .maxValue = 100});
}
