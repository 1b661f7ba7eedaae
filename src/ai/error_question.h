// What the assistant is asked about a diagnostic: the lines around it and the text of the request. Byte texts are UTF-8.
// Pure; any thread.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

inline constexpr int kErrorSurroundings = 20;                // lines on each side
inline constexpr std::size_t kErrorSurroundingsMax = 16000;  // bytes of source

// Lines from 0; `end` is not among them.
struct LinesToSend {
    int first = 0;
    int end = 0;
};
// The lines around `line` that are sent, nearest first until there are enough. Empty when the document has no such
// line and when that line alone has too many bytes. `lengthOf` gives the bytes of a line with its line end.
LinesToSend LinesAroundError(int line, int lineCount, const std::function<std::size_t(int line)>& lengthOf);

struct AskedError {
    std::string compiler;
    std::string file;  // without its folder, which is nobody's business
    int line = 0;      // from 1
    std::string message;
    bool warning = false;
};
// "x.bas(3): error: message".
std::string AskedErrorLine(const AskedError& error);
// Asks for an explanation. The source, which starts at `firstLine` (from 1), is sent with numbers; empty: without it.
std::string ExplainQuestion(const AskedError& error, std::string_view source, int firstLine);
// Asks for the same lines without the error. They are sent without numbers, because the reply takes their place.
std::string FixQuestion(const AskedError& error, std::string_view source, int firstLine);
