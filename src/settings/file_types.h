// Source extensions in the shell, for the current user only: everything is written below HKEY_CURRENT_USER. UI thread
// only. No failure is reported: without the registration the editor works as before.
#pragma once

#include <cstdint>

// The start-up registration, as far as the settings ask for it: the editor joins each extension's "Open with" list
// without becoming its default program. Running it again changes nothing.
void RegisterFileExtensions();

// Makes the editor the default program of an extension (without its dot). 1 when all four keys were written.
int RegisterFileExt(const wchar_t* extension, const wchar_t* description, const wchar_t* iconFile);
void UnregisterFileExt(const wchar_t* extension);

// The same by compiler. Registering returns 0 for an unknown id; unregistering one does nothing.
int FileExtRegisterCompiler(std::uint32_t id);
void FileExtUnregisterCompiler(std::uint32_t id);

// Tells the shell that associations changed.
void FileExtNotifyShell();
