// What the tests of builds share: a folder with the obedient compiler, builds to their end, the terminal line.
#pragma once

#include "harness.h"

#include "resources/ids.h"

inline std::wstring Quoted(const std::wstring& path) { return L"\"" + path + L"\""; }

// A folder in which compiler 0 is the obedient one.
struct FakeFolder : ProgramFolder {
    explicit FakeFolder(std::string_view script) {
        FakeCompiler(script);
        KeepNoSession();
    }
    void Script(std::string_view text) const { Write(L"KVXA64\\fake.txt", text); }
};

inline bool Busy(const Editor& editor) { return editor.Status().ends_with(L"..."); }

// Starts a build command and waits for its end; the pane's text.
inline std::wstring Build(const Editor& editor, int command = IDM_BUILD) {
    editor.Do(command);
    EXPECT_TRUE(WaitFor([&] { return !Busy(editor); }, kBuildDeadline)) << "the build does not end\n"
                                                                        << editor.Describe();
    editor.Send(editor.main, WM_NULL);
    return editor.Output();
}

inline void TypeInTerminal(const Editor& editor, const std::wstring& text) {
    const HWND terminal = editor.Child(IDC_TERMINAL);
    editor.Send(terminal, EM_SETSEL, 0, -1);
    for (const wchar_t character : text) editor.Send(terminal, WM_CHAR, character);
    editor.Send(terminal, WM_KEYDOWN, VK_RETURN);
}

inline const std::string kHello = "FUNCTION PBMAIN() AS LONG\r\n  PRINT \"hello\"\r\nEND FUNCTION\r\n";
