// The built-in descriptions of the compilers: shown in the settings dialog, and given to the assistant so that it
// writes code that the chosen compiler accepts. Pure.
#include "settings/settings_schema.h"

const wchar_t* DefaultCompilerDescription(std::uint32_t id) {
    switch (id) {
        case kCompilerKvxa64:
            return L"KVXA64 Compiler - PowerBASIC x64 dialect\r\n"
                   L"Produces 64-bit Windows executables; the program starts in FUNCTION PBMAIN.\r\n"
                   L"Data types: BYTE, WORD, INTEGER (16-bit), LONG and DWORD (32-bit), QUAD (64-bit), SINGLE, DOUBLE, "
                   L"STRING, WSTRING, ASCIIZ * n, user types with TYPE ... END TYPE.\r\n"
                   L"Variables: LOCAL, STATIC, GLOBAL, DIM name(bounds) AS type; parameters are BYREF unless BYVAL is "
                   L"given.\r\n"
                   L"Control flow: IF/ELSEIF/ELSE/END IF, SELECT CASE, FOR/NEXT with STEP, DO/LOOP with WHILE or "
                   L"UNTIL, "
                   L"WHILE/WEND, EXIT and ITERATE, SUB and FUNCTION with END SUB and END FUNCTION.\r\n"
                   L"Comments start with an apostrophe; #INCLUDE \"file\" inserts another source.";
        case kCompilerKvxb64:
            return L"KVXB64 Compiler - PowerBASIC x64 alternative backend\r\n"
                   L"Produces 64-bit Windows executables; the program starts in FUNCTION PBMAIN.\r\n"
                   L"Data types: BYTE, WORD, INTEGER (16-bit), LONG and DWORD (32-bit), QUAD (64-bit), SINGLE, DOUBLE, "
                   L"STRING, ASCIIZ * n, user types with TYPE ... END TYPE.\r\n"
                   L"Control flow: IF/ELSEIF/ELSE/END IF, SELECT CASE, FOR/NEXT with STEP, DO/LOOP with WHILE or "
                   L"UNTIL, "
                   L"WHILE/WEND, EXIT, SUB and FUNCTION.\r\n"
                   L"Also takes C sources and headers (.c, .h).";
        case kCompilerKvxc64:
            return L"KVXC64 Compiler - PowerBASIC x64 compiler\r\n"
                   L"Produces 64-bit Windows executables; the program starts in FUNCTION PBMAIN.";
        default: return L"";
    }
}
