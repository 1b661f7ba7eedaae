// Questions and messages to the user, in message boxes of the main window. No other code shows a message box, so a
// self-test or a test can answer in the user's place here. UI thread only.
#pragma once

#include <cstdint>

enum class AskButtons : std::uint8_t { Ok, YesNo, YesNoCancel, OkCancel };
enum class AskIcon : std::uint8_t { None, Information, Question, Warning, Error };
// The ids of the system's buttons. The button OK gives Yes.
enum class Answer : std::uint8_t { Cancel = 2, Yes = 6, No = 7 };

struct UserQuestion {
    const wchar_t* caption;
    const wchar_t* text;
    AskButtons buttons;
    AskIcon icon;
    Answer inSelftest;              // the answer in a self-test run, in which no box is shown
    bool enterIsNo = false;         // the second button is the one that Enter presses
    const wchar_t* yes = nullptr;   // what the button Yes, or OK, is called instead; it says what is done
    const wchar_t* no = nullptr;    // the same of No
    Answer loses = Answer::Cancel;  // the button that gives work up, or sends it: its letter alone does not press it
};
Answer AskUser(const UserQuestion& question);
void TellUser(const wchar_t* caption, const wchar_t* text, AskIcon icon);

// Show a message with the program's name as caption. At most 2,047 characters are shown. `%s` means wide text. A
// self-test run only writes the message to the log.
void ErrorMessage(const wchar_t* format, ...);
void InfoMessage(const wchar_t* format, ...);

// For tests: called instead of showing a box, when it is not null.
extern Answer (*g_answerInstead)(const UserQuestion& question);

// Called with each text that a self-test run does not show, when it is not null.
extern void (*g_toldInSelftest)(const wchar_t* text);

// The program's name in captions.
extern const wchar_t kProgramCaption[];

// True in a self-test run: AskUser returns `inSelftest` without showing a box, and nothing is saved at the end.
extern bool g_selftestTabsMode;
