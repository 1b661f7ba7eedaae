// Registers source extensions in the shell for the current user: everything is written below HKEY_CURRENT_USER. UI
// thread only. Start-up reports no failure, because the editor works without the registration.
#pragma once

#include <cstdint>
#include <string>

// The start-up registration of the compilers whose setting RegisterExtension is on. The editor joins the "Open with"
// list of their extensions, but does not become the default program. Running it again changes nothing.
void RegisterFileExtensions();
// Takes that registration of a compiler back. The keys of its extensions stay, because other programs use them, too.
void UnregisterFileExtensions(std::uint32_t id);

// Makes the editor the default program of an extension, which is given without its dot. Returns 1 when all four keys
// were written, otherwise 0.
int RegisterFileExt(const wchar_t* extension, const wchar_t* description, const wchar_t* iconFile);
void UnregisterFileExt(const wchar_t* extension);

// The same for a compiler's own file type. Registering returns 0 for an unknown id; unregistering does nothing then.
int FileExtRegisterCompiler(std::uint32_t id);
void FileExtUnregisterCompiler(std::uint32_t id);
// Whether this executable is the default program of the compiler's own file type.
bool FileExtIsRegistered(std::uint32_t id);
// The class that the shell takes for that type at the moment; empty: none.
std::wstring FileExtClass(std::uint32_t id);

// Tells the shell that associations have changed.
void FileExtNotifyShell();
