// Reads little-endian numbers from bytes at any alignment. The caller checks that the bytes exist. Pure; any thread.
#pragma once

#include <cstdint>

inline std::uint16_t ReadLe16(const std::uint8_t* at) { return static_cast<std::uint16_t>(at[0] | at[1] << 8); }
inline std::uint32_t ReadLe32(const std::uint8_t* at) {
    return ReadLe16(at) | static_cast<std::uint32_t>(ReadLe16(at + 2)) << 16;
}
inline std::uint64_t ReadLe64(const std::uint8_t* at) {
    return ReadLe32(at) | static_cast<std::uint64_t>(ReadLe32(at + 4)) << 32;
}
