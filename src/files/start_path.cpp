#include "files/start_path.h"

#include "base/texts.h"

bool ProgramCanBeStarted(const std::wstring& program) { return program.size() <= kLongestStartPath; }

std::wstring LongFolderText(const std::wstring& folder) {
    return TextWith(L"Nothing can be run in a folder with a path of more than {1} characters: {2}",
                    {std::to_wstring(kLongestStartPath), folder});
}

std::wstring LongProgramText(const std::wstring& program) {
    return TextWith(L"The system starts no program with a path of more than {1} characters: {2}",
                    {std::to_wstring(kLongestStartPath), program});
}

std::wstring ProgramCommandLine(const std::wstring& program, const std::wstring& arguments) {
    return L'"' + program + (arguments.empty() ? L"\"" : L"\" " + arguments);
}
