// Draws the signs of errors and warnings on the screen.
#include "ui/severity_paint.h"

#include "base/handles.h"
#include "ui/paint.h"
#include "ui/severity_sign.h"

#include <cstdint>
#include <vector>

void DrawSeveritySign(HDC dc, POINT at, int size, bool error, COLORREF colour, COLORREF inside) {
    size |= 1;  // it has a middle pixel
    const std::vector<std::uint8_t> sign = SeveritySign(size, error, ThemeColorRef(colour), ThemeColorRef(inside));
    std::uint32_t* pixels = nullptr;
    const UniqueBitmap bitmap = PixelsNew(size, size, &pixels);
    const UniqueMemoryDc memory(CreateCompatibleDC(dc));
    if (!bitmap || !memory) return;
    auto* pixel = reinterpret_cast<std::uint8_t*>(pixels);
    for (std::size_t i = 0; i < sign.size(); i += 4) {  // red, green, blue, opacity to multiplied blue, green, red
        for (const std::size_t channel : {2u, 1u, 0u})
            *pixel++ = static_cast<std::uint8_t>(sign[i + channel] * sign[i + 3] / 255);
        *pixel++ = sign[i + 3];
    }
    const HGDIOBJ old = SelectObject(memory.Get(), bitmap.Get());
    GdiAlphaBlend(dc, at.x, at.y, size, size, memory.Get(), 0, 0, size, size, {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA});
    SelectObject(memory.Get(), old);
}
