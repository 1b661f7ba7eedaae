// A command that may take long. After a second it shows its progress, and Esc, Ctrl+Break or closing the window stops it
// (ui/busy_input.h). UI thread only.
#pragma once

inline constexpr double kLongWorkMs = 1000;
extern double g_longWorkAfterMs;  // kLongWorkMs; 0 in a test, so that every step is shown and can be stopped

class LongWork {
public:
    // `what` is a word such as "Replacing"; `show` puts a text where the user looks. Both must outlive the work.
    LongWork(const wchar_t* what, void (*show)(const wchar_t* text));
    ~LongWork();
    LongWork(const LongWork&) = delete;
    LongWork& operator=(const LongWork&) = delete;

    // Called between small steps, with the share of the work that is done (0 to 1). False from the moment on at which the
    // user stops the work.
    bool GoesOn(double share);
    bool Stopped() const { return stopped_; }
    bool Shown() const { return looked_ > began_; }  // the user has seen its progress

private:
    const wchar_t* what_;
    void (*show_)(const wchar_t* text);
    double began_;
    double looked_;
    bool stopped_ = false;
};

bool LongWorkRuns();  // no other command may begin
