// Helpers of the measurements: fresh folders, started programs, their windows and memory, and the table of results.
// Every function ends the run with a message when it fails, because a wrong figure is worse than none.
#pragma once

#include <windows.h>

#include "results.h"

#include <string>
#include <string_view>
#include <vector>

[[noreturn]] void Die(const std::string& what);

// --- Time and results
double NowMs();        // milliseconds from an arbitrary start
int Runs(int wanted);  // so many, or one in a quick run
void Report(Row row);  // into the table of this run

// --- Files
std::string Narrow(std::wstring_view text);
std::wstring RunFolder();   // the folder for the folders of this run, with a backslash at the end
std::wstring DistFolder();  // the folder of the built program, with a backslash at the end
// Returns the path of a BASIC source of about `about` bytes; it is made once a run. `*size` is its exact size; all
// bytes are ASCII.
std::wstring SourceOfSize(std::size_t about, std::size_t* size);
void WriteText(const std::wstring& path, std::string_view text);

// --- Programs
enum class Kind { Floor, Editor };
struct Furnishing {
    bool compilers = true;  // the stand-in compilers are in the folder
    bool settings = true;   // the settings file of an earlier start is in the folder
    int floodLines = -1;    // from 0 on: KVXA64 prints so many lines (0: without end)
};

// A folder with a copy of the program in it. The destructor removes it.
class Folder {
public:
    explicit Folder(const Furnishing& furnishing = {});
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    const std::wstring& Path() const { return path_; }  // with a backslash at the end

private:
    std::wstring path_;
};

struct Memory {
    double residentMb = 0;
    double peakMb = 0;
};

// A started program. The destructor terminates it.
class Program {
public:
    Program(Kind kind, const Folder& folder, const std::wstring& file);  // empty: without a file
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // Waits until a visible Scintilla window has a text of this length. Returns the milliseconds since the start.
    double AwaitReady(std::size_t length);
    // Waits until the memory figures stop changing, and returns them.
    Memory SettledMemory() const;

    HWND Main() const { return main_; }
    HWND Sci() const { return sci_; }
    HANDLE Process() const { return process_; }

private:
    bool FindPane(std::size_t length);

    HANDLE process_ = nullptr;
    DWORD pid_ = 0;
    double started_ = 0;
    HWND main_ = nullptr;
    HWND sci_ = nullptr;
};

// Sleeps for less than 1 ms, the shortest time of Sleep. Polling without a pause would take a processor from the
// measured work, and under Wine also keep its server busy.
void Pause(double ms);
inline constexpr double kLookMs = 0.1;         // a pause between two looks at a window
void AwaitPainted(HWND window, double limit);  // until the window has nothing to paint; `limit` is a value of NowMs()

// The visible windows of a frame, found once, because looking for them takes longer than what is measured.
class ShownWindows {
public:
    explicit ShownWindows(HWND frame) : frame_(frame) { Add(); }
    void Add();                             // those that are visible now, too
    void AwaitPainted(double limit) const;  // until all of them have been painted; `limit` is a value of NowMs()

private:
    HWND frame_;
    std::vector<HWND> windows_;
};
// Waits until the window has had nothing to paint for a while, because after a jump the program may have more to do.
void AwaitQuiet(HWND window);
// Brings the program to the front and waits for the focus in its pane. A window behind another one paints nothing, and
// a pane without the focus has no caret to draw, so that its keys cost less than a person's.
void BringToFront(const Program& program);
inline constexpr UINT kAnswerLimitMs = 60000;
LRESULT Ask(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
// Runs floor.exe with these arguments and returns the number that it prints.
double RunFloor(const std::wstring& arguments);

// --- The measurements
void MeasureStart();
void MeasureLarge();
void MeasureKeys();
void MeasureCompletion();
void MeasureSymbols();
void MeasureKeysWithSymbols();  // a part of MeasureSymbols
void MeasureEdits();
void MeasureColour();
void MeasureOutput();
void MeasurePrompts();
void MeasureStop();
void MeasureCode();
void MeasureMaps();
void MeasureDebugger();
void MeasureAi();
void MeasureFiles();
void MeasureFinder();
void MeasureSettings();
void MeasureSessions();
void MeasureTree();
void MeasurePanes();
void MeasureFind();
