// Compares the fast UTF-8 check with a decoder written from the definition: code points, then ranges and shortest
// forms.
#include "files/text_encoding.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

bool DecodesByDefinition(const std::uint8_t* bytes, std::size_t length) {
    for (std::size_t i = 0; i < length;) {
        unsigned ones = 0;  // leading one bits of the first byte
        while (ones < 8 && ((bytes[i] << ones) & 0x80) != 0) ++ones;
        const std::size_t size = ones == 0 ? 1 : ones;
        if (ones == 1 || size > 4 || size > length - i) return false;
        std::uint32_t code = ones == 0 ? bytes[i] : bytes[i] & (0x7FU >> ones);
        for (std::size_t k = 1; k < size; ++k) {
            if (bytes[i + k] / 64 != 2) return false;
            code = code * 64 + bytes[i + k] % 64;
        }
        const std::size_t shortest = code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
        if (shortest != size || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return false;
        i += size;
    }
    return true;
}

void Check(const std::vector<std::uint8_t>& text) {
    if (IsValidUtf8Bytes(reinterpret_cast<const char*>(text.data()), text.size()) !=
        DecodesByDefinition(text.data(), text.size()))
        std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::uint8_t> input(data, data + size);
    Check(input);
    // Repeats the check after some ASCII, so that the long strides end at every place.
    std::vector<std::uint8_t> shifted(size % 40, 'a');
    shifted.insert(shifted.end(), input.begin(), input.end());
    Check(shifted);
    return 0;
}
