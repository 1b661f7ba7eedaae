#include "files/start_path.h"

static std::wstring LongText(const wchar_t* what, const std::wstring& path) {
    return what + (L" of more than " + std::to_wstring(kLongestStartPath)) + L" characters: " + path;
}

bool ProgramCanBeStarted(const std::wstring& program) { return program.size() <= kLongestStartPath; }

std::wstring LongFolderText(const std::wstring& folder) {
    return LongText(L"Nothing can be run in a folder with a path", folder);
}

std::wstring LongProgramText(const std::wstring& program) {
    return LongText(L"The system starts no program with a path", program);
}

std::wstring ProgramCommandLine(const std::wstring& program, const std::wstring& arguments) {
    return L'"' + program + (arguments.empty() ? L"\"" : L"\" " + arguments);
}
