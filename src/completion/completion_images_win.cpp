// Draws the images of the completion list: a letter on a coloured square, at the size of the editor's text. UI thread.
#include "completion/completion_images.h"

#include "base/handles.h"
#include "ui/chrome.h"
#include "ui/paint.h"

#include <cstdint>
#include <iterator>
#include <optional>
#include <vector>

namespace {

constexpr int kFine = 4;  // each pixel is the mean of so many by so many

struct KindLook {
    wchar_t letter;
    Rgb colour;
};
constexpr KindLook kLooks[] = {
    {L'K', 0x6E7781},  // Keyword
    {L'f', 0x8250DF},  // Function
    {L'T', 0x2DA44E},  // BasicType
    {L'S', 0xBF3989},  // Snippet
    {L'P', 0x8250DF},  // Procedure
    {L'M', 0xA475F9},  // Macro
    {L'T', 0x1A7F37},  // Type
    {L'm', 0x0969DA},  // Member
    {L'C', 0xBC4C00},  // Constant
    {L'G', 0x0969DA},  // Variable
    {L'L', 0x1B7C83},  // Local
    {L':', 0x9A6700},  // Label
    {L'a', 0xCF222E},  // Instruction
    {L'r', 0xA40E26},  // Register
    {L'n', 0x8C959F},  // Name
};
static_assert(std::size(kLooks) == static_cast<std::size_t>(RowKind::Count));

// In the high-contrast mode all squares have one colour, and the letters tell the kinds apart.
struct ImageColours {
    std::optional<Rgb> square;
    Rgb letter = 0xFFFFFF;
    bool operator==(const ImageColours&) const = default;
};

// The pixels of all kinds at one size, each as red, green, blue, opacity.
struct ImageSet {
    int size = 0;
    ImageColours colours;
    std::vector<unsigned char> images[std::size(kLooks)];
};
ImageSet g_images;

// A bitmap of 32 bits in memory.
struct Canvas {
    std::uint32_t* pixels = nullptr;
    UniqueBitmap bitmap;
    UniqueMemoryDc dc{CreateCompatibleDC(nullptr)};
    HGDIOBJ before = nullptr;

    explicit Canvas(int size) : bitmap(PixelsNew(size, size, &pixels)) {
        if (bitmap) before = SelectObject(dc.Get(), bitmap.Get());
    }
    ~Canvas() {
        if (before != nullptr) SelectObject(dc.Get(), before);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
};

void DrawLetter(const Canvas& canvas, int size, wchar_t letter) {
    RECT area = {0, 0, size, size};
    FillRect(canvas.dc.Get(), &area, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    SetBkMode(canvas.dc.Get(), TRANSPARENT);
    SetTextColor(canvas.dc.Get(), RGB(255, 255, 255));
    DrawTextW(canvas.dc.Get(), &letter, 1, &area, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    GdiFlush();
}

// Whether a point of the fine grid is inside the square, whose corners are round.
bool IsInside(int x, int y, int size) {
    const int margin = size / 16, radius = size / 5;
    const int low = margin + radius, high = size - 1 - margin - radius;
    if (x < margin || y < margin || x > size - 1 - margin || y > size - 1 - margin) return false;
    const int dx = x < low ? low - x : x > high ? x - high : 0;
    const int dy = y < low ? low - y : y > high ? y - high : 0;
    return dx * dx + dy * dy <= radius * radius;
}

// The pixels of an image as red, green, blue, opacity.
std::vector<unsigned char> ImageOf(const KindLook& look, const ImageColours& colours, const Canvas& canvas, int size) {
    DrawLetter(canvas, size * kFine, look.letter);
    std::vector<unsigned char> image;
    image.reserve(static_cast<std::size_t>(size) * static_cast<std::size_t>(size) * 4);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            int inside = 0, white = 0;
            for (int part = 0; part < kFine * kFine; ++part) {
                const int fineX = x * kFine + part % kFine, fineY = y * kFine + part / kFine;
                inside += IsInside(fineX, fineY, size * kFine) ? 1 : 0;
                white += static_cast<int>(canvas.pixels[fineY * size * kFine + fineX] & 0xFF);
            }
            const Rgb colour =
                ThemeBlend(colours.letter, colours.square.value_or(look.colour), white / (kFine * kFine));
            for (const int shift : {16, 8, 0}) image.push_back(static_cast<unsigned char>(colour >> shift & 0xFF));
            image.push_back(static_cast<unsigned char>(inside * 255 / (kFine * kFine)));
        }
    return image;
}

ImageColours ColoursNow() {
    if (!SystemHighContrast()) return {};
    return {ThemeCurrentChromePalette().paneText, ThemeCurrentChromePalette().paneBack};
}

void MakeImages(int size, const ImageColours& colours) {
    const Canvas canvas(size * kFine);
    if (canvas.pixels == nullptr) return;
    const UniqueFont font(CreateFontW(-size * kFine * 3 / 4, 0, 0, 0, FW_BOLD, FALSE, FALSE, FALSE, DEFAULT_CHARSET, 0,
                                      0, ANTIALIASED_QUALITY, 0, L"Segoe UI"));
    const HGDIOBJ before = SelectObject(canvas.dc.Get(), font.Get());
    for (std::size_t kind = 0; kind < std::size(kLooks); ++kind)
        g_images.images[kind] = ImageOf(kLooks[kind], colours, canvas, size);
    SelectObject(canvas.dc.Get(), before);
    g_images.size = size;
    g_images.colours = colours;
}

}  // namespace

void CompletionImageDraw(HDC dc, POINT at, int size, RowKind kind, COLORREF back) {
    if (size <= 0) return;
    if (const ImageColours colours = ColoursNow(); g_images.size != size || g_images.colours != colours)
        MakeImages(size, colours);
    if (g_images.size != size) return;
    const std::vector<unsigned char>& image = g_images.images[static_cast<std::size_t>(kind)];
    const Rgb under = static_cast<Rgb>(GetRValue(back) << 16 | GetGValue(back) << 8 | GetBValue(back));
    std::vector<std::uint32_t> pixels(image.size() / 4);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const unsigned char* from = &image[i * 4];
        pixels[i] = ThemeBlend(static_cast<Rgb>(from[0] << 16 | from[1] << 8 | from[2]), under, from[3]);
    }
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), size, -size, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    const auto side = static_cast<DWORD>(size);
    SetDIBitsToDevice(dc, at.x, at.y, side, side, 0, 0, 0, side, pixels.data(), &info, DIB_RGB_COLORS);
}
