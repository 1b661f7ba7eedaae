// Whether the user is told the size of what is about to be sent, and how. Pure.
#pragma once

#include <cstddef>
#include <string>

// A part of a document that is larger than this is told about as a whole document is, whatever its size.
inline constexpr std::size_t kLargePart = 20000;  // bytes

struct SendSize {
    std::wstring document;  // its name
    bool whole = false;
    std::size_t source = 0;   // bytes of the document
    std::size_t message = 0;  // bytes of the whole message, with instructions and prompt
    std::wstring host;        // with its port
};
bool IsSizeTold(const SendSize& size);
// "hello.bas is about to be sent as a whole to 127.0.0.1:1234: 12,345 bytes with the instructions, about 3,100 tokens."
std::wstring SizeQuestion(const SendSize& size);
// With commas between groups of three digits.
std::wstring GroupedNumber(std::size_t number);
