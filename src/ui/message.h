// Asking and telling the user, in boxes owned by the main window. Nothing else shows a message box: what answers in the
// user's place, a self-test run or a test, is decided here alone. UI thread only.
#pragma once

#include <cstdint>

enum class AskButtons : std::uint8_t { Ok, YesNo, YesNoCancel };
enum class AskIcon : std::uint8_t { None, Information, Question, Warning, Error };
// The numbers of the system's buttons. Ok answers Yes.
enum class Answer : std::uint8_t { Cancel = 2, Yes = 6, No = 7 };

struct UserQuestion {
    const wchar_t* caption;
    const wchar_t* text;
    AskButtons buttons;
    AskIcon icon;
    Answer inSelftest;  // what a self-test run answers, where nobody sees a box
};
Answer AskUser(const UserQuestion& question);
void TellUser(const wchar_t* caption, const wchar_t* text, AskIcon icon);

// With the program's name as caption. In a self-test run they only write to the log. At most 2,047 characters are shown.
void ErrorMessage(const wchar_t* format, ...);
void InfoMessage(const wchar_t* format, ...);

// Answers in the user's place while it is set, for tests; null: the user is asked.
extern Answer (*g_answerInstead)(const UserQuestion& question);

// The name of the program as captions show it.
extern const wchar_t kProgramCaption[];

// A self-test run: every question is answered by its own `inSelftest`, and nothing is saved at the end.
extern bool g_selftestTabsMode;
