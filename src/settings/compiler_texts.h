// The long constants of the table of compilers: built-in descriptions, and the places where the start-up search looks.
// Only compilers.h includes this file. Pure.
#pragma once

// A place where the start-up search looks: a folder relative to the executable's, and a file name. The search tries the
// places in the order of their rows.
struct CompilerCandidate {
    const wchar_t* directory;
    const wchar_t* file;
};

namespace compiler_texts {

// The defaults of "Description" in the settings file, of several lines each.
inline constexpr wchar_t kKvxa64Description[] =
    L"KVXA64 Compiler - PowerBASIC x64 dialect\r\n"
    L"Produces 64-bit Windows executables; the program starts in FUNCTION PBMAIN.\r\n"
    L"Data types: BYTE, WORD, INTEGER (16-bit), LONG and DWORD (32-bit), QUAD (64-bit), SINGLE, DOUBLE, "
    L"STRING, WSTRING, ASCIIZ * n, user types with TYPE ... END TYPE.\r\n"
    L"Variables: LOCAL, STATIC, GLOBAL, DIM name(bounds) AS type; parameters are BYREF unless BYVAL is given.\r\n"
    L"Control flow: IF/ELSEIF/ELSE/END IF, SELECT CASE, FOR/NEXT with STEP, DO/LOOP with WHILE or UNTIL, "
    L"WHILE/WEND, EXIT and ITERATE, SUB and FUNCTION with END SUB and END FUNCTION.\r\n"
    L"Comments start with an apostrophe; #INCLUDE \"file\" inserts another source.";
inline constexpr wchar_t kKvxb64Description[] =
    L"KVXB64 Compiler - PowerBASIC x64 alternative backend\r\n"
    L"Produces 64-bit Windows executables; the program starts in FUNCTION PBMAIN.\r\n"
    L"Data types: BYTE, WORD, INTEGER (16-bit), LONG and DWORD (32-bit), QUAD (64-bit), SINGLE, DOUBLE, "
    L"STRING, ASCIIZ * n, user types with TYPE ... END TYPE.\r\n"
    L"Control flow: IF/ELSEIF/ELSE/END IF, SELECT CASE, FOR/NEXT with STEP, DO/LOOP with WHILE or UNTIL, "
    L"WHILE/WEND, EXIT, SUB and FUNCTION.\r\n"
    L"Also takes C sources and headers (.c, .h).";
inline constexpr wchar_t kKvxc64Description[] =
    L"KVXC64 Compiler - PowerBASIC x64 compiler\r\n"
    L"Produces 64-bit Windows executables; the program starts in FUNCTION PBMAIN.";

inline constexpr CompilerCandidate kKvxa64Candidates[] = {
    {L"KVXA64", L"kvxa64.exe"},
    {L"..\\KVXA64\\KVXA64\\build", L"KVXA64.exe"},
    {L"..\\..\\KVXA64\\KVXA64", L"KVXA64.exe"},
    {L"..\\..\\KVXA64\\KVXA64\\build", L"kvxa64.exe"},
    {L"..\\..\\KVXA64\\KVXA64\\Release\\V1", L"kvxa64.exe"},
    {L"..\\KVXA64\\KVXA64", L"KVXA64.exe"},
    {L"..\\KVXA64\\KVXA64\\build", L"kvxa64.exe"},
    {L"..\\KVXA64\\KVXA64\\Release\\V1", L"kvxa64.exe"},
};
inline constexpr CompilerCandidate kKvxb64Candidates[] = {
    {L"KVXB64", L"KVXB64.exe"},
    {L"..\\..\\KVXB64\\KVXB64\\core\\build", L"KVXB64.exe"},
    {L"..\\..\\KVXB64\\KVXB64\\Release\\V1", L"KVXB64.exe"},
    {L"..\\KVXB64\\KVXB64\\core\\build", L"KVXB64.exe"},
    {L"..\\KVXB64\\KVXB64\\Release\\V1", L"KVXB64.exe"},
};
inline constexpr CompilerCandidate kKvxc64Candidates[] = {
    {L"KVXC64", L"KVXC64.exe"},
    {L"..\\..\\KVXC64\\KVXC64\\build", L"KVXC64.exe"},
    {L"..\\..\\KVXC64\\KVXC64\\Release\\V1", L"KVXC64.exe"},
    {L"..\\KVXC64\\KVXC64\\build", L"KVXC64.exe"},
    {L"..\\KVXC64\\KVXC64\\Release\\V1", L"KVXC64.exe"},
};
inline constexpr CompilerCandidate kKvxa32Candidates[] = {
    {L"..\\..\\KVXA32\\testcopy", L"KVXA32.exe"},
    {L"..\\KVXA32\\testcopy", L"KVXA32.exe"},
    {L"..\\..\\KVXA32\\build", L"KVXA32.exe"},
    {L"..\\KVXA32\\build", L"KVXA32.exe"},
    {L"..\\..\\KVXA32\\KVXA32\\build", L"KVXA32.exe"},
    {L"..\\KVXA32\\KVXA32\\build", L"KVXA32.exe"},
    {L"KVXA32", L"KVXA32.exe"},
};
inline constexpr CompilerCandidate kKeldorCandidates[] = {
    {L"KELDORRBASIC", L"KeldorrBASIC.exe"},  // that distribution spells the name with two r
    {L"..\\..\\KeldorBasic\\build", L"KeldorBASIC.exe"},
    {L"..\\KeldorBasic\\build", L"KeldorBASIC.exe"},
    {L"..\\..\\KeldorBasic\\Release", L"KeldorBASIC.exe"},
    {L"..\\KeldorBasic\\Release", L"KeldorBASIC.exe"},
};

}  // namespace compiler_texts
