// Does one forbidden thing to a block of memory, which the guard pages must stop: "write" behind it, "use" it after it was
// freed, free it "twice"; "none" does what is allowed, with many blocks of all sizes.
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

int main(int count, char** arguments) {
    const std::string what = count > 1 ? arguments[1] : "none";
    std::vector<std::unique_ptr<char[]>> blocks;
    for (std::size_t size = 1; size < 20000; size += 7) blocks.push_back(std::make_unique<char[]>(size));
    for (std::size_t i = 0, size = 1; i < blocks.size(); ++i, size += 7) std::memset(blocks[i].get(), 1, size);
    auto* grown = static_cast<char*>(std::realloc(nullptr, 10));
    std::strcpy(grown, "123456789");
    grown = static_cast<char*>(std::realloc(grown, 9000));
    const bool kept = std::strcmp(grown, "123456789") == 0;
    std::free(grown);
    blocks.clear();
    constexpr std::size_t kSize = 64;
    volatile char* const block = static_cast<char*>(std::malloc(kSize));
    volatile std::size_t behind = kSize;
    if (what == "write") block[behind] = 1;
    std::free(const_cast<char*>(block));
    if (what == "use") return block[1] == 2 ? 4 : 3;
    if (what == "twice") std::free(const_cast<char*>(block));
    return kept && what == "none" ? 0 : 3;
}
