// Loads Scintilla and its lexers, which are DLLs beside the executable. UI thread only.
#include "scintilla/scintilla_library.h"

#include "files/libraries.h"
#include "ui/message.h"
#include "ui/ui_state.h"

namespace {

using RegisterClassesFunction = int(__stdcall*)(void* instance);

template <typename Function>
Function FindExport(HMODULE library, const char* name) {
    // The cast through void* avoids a warning about function types.
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

}  // namespace

int ScintillaLoad(HMODULE* scintilla, HMODULE* lexilla, HMODULE* third) {
    if (third != nullptr) *third = nullptr;
    if (lexilla != nullptr) *lexilla = nullptr;
    if (scintilla != nullptr) *scintilla = nullptr;
    ScintillaLibrary& libraries = g_scintilla;
    libraries = {};

    libraries.scintilla = LoadProgramLibrary(L"Scintilla.dll");
    if (libraries.scintilla == nullptr) {
        TellUser(L"Error", L"Could not load Scintilla.dll", AskIcon::Error);
        return 0;
    }
    // A Scintilla that registers its classes while it is loaded may not have this export, and does not need the call.
    if (const auto registerClasses =
            FindExport<RegisterClassesFunction>(libraries.scintilla, "Scintilla_RegisterClasses"))
        registerClasses(g_ui.hInstance);

    libraries.lexilla = LoadProgramLibrary(L"Lexilla.dll");
    if (libraries.lexilla != nullptr) {
        libraries.createLexer = FindExport<CreateLexerFunction>(libraries.lexilla, "CreateLexer");
        if (libraries.createLexer == nullptr) {
            FreeLibrary(libraries.lexilla);
            libraries.lexilla = nullptr;
        }
    }

    if (scintilla != nullptr) *scintilla = libraries.scintilla;
    if (lexilla != nullptr) *lexilla = libraries.lexilla;
    return 1;
}

Scintilla::ILexer5* ScintillaCreateLexer(const char* name) {
    if (g_scintilla.createLexer == nullptr || name == nullptr) return nullptr;
    return g_scintilla.createLexer(name);
}

void ScintillaUnload(HMODULE scintilla, HMODULE lexilla) {
    g_scintilla.createLexer = nullptr;
    if (lexilla != nullptr) FreeLibrary(lexilla);
    if (scintilla != nullptr) FreeLibrary(scintilla);
    g_scintilla = {};
}
