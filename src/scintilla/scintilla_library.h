// The two editing libraries, loaded at run time. UI thread.
#pragma once

#include <windows.h>

namespace Scintilla {
class ILexer5;
}

using CreateLexerFunction = Scintilla::ILexer5*(__stdcall*)(const char* name);

struct ScintillaLibrary {
    HMODULE scintilla = nullptr;
    HMODULE lexilla = nullptr;                  // empty: documents show as plain text
    CreateLexerFunction createLexer = nullptr;  // "CreateLexer" of Lexilla, empty without it
};

// Loads Scintilla.dll (registering its window class) and Lexilla.dll into `g_scintilla`'s fields and the out
// parameters. `third` is always set to null. Returns 1, or 0 after showing "Could not load Scintilla.dll".
// A missing Lexilla is no error.
int ScintillaLoad(HMODULE* scintilla, HMODULE* lexilla, HMODULE* third);

// A lexer object by its name, or null without Lexilla. Scintilla takes ownership with SCI_SETILEXER.
Scintilla::ILexer5* ScintillaCreateLexer(const char* name);

// Frees Lexilla, then Scintilla, each only if loaded.
void ScintillaUnload(HMODULE scintilla, HMODULE lexilla);

struct ScintillaState {
    ScintillaLibrary scintilla;  // loaded for the whole run
};
// A part of `g_app` (app/app_state.h).
extern ScintillaLibrary& g_scintilla;
