// What must hold of any text whose line breaks were made alike.
#include "files/text_encoding.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

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

std::string WithoutBreaks(std::string text) {
    std::erase_if(text, [](char c) { return c == '\r' || c == '\n'; });
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string lf = Normalize(text, LineEnding::Lf);
    for (const LineEnding ending : {LineEnding::CrLf, LineEnding::Lf, LineEnding::Cr}) {
        const std::string once = Normalize(text, ending);
        Require(WithoutBreaks(once) == WithoutBreaks(text));
        Require(Normalize(once, ending) == once);
        Require(Normalize(once, LineEnding::Lf) == lf);  // the same lines, whatever ends them
        if (lf.find('\n') != std::string::npos)
            Require(DetectLineEnding(once.data(), once.size()) == ending);
        else
            Require(once == text && DetectLineEnding(text.data(), text.size()) == LineEnding::CrLf);
    }
    return 0;
}
