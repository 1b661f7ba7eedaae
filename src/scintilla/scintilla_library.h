// Scintilla.dll and Lexilla.dll, which are loaded at run time. UI thread only.
#pragma once

#include <windows.h>

namespace Scintilla {
class ILexer5;
}

using CreateLexerFunction = Scintilla::ILexer5*(__stdcall*)(const char* name);

struct ScintillaLibrary {
    HMODULE scintilla = nullptr;
    HMODULE lexilla = nullptr;                  // null: documents are shown as plain text
    CreateLexerFunction createLexer = nullptr;  // "CreateLexer" of Lexilla; null without Lexilla
};

// Loads Scintilla.dll, which registers its window class, and Lexilla.dll. Their handles go to `g_scintilla` and to the
// out parameters, which may be null. `third` is always set to null. Returns 1, or 0 after it has shown "Could not load
// Scintilla.dll". A missing Lexilla is not an error.
int ScintillaLoad(HMODULE* scintilla, HMODULE* lexilla, HMODULE* third);

// Creates a lexer by its name. Returns null for an unknown name and without Lexilla. Scintilla takes ownership with
// SCI_SETILEXER.
Scintilla::ILexer5* ScintillaCreateLexer(const char* name);

// Frees Lexilla, then Scintilla. Either may be null.
void ScintillaUnload(HMODULE scintilla, HMODULE lexilla);

struct ScintillaState {
    ScintillaLibrary scintilla;  // loaded for the whole run
};
// A part of `g_app` (app/app_state.h).
extern ScintillaLibrary& g_scintilla;
