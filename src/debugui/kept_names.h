// The names of places in their file, and the procedures of the sources that a program is debugged from. UI thread only.
#pragma once

#include "base/events.h"
#include "debugui/place_names.h"

#include <cstdint>
#include <span>
#include <string>

// The names of a procedure. Read from the file at the first call. The reference is valid until a name changes.
const NamedPlaces& NamesOfProcedure(const std::wstring& file, const std::string& procedure);
const PlaceNames& AllPlaceNames();
// Replaces the names of a procedure, here and in the file. What other copies of the program have changed of other
// procedures stays. Returns why the file could not be written, else an empty text; the names hold for this run anyway.
std::wstring KeepNames(const std::wstring& file, const std::string& procedure, NamedPlaces names);
// Reads the file anew: another copy may have changed it.
void NamesReadAgain();
// A file, or a folder with files, has got another name.
void NamesFollowRename(const std::wstring& from, const std::wstring& to);
void NamesFollowCopy(const std::wstring& from, const std::wstring& to);  // a file was saved under another name
// A symbol has got another name in a document. `procedureLine`: a line (from 1) of the only procedure that knows it; 0:
// others may know it, too.
void NamesFollowSymbol(DocumentId document, const std::string& before, const std::string& after,
                       std::uint32_t procedureLine);
// Counts the changes, so that who remembers names knows when they are out of date.
unsigned NamesSerial();

// The procedures of the text that the document has now. Empty for a large document.
std::vector<SourceProcedure> ProceduresOfDocument(DocumentId document);

// The names of the procedure around a line (from 1) of that text.
NamedPlaces NamesAtLine(DocumentId document, int line);

// A place in the sources of the debugged program.
struct SourceScope {
    std::wstring file;
    const SourceProcedure* procedure = nullptr;  // null: outside procedures
    std::span<const SourceProcedure> all;        // of the file
    std::string Name() const { return procedure != nullptr ? procedure->name : std::string(); }
};
// The procedure of a line (from 1) of a file of the line map. The procedures are those that the text had when this was
// first asked in the session, because the program knows no later edits.
SourceScope ScopeOfLine(std::uint32_t fileId, std::uint32_t line);
void ScopesForget();  // a session begins or ends

// For DebugSetNamesHook.
struct DebuggerState;
std::span<const NamedPlace> NamesAtStop(const DebuggerState& state);
