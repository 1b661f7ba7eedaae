#include "ai/error_question.h"

#include "ai/ai_texts.h"

#include <algorithm>
#include <vector>

namespace {

std::vector<std::string> SourceLines(std::string_view source) {
    const std::string text = WithLineEnds(source, "\n");
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return lines;
}

std::string AboutError(const AskedError& error, std::string_view wish) {
    return std::string(wish) + (error.warning ? " this warning" : " this error") + " of the " + error.compiler +
           " compiler";
}

}  // namespace

LinesToSend LinesAroundError(int line, int lineCount, const std::function<std::size_t(int line)>& lengthOf) {
    if (line < 0 || line >= lineCount) return {};
    std::size_t bytes = lengthOf(line);
    if (bytes > kErrorSurroundingsMax) return {};
    LinesToSend range = {line, line + 1};
    const auto fits = [&](int next) {
        const std::size_t length = lengthOf(next);
        if (bytes + length > kErrorSurroundingsMax) return false;
        bytes += length;
        return true;
    };
    bool up = true, down = true;
    for (int i = 1; i <= kErrorSurroundings; ++i) {
        up = up && line - i >= 0 && fits(line - i);
        if (up) range.first = line - i;
        down = down && line + i < lineCount && fits(line + i);
        if (down) range.end = line + i + 1;
    }
    return range;
}

std::string AskedErrorLine(const AskedError& error) {
    return error.file + "(" + std::to_string(error.line) + "): " + (error.warning ? "warning: " : "error: ") +
           error.message;
}

std::string ExplainQuestion(const AskedError& error, std::string_view source, int firstLine) {
    std::string text = AboutError(error, "Explain") + ", and say how to correct it:\n" + AskedErrorLine(error) + "\n";
    if (source.empty()) return text;
    text += "\nThe source around it (> marks the line):\n";
    int number = firstLine;
    for (const std::string& line : SourceLines(source)) {
        text += (number == error.line ? "> " : "  ") + std::to_string(number) + ": " + line + "\n";
        ++number;
    }
    return text;
}

std::string FixQuestion(const AskedError& error, std::string_view source, int firstLine) {
    const std::vector<std::string> lines = SourceLines(source);
    const int at = error.line - firstLine;
    const std::string last = std::to_string(firstLine + static_cast<int>(lines.size()) - 1);
    std::string text = AboutError(error, "Correct") + ":\n" + AskedErrorLine(error) + "\n\n";
    if (at >= 0 && at < static_cast<int>(lines.size()))
        text += "Line " + std::to_string(error.line) + " is:\n" + lines[static_cast<std::size_t>(at)] + "\n\n";
    text += "The code below is lines " + std::to_string(firstLine) + " to " + last +
            " of the file. Return ONLY these lines with the error corrected, all of them, in one fenced code block. No "
            "explanations, no line numbers.\n\nCode:\n";
    return text.append(source);
}
