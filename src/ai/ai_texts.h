// The texts that the assistant sends, the code in what it answers, and the trimming of addresses. Byte texts are UTF-8.
// Pure; any thread.
#pragma once

#include "ai/prompt_settings.h"

#include <string>
#include <string_view>

// --- What is sent
inline constexpr char kBasePrompt[] = "You are a helpful coding assistant.";
// The base prompt and, when the compiler has a description, that. An index beyond the compilers counts as 0.
std::string SystemPromptText(const AiPromptSettings& settings);

// Of an AI Do request: the description followed by the instruction to return code only. Empty without a description.
std::string AiDoSystemPrompt(std::string_view description);
inline constexpr char kAiDoPrompt[] = "You are a coding assistant. Return ONLY code.";  // without a description
// An empty `error` leaves its block out.
std::string AiDoMessage(std::string_view instruction, std::string_view error, std::string_view code);

// --- What comes back
// The first fenced block of a reply, else the whole reply, without white space around it: a new block that the caller
// frees with free(). Null for a null reply, for one of white space only, and when memory runs out.
char* AiApiExtractCode(const char* reply);
// The code as it stands in place of `sent`: extracting cut its last line breaks, without which the line after it would
// be joined to it, and blank lines before that would be gone.
std::string CodeInPlaceOf(std::string_view sent, std::string_view code);
// The code without the numbers of its lines, when each line begins with its number (from `firstLine` on) and a colon or a
// bar, and `sent` did not. A `firstLine` of 0: the code as it is.
std::string WithoutLineNumbers(std::string_view code, std::string_view sent, int firstLine);
// Where code is to be inserted, in place of a selection or at a caret.
struct PlaceOfCode {
    bool atLineStart = false;      // it begins at the start of a line
    bool endsAtLineStart = false;  // and ends at one
    bool restIsEmpty = false;      // nothing stands behind it in its line
};
// The code with a line break at its end where the next line would be joined to it.
std::string CodeAtPlace(std::string_view code, const PlaceOfCode& place);
// The same text with all its line ends as `lineEnd`.
std::string WithLineEnds(std::string_view text, std::string_view lineEnd);

// --- Addresses
// Cuts the address in place at "/chat/completions" and then drops one slash from its end. Null and empty stay.
void StripChatEndpoint(wchar_t* url);
// The name or address of the server with its port, if the URL tells one; without a user's name. Empty: none was found.
std::wstring HostOfUrl(std::wstring_view url);
