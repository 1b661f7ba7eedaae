#include "ai/send_size.h"

#include "base/texts.h"

namespace {

constexpr std::size_t kBytesOfToken = 4;  // of source text, about

std::size_t Rounded(std::size_t number) { return number < 1000 ? number : (number + 50) / 100 * 100; }

}  // namespace

bool IsSizeTold(const SendSize& size) { return size.whole || size.source > kLargePart; }

std::wstring GroupedNumber(std::size_t number) {
    std::wstring text = std::to_wstring(number);
    for (std::size_t at = text.size(); at > 3;) text.insert(at -= 3, 1, L',');
    return text;
}

std::wstring SizeQuestion(const SendSize& size) {
    const std::wstring message = GroupedNumber(size.message);
    const std::wstring tokens = GroupedNumber(Rounded((size.message + kBytesOfToken - 1) / kBytesOfToken));
    if (size.whole)
        return TextWith(
            L"{1} is about to be sent as a whole to {2}: {3} bytes with the instructions, about {4} "
            L"tokens.\n\nUntil the program ends you are asked only once for this server.",
            {size.document, size.host, message, tokens});
    return TextWith(
        L"{1} bytes of {2} are about to be sent to {3}. The message has {4} bytes with the instructions, "
        L"about {5} tokens.\n\nUntil the program ends you are asked only once for this server.",
        {GroupedNumber(size.source), size.document, size.host, message, tokens});
}
