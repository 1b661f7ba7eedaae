// Compares the normalising of line breaks with a byte-by-byte walk, and checks what holds for any result.
#include "files/text_encoding.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace {

struct Free {
    void operator()(char* block) const { std::free(block); }
};

void Require(bool holds) {
    if (!holds) std::abort();
}

std::string Normalize(const std::string& text, LineEnding ending) {
    std::size_t length = 0;
    const std::unique_ptr<char, Free> block{NormalizeLineEndings(text.data(), text.size(), ending, &length)};
    Require(block != nullptr && block.get()[length] == '\0');
    return {block.get(), length};
}

std::string ByteByByte(const std::string& text, std::string_view target) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r') {
            i += i + 1 < text.size() && text[i + 1] == '\n' ? 1 : 0;
            result += target;
        } else if (text[i] == '\n') {
            result += target;
        } else {
            result += text[i];
        }
    }
    return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    struct Target {
        LineEnding ending;
        std::string_view bytes;
    };
    const std::string lf = Normalize(text, LineEnding::Lf);
    for (const Target& target : {Target{LineEnding::CrLf, "\r\n"}, {LineEnding::Lf, "\n"}, {LineEnding::Cr, "\r"}}) {
        const std::string once = Normalize(text, target.ending);
        Require(once == ByteByByte(text, target.bytes));
        Require(Normalize(once, target.ending) == once);
        Require(Normalize(once, LineEnding::Lf) == lf);  // the lines are the same with any line end
        if (lf.find('\n') != std::string::npos)
            Require(DetectLineEnding(once.data(), once.size()) == target.ending);
        else
            Require(once == text && DetectLineEnding(text.data(), text.size()) == LineEnding::CrLf);
    }
    return 0;
}
