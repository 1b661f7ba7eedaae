// What the measurements share: fresh folders, started programs, their windows and memory, and the table of results.
// Everything here stops the run with a message when it cannot do its work: a figure that means nothing is worse than none.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

[[noreturn]] void Die(const std::string& what);

// --- Time and statistics
double NowMs();  // from an arbitrary start
double Quantile(std::vector<double> values, double share);
inline double Median(const std::vector<double>& values) { return Quantile(values, 0.5); }

// --- Results, printed as one table at the end
struct Row {
    std::string work;
    double floor = 0;  // 0: there is none for this work
    double program = 0;
    const char* unit = "ms";
    double maxRatio = 0;  // goal; 0: none
    double maxValue = 0;  // goal in the unit; 0: none
    std::string note;
};
void Report(Row row);
void PrintTable();

// --- Files
std::string Narrow(std::wstring_view text);
std::wstring RunFolder();   // where the folders of this run are made, with a backslash at the end
std::wstring DistFolder();  // the built program, with a backslash at the end
// A BASIC source of about so many bytes, made once a run; exactly `*size` bytes, all ASCII.
std::wstring SourceOfSize(std::size_t about, std::size_t* size);
void WriteText(const std::wstring& path, std::string_view text);

// --- Programs
enum class Kind { Floor, Editor };
struct Furnishing {
    bool compilers = true;  // the stand-ins are there
    bool settings = true;   // a settings file of an earlier start is there
    int floodLines = -1;    // not negative: compiler KVXA64 is the flooding one and prints so many lines
};

// A folder with a copy of the program in it, removed at the end.
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

// A started program; ended by force at the end.
class Program {
public:
    Program(Kind kind, const Folder& folder, const std::wstring& file);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // Waits until a visible Scintilla window answers with this length; milliseconds since the start.
    double AwaitReady(std::size_t length);
    // Once it does not change any more.
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

LRESULT Ask(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
// Runs floor.exe with these arguments; the number that it prints.
double RunFloor(const std::wstring& arguments);

// --- The measurements
void MeasureStart();
void MeasureKeys();
void MeasureOutput();
void MeasureStop();
void MeasureCode();
void MeasureMaps();
void MeasureDebugger();
