// Links machine code and data to a Windows console program. Knows nothing of BASIC.
#pragma once

#include "codegen.h"

namespace standin {

inline constexpr uint32_t kTextRva = 0x1000;
inline constexpr uint32_t kImageBase32 = 0x400000;

// Returns the bytes of the executable. Fills the addresses in `image`.
std::string LinkImage(Image& image);

}  // namespace standin
