#include "commands/status_fields.h"

#include "base/texts.h"
#include "resources/ids.h"

#include <iterator>

namespace {

constexpr int kProgressCommands[] = {IDM_BUILD_STOP, IDM_FILES_STOP};  // StatusProgressStop chooses
constexpr int kPositionCommands[] = {IDM_EDIT_GOTO};
constexpr int kEncodingCommands[] = {IDM_ENCODE_UTF8, IDM_ENCODE_ANSI, IDM_ENCODE_UTF16_LE, IDM_ENCODE_UTF16_BE, 0,
                                     IDM_REOPEN_UTF8, IDM_REOPEN_ANSI, IDM_REOPEN_UTF16_LE, IDM_REOPEN_UTF16_BE};
constexpr int kEndingCommands[] = {IDM_ENDING_CRLF, IDM_ENDING_LF, IDM_ENDING_CR};
// The menu of the toolbar's button, which is made from the table of compilers.
constexpr int kCompilerCommands[] = {IDM_COMPILER_MENU};
constexpr int kProjectCommands[] = {IDM_PROJECT_EDIT, IDM_PROJECT_SET_MAIN, 0, IDM_PROJECT_CLOSE};
constexpr int kTabCommands[] = {IDM_TAB_WIDTH_2,     IDM_TAB_WIDTH_3,       IDM_TAB_WIDTH_4, IDM_TAB_WIDTH_8, 0,
                                IDM_TAB_INSERTS_TAB, IDM_TAB_INSERTS_BLANKS};
constexpr int kZoomCommands[] = {IDM_VIEW_ZOOM_IN, IDM_VIEW_ZOOM_OUT, 0, IDM_VIEW_ZOOM_RESET};

constexpr StatusField kFields[] = {
    {.name = English(L"Message"), .canBeHidden = false},
    {.name = English(L"Progress"), .commands = kProgressCommands},
    {.name = English(L"Position"), .tip = English(L"Go to a line"), .commands = kPositionCommands},
    {.name = English(L"Selection and length")},
    {.name = English(L"Encoding"), .tip = English(L"Change the encoding"), .commands = kEncodingCommands},
    {.name = English(L"Line ending"), .tip = English(L"Change the line ending"), .commands = kEndingCommands},
    {.name = English(L"Compiler"), .tip = English(L"Choose compiler and build profile"), .commands = kCompilerCommands},
    {.name = English(L"Project"), .tip = English(L"The open project"), .commands = kProjectCommands},
    {.name = English(L"Tab width"), .tip = English(L"Change the tab width"), .commands = kTabCommands},
    {.name = English(L"Zoom"), .tip = English(L"Change the zoom"), .commands = kZoomCommands},
};
static_assert(std::size(kFields) == kStatusPartCount);

std::int32_t BitOf(StatusPart part) { return std::int32_t{1} << part; }

bool IsShown(const StatusWidths& ends, int part) {
    const auto index = static_cast<std::size_t>(part);
    return ends[index] > (index == 0 ? 0 : ends[index - 1]);
}

}  // namespace

const StatusField& StatusFieldOf(StatusPart part) { return kFields[part]; }

bool StatusFieldReacts(StatusPart part) { return !kFields[part].commands.empty(); }

ProgressStop StatusProgressStop(bool builds, bool searches) {
    if (builds) return {.command = IDM_BUILD_STOP, .tip = English(L"Stop the build")};
    if (searches) return {.command = IDM_FILES_STOP, .tip = English(L"Stop the search in files")};
    return {};
}

bool StatusFieldIsHidden(std::int32_t hidden, StatusPart part) {
    return kFields[part].canBeHidden && (hidden & BitOf(part)) != 0;
}

std::int32_t StatusFieldToggled(std::int32_t hidden, StatusPart part) { return hidden ^ BitOf(part); }

StatusPart StatusPartAt(const StatusWidths& ends, int x) {
    for (int part = 0; part + 1 < kStatusPartCount; ++part)
        if (x < ends[static_cast<std::size_t>(part)]) return static_cast<StatusPart>(part);
    // What is right of the last field that has a width belongs to it.
    int last = kStatusPartCount - 1;
    while (last > 0 && !IsShown(ends, last)) --last;
    return static_cast<StatusPart>(last);
}

StatusPart StatusPartBeside(const StatusWidths& ends, StatusPart from, bool next) {
    for (int part = from + (next ? 1 : -1); part >= 0 && part < kStatusPartCount; part += next ? 1 : -1)
        if (StatusFieldReacts(static_cast<StatusPart>(part)) && IsShown(ends, part))
            return static_cast<StatusPart>(part);
    return from;
}
