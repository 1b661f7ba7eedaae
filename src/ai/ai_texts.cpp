#include "ai/ai_texts.h"

#include "ai/code_fence.h"
#include "base/heap_text.h"
#include "base/line_diff.h"
#include "base/utf8.h"
#include "settings/compilers.h"

#include <algorithm>
#include <cwchar>
#include <optional>

namespace {

constexpr std::string_view kWhite = "\n\r \t";

std::string_view TrimmedEnd(std::string_view text) { return text.substr(0, text.find_last_not_of(kWhite) + 1); }

std::string_view TrimmedText(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kWhite);
    return first == std::string_view::npos ? std::string_view() : TrimmedEnd(text.substr(first));
}

// The text inside the first pair of fences; the whole text without a pair.
std::string_view CodeIn(std::string_view reply) {
    const std::optional<CodeFence> fence = NextCodeFence(reply);
    if (!fence || fence->close == std::string_view::npos) return TrimmedText(reply);
    return reply.substr(fence->start, fence->end - fence->start);
}

// What follows the number, a colon or a bar and one space at the start of the line; nothing when it starts otherwise.
std::optional<std::string_view> AfterNumber(std::string_view line, int number) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t>"), line.size()));
    const std::string digits = std::to_string(number);
    if (!line.starts_with(digits)) return {};
    line.remove_prefix(digits.size());
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    if (!line.starts_with(':') && !line.starts_with('|')) return {};
    line.remove_prefix(1);
    if (line.starts_with(' ')) line.remove_prefix(1);
    return line;
}

}  // namespace

std::string SystemPromptText(const AiPromptSettings& settings) {
    if (settings.description.empty()) return kBasePrompt;
    const std::uint32_t compiler = settings.compiler < kCompilerCount ? settings.compiler : 0;
    return std::string(kBasePrompt) + "\n\nYou are assisting with the " + ToUtf8(g_compilers[compiler].name) +
           " compiler.\nHere is the detailed syntax description for this compiler:\n" + ToUtf8(settings.description);
}

std::string AiDoSystemPrompt(std::string_view description) {
    if (description.empty()) return {};
    return std::string(description) +
           "\n\nYou are a coding assistant. Modify the provided code according to the user's instruction. Return ONLY "
           "the modified code. No explanations, no markdown fences.";
}

std::string AiDoMessage(std::string_view instruction, std::string_view error, std::string_view code) {
    std::string message = std::string("Instruction: ").append(instruction).append("\n\n");
    if (!error.empty()) message.append("Last compiler error for the selected compiler:\n").append(error).append("\n\n");
    return message.append("Code:\n").append(code);
}

char* AiApiExtractCode(const char* reply) {
    if (reply == nullptr) return nullptr;
    const std::string code(CodeIn(reply));
    return TrimmedText(reply).empty() ? nullptr : HeapText(code.c_str());
}

std::string CodeInPlaceOf(std::string_view sent, std::string_view code) {
    const std::string_view white = sent.substr(TrimmedEnd(sent).size());
    const std::size_t lineEnd = white.find_first_of("\r\n");
    return std::string(TrimmedEnd(code))
        .append(lineEnd == std::string_view::npos ? std::string_view() : white.substr(lineEnd));
}

std::string WithoutLineNumbers(std::string_view code, std::string_view sent, int firstLine) {
    std::string whole(code);
    if (firstLine <= 0 || AfterNumber(LinesOf(sent)[0], firstLine).has_value()) return whole;
    std::string text;
    int number = firstLine;
    for (const std::string_view line : LinesOf(code)) {
        const auto rest = AfterNumber(line, number);
        if (!rest.has_value()) return whole;
        text.append(number++ > firstLine ? "\n" : "").append(*rest);
    }
    return text;
}

std::string CodeAtPlace(std::string_view code, const PlaceOfCode& place) {
    return std::string(code) + (place.atLineStart && place.endsAtLineStart && !place.restIsEmpty ? "\n" : "");
}

std::string WithLineEnds(std::string_view text, std::string_view lineEnd) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool pair = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
        if (text[i] != '\r' && text[i] != '\n')
            out += text[i];
        else
            out += lineEnd;
        if (pair) ++i;
    }
    return out;
}

void StripChatEndpoint(wchar_t* url) {
    if (url == nullptr) return;
    if (wchar_t* path = std::wcsstr(url, L"/chat/completions"); path != nullptr) *path = L'\0';
    const std::size_t length = std::wcslen(url);
    if (length > 0 && url[length - 1] == L'/') url[length - 1] = L'\0';
}

std::wstring HostOfUrl(std::wstring_view url) {
    const std::size_t scheme = url.find(L"://");
    if (scheme == std::wstring_view::npos) return {};
    std::wstring_view host = url.substr(scheme + 3);
    host = host.substr(0, host.find_first_of(L"/?#"));
    const std::size_t user = host.rfind(L'@');
    return std::wstring(user == std::wstring_view::npos ? host : host.substr(user + 1));
}
