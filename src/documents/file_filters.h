// The source file types that the dialogs offer and the project tree shows, and what the dialogs are given. Pure.
#pragma once

#include <array>
#include <string>
#include <string_view>

struct FileTypeFilter {
    std::wstring_view description;
    std::wstring_view pattern;
};

inline constexpr FileTypeFilter kFileFilters[] = {
    {L"All Source Files (*.bas;*.pb;*.pbi;*.inc;*.kb;*.ka32;*.kxa;*.kxb;*.b64;*.c;*.h;*.asm;*.s)",
     L"*.bas;*.pb;*.pbi;*.inc;*.kb;*.ka32;*.kxa;*.kxb;*.b64;*.c;*.h;*.asm;*.s"},
    {L"KeldorBasic (*.bas;*.pb;*.pbi;*.inc;*.kb)", L"*.bas;*.pb;*.pbi;*.inc;*.kb"},
    {L"KVXA32 (*.bas;*.ka32)", L"*.bas;*.ka32"},
    {L"KVXA64 (*.bas;*.pb;*.kxa)", L"*.bas;*.pb;*.kxa"},
    {L"KVXB64 (*.kxb;*.b64)", L"*.kxb;*.b64"},
    {L"C/C++ (*.c;*.h)", L"*.c;*.h"},
    {L"Assembly (*.asm;*.s)", L"*.asm;*.s"},
    {L"All Files (*.*)", L"*.*"},
};

// True when the name ends in one of the extensions of the "all source files" row, without regard to case.
bool IsSourceFileName(std::wstring_view name);

// The table in the dialogs' own form: texts separated and ended by NULs.
std::wstring FileDialogFilter();

// The names to suggest, one after the other while the dialog refuses them as odd or too long: the path, the file's name
// alone, nothing.
std::array<std::wstring, 3> FileDialogNames(const std::wstring& path);
