// The files that a random user opens.
#include "window/torture_driver.h"

#include <filesystem>

namespace torture {

namespace {

struct OddFile {
    const wchar_t* name;
    std::string text;
};

std::string Repeated(const std::string& line, int times) {
    std::string text;
    for (int i = 0; i < times; ++i) text += line;
    return text;
}

const std::vector<OddFile>& OddFiles() {
    static const std::vector<OddFile> files = {
        {L"files\\empty.bas", ""},
        {L"files\\a.bas",
         "FUNCTION PBMAIN() AS LONG\r\n  LOCAL i AS LONG\r\n  FOR i = 1 TO 5\r\n    PRINT i\r\n  NEXT\r\nEND "
         "FUNCTION\r\n"},
        {L"files\\lf.bas", "PRINT 1\nPRINT 2\nPRINT 3\n"},
        {L"files\\cr.bas", "PRINT 1\rPRINT 2\r"},
        {L"files\\ansi.bas", "' caf\xE9\r\nPRINT \"\xFC\"\r\n"},
        {L"files\\bom.bas", "\xEF\xBB\xBF' \xE6\xBC\xA2\r\n"},
        {L"files\\utf16.bas", std::string("\xFF\xFE'\0 \0\xE9\0\r\0\n\0P\0", 14)},
        {L"files\\nul.bas", std::string("a\0b\r\n\0", 6)},
        {L"files\\long.bas", "PRINT \"" + std::string(30000, 'y') + "\"\r\n"},
        {L"files\\large.bas", Repeated("SUB s()\r\n  PRINT \"line\"; 1 + 2\r\nEND SUB\r\n", 4000)},
        {L"files\\part.inc", "SUB Part()\r\nEND SUB\r\n"},
        {L"files\\code.c", "int main(void) {\n  return 0;\n}\n"},
        {L"files\\listing.asm", "main proc\n  ret\nmain endp\n"},
        {L"files\\notes.txt", "PRINT is a word\n"},
        {L"files\\data.json", "{\"a\": [1, 2]}"},
        {L"files\\p.kvxproj", "{}"},
    };
    return files;
}

constexpr const char* kSources[] = {
    "samples/steps.bas",           "samples/hello.bas",        "samples/errors.bas",         "samples/maze.bas",
    "tests/debuggees/threads.bas", "tests/debuggees/loop.bas", "tests/debuggees/endless.bas"};

}  // namespace

void FurnishFiles(const ProgramFolder& folder) {
    for (const OddFile& file : OddFiles()) folder.Write(file.name, file.text);
    for (const char* source : kSources) {
        const auto text = ReadBytes(Wide(std::string(KVX_ROOT_DIR "/") + source));
        EXPECT_TRUE(text) << source;
        // Those in "kept" are never opened.
        for (const wchar_t* place : {L"src\\", L"kept\\"})
            folder.Write(place + std::filesystem::path(source).filename().wstring(), text.value_or(""));
    }
}

void WriteIfFree(const std::wstring& path, std::string_view text) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    DWORD put = 0;
    WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &put, nullptr);
    CloseHandle(file);
}

std::vector<std::wstring> FileNames() {
    std::vector<std::wstring> names;
    for (const OddFile& file : OddFiles()) names.emplace_back(file.name);
    for (const char* source : kSources) names.push_back(L"src\\" + std::filesystem::path(source).filename().wstring());
    return names;
}

}  // namespace torture
