#include "output/error_columns.h"

#include "base/texts.h"

std::wstring ErrorCellText(const CompilerError& error, int column) {
    switch (column) {
        case 0: return error.severity == 0 ? Text(L"Error") : Text(L"Warning");
        case 1: return error.message;
        case 2: return error.file;
        case 3: return std::to_wstring(error.line);
        case 4: return error.column >= 1 ? std::to_wstring(error.column) : std::wstring();
        default: return {};
    }
}
