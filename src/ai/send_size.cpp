#include "ai/send_size.h"

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
    const std::wstring what = size.whole ? size.document + L" is about to be sent as a whole to " + size.host + L": "
                                         : GroupedNumber(size.source) + L" bytes of " + size.document +
                                               L" are about to be sent to " + size.host + L". The message has ";
    return what + GroupedNumber(size.message) + L" bytes with the instructions, about " +
           GroupedNumber(Rounded((size.message + kBytesOfToken - 1) / kBytesOfToken)) +
           L" tokens.\n\nUntil the program ends you are asked only once for this server.";
}
