#include "ui/sampled_picture.h"

std::vector<std::uint8_t> SampledPicture(int size, const ShapeColour& colourAt) {
    constexpr int kSamples = 4;  // of a pixel, in each direction
    const auto at = [size](int pixel, int sample) { return 2.0 * (pixel + (sample + 0.5) / kSamples) / size - 1.0; };
    std::vector<std::uint8_t> pixels;
    pixels.reserve(static_cast<std::size_t>(size) * static_cast<std::size_t>(size) * 4);
    for (int i = 0; i < size * size; ++i) {
        std::uint32_t covered = 0, red = 0, green = 0, blue = 0;
        for (int s = 0; s < kSamples * kSamples; ++s) {
            const auto colour = colourAt(at(i % size, s % kSamples), at(i / size, s / kSamples));
            if (!colour) continue;
            ++covered;
            red += *colour >> 16 & 0xFF;
            green += *colour >> 8 & 0xFF;
            blue += *colour & 0xFF;
        }
        for (const std::uint32_t sum : {red, green, blue})
            pixels.push_back(static_cast<std::uint8_t>(covered == 0 ? 0 : sum / covered));
        pixels.push_back(static_cast<std::uint8_t>(covered * 255 / (kSamples * kSamples)));
    }
    return pixels;
}
