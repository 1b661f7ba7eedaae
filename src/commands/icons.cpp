// Draws icons into an array of pixels, with 4 x 4 samples for each pixel. Pure.
#include "commands/icons.h"

#include <algorithm>
#include <span>

namespace {

struct Point {
    float x, y;
};

enum class Ink : std::uint8_t { Line, Accent, Go, Stop, Fill };
enum class Kind : std::uint8_t { Stroke, Area, Ring, Disc };

// A Stroke or an Area has `count` points. Of a Ring or a Disc points[0] is the centre and points[1].x the radius.
struct Shape {
    Kind kind;
    Ink ink;
    int count;
    Point points[10];
    float width = 1.3F;  // of a stroke or a ring
};

constexpr Shape kNew[] = {
    {Kind::Area, Ink::Fill, 5, {{3.5F, 1.5F}, {9.5F, 1.5F}, {12.5F, 4.5F}, {12.5F, 14.5F}, {3.5F, 14.5F}}},
    {Kind::Stroke,
     Ink::Line,
     6,
     {{3.5F, 1.5F}, {9.5F, 1.5F}, {12.5F, 4.5F}, {12.5F, 14.5F}, {3.5F, 14.5F}, {3.5F, 1.5F}}},
    {Kind::Stroke, Ink::Accent, 3, {{9.2F, 1.8F}, {9.2F, 4.8F}, {12.2F, 4.8F}}},
};
constexpr Shape kOpen[] = {
    {Kind::Stroke,
     Ink::Line,
     7,
     {{13.F, 6.5F}, {13.F, 4.5F}, {7.5F, 4.5F}, {6.F, 2.8F}, {1.8F, 2.8F}, {1.8F, 13.F}, {3.F, 13.F}}},
    {Kind::Area, Ink::Accent, 4, {{4.5F, 7.F}, {15.2F, 7.F}, {12.6F, 13.5F}, {2.F, 13.5F}}},
};
constexpr Shape kSave[] = {
    {Kind::Stroke, Ink::Line, 6, {{2.F, 2.F}, {11.5F, 2.F}, {14.F, 4.5F}, {14.F, 14.F}, {2.F, 14.F}, {2.F, 2.F}}},
    {Kind::Area, Ink::Accent, 4, {{4.5F, 9.F}, {11.5F, 9.F}, {11.5F, 14.F}, {4.5F, 14.F}}},
    {Kind::Stroke, Ink::Line, 4, {{5.F, 2.F}, {5.F, 5.5F}, {10.F, 5.5F}, {10.F, 2.F}}},
};
constexpr Shape kSaveAll[] = {
    {Kind::Stroke, Ink::Line, 4, {{4.F, 1.5F}, {12.5F, 1.5F}, {14.5F, 3.5F}, {14.5F, 12.F}}},
    {Kind::Stroke, Ink::Line, 6, {{1.5F, 4.F}, {9.8F, 4.F}, {11.8F, 6.F}, {11.8F, 14.5F}, {1.5F, 14.5F}, {1.5F, 4.F}}},
    {Kind::Area, Ink::Accent, 4, {{4.F, 10.F}, {9.5F, 10.F}, {9.5F, 14.5F}, {4.F, 14.5F}}},
};
constexpr Shape kUndo[] = {
    {Kind::Stroke,
     Ink::Accent,
     7,
     {{3.F, 6.F}, {9.5F, 6.F}, {12.F, 7.2F}, {13.F, 9.5F}, {12.F, 11.8F}, {9.5F, 13.F}, {6.F, 13.F}},
     1.5F},
    {Kind::Stroke, Ink::Accent, 3, {{6.2F, 2.6F}, {2.8F, 6.F}, {6.2F, 9.4F}}, 1.5F},
};
constexpr Shape kRedo[] = {
    {Kind::Stroke,
     Ink::Accent,
     7,
     {{13.F, 6.F}, {6.5F, 6.F}, {4.F, 7.2F}, {3.F, 9.5F}, {4.F, 11.8F}, {6.5F, 13.F}, {10.F, 13.F}},
     1.5F},
    {Kind::Stroke, Ink::Accent, 3, {{9.8F, 2.6F}, {13.2F, 6.F}, {9.8F, 9.4F}}, 1.5F},
};
constexpr Shape kCut[] = {
    {Kind::Stroke, Ink::Line, 2, {{4.5F, 1.5F}, {10.4F, 10.4F}}},
    {Kind::Stroke, Ink::Line, 2, {{11.5F, 1.5F}, {5.6F, 10.4F}}},
    {Kind::Ring, Ink::Accent, 2, {{4.3F, 12.2F}, {2.F, 0.F}}},
    {Kind::Ring, Ink::Accent, 2, {{11.7F, 12.2F}, {2.F, 0.F}}},
};
constexpr Shape kCopy[] = {
    {Kind::Stroke, Ink::Line, 5, {{10.5F, 4.F}, {10.5F, 1.5F}, {2.F, 1.5F}, {2.F, 11.5F}, {5.F, 11.5F}}},
    {Kind::Area, Ink::Fill, 4, {{5.5F, 4.5F}, {14.F, 4.5F}, {14.F, 14.5F}, {5.5F, 14.5F}}},
    {Kind::Stroke, Ink::Accent, 5, {{5.5F, 4.5F}, {14.F, 4.5F}, {14.F, 14.5F}, {5.5F, 14.5F}, {5.5F, 4.5F}}},
};
constexpr Shape kPaste[] = {
    {Kind::Stroke, Ink::Line, 6, {{10.5F, 3.F}, {13.F, 3.F}, {13.F, 14.5F}, {2.5F, 14.5F}, {2.5F, 3.F}, {5.F, 3.F}}},
    {Kind::Area, Ink::Line, 4, {{5.F, 1.5F}, {10.5F, 1.5F}, {10.5F, 4.5F}, {5.F, 4.5F}}},
    {Kind::Stroke, Ink::Accent, 2, {{5.F, 7.5F}, {10.5F, 7.5F}}},
    {Kind::Stroke, Ink::Accent, 2, {{5.F, 10.F}, {10.5F, 10.F}}},
    {Kind::Stroke, Ink::Accent, 2, {{5.F, 12.3F}, {8.5F, 12.3F}}},
};
constexpr Shape kFind[] = {
    {Kind::Ring, Ink::Line, 2, {{6.5F, 6.5F}, {4.4F, 0.F}}, 1.5F},
    {Kind::Stroke, Ink::Accent, 2, {{9.9F, 9.9F}, {14.F, 14.F}}, 2.2F},
};
constexpr Shape kBuild[] = {
    {Kind::Area,
     Ink::Accent,
     7,
     {{2.5F, 2.5F}, {9.F, 2.5F}, {11.5F, 4.F}, {12.5F, 6.5F}, {9.5F, 6.F}, {9.5F, 7.F}, {2.5F, 7.F}}},
    {Kind::Stroke, Ink::Line, 2, {{6.F, 7.F}, {6.F, 14.2F}}, 2.4F},
};
constexpr Shape kRun[] = {{Kind::Area, Ink::Go, 3, {{4.F, 2.F}, {13.5F, 8.F}, {4.F, 14.F}}}};
constexpr Shape kStop[] = {{Kind::Area, Ink::Stop, 4, {{3.F, 3.F}, {13.F, 3.F}, {13.F, 13.F}, {3.F, 13.F}}}};
constexpr Shape kSyntax[] = {
    {Kind::Stroke, Ink::Line, 2, {{2.F, 3.F}, {11.F, 3.F}}},
    {Kind::Stroke, Ink::Line, 2, {{2.F, 6.5F}, {8.F, 6.5F}}},
    {Kind::Stroke, Ink::Line, 2, {{2.F, 10.F}, {6.F, 10.F}}},
    {Kind::Stroke, Ink::Go, 3, {{7.F, 11.F}, {9.8F, 13.8F}, {14.4F, 7.4F}}, 1.9F},
};
constexpr Shape kPreviousError[] = {
    {Kind::Stroke, Ink::Line, 3, {{3.5F, 6.8F}, {8.F, 2.3F}, {12.5F, 6.8F}}, 1.5F},
    {Kind::Disc, Ink::Stop, 2, {{8.F, 11.5F}, {2.7F, 0.F}}},
};
constexpr Shape kNextError[] = {
    {Kind::Stroke, Ink::Line, 3, {{3.5F, 9.2F}, {8.F, 13.7F}, {12.5F, 9.2F}}, 1.5F},
    {Kind::Disc, Ink::Stop, 2, {{8.F, 4.5F}, {2.7F, 0.F}}},
};
constexpr Shape kAsm[] = {
    {Kind::Stroke, Ink::Line, 5, {{1.5F, 2.5F}, {14.5F, 2.5F}, {14.5F, 13.5F}, {1.5F, 13.5F}, {1.5F, 2.5F}}},
    {Kind::Area, Ink::Accent, 4, {{9.F, 3.F}, {14.F, 3.F}, {14.F, 13.F}, {9.F, 13.F}}},
};
constexpr Shape kOutput[] = {
    {Kind::Stroke, Ink::Line, 5, {{1.5F, 2.5F}, {14.5F, 2.5F}, {14.5F, 13.5F}, {1.5F, 13.5F}, {1.5F, 2.5F}}},
    {Kind::Area, Ink::Accent, 4, {{2.F, 9.F}, {14.F, 9.F}, {14.F, 13.F}, {2.F, 13.F}}},
};
constexpr Shape kAi[] = {
    {Kind::Stroke,
     Ink::Line,
     8,
     {{2.F, 3.F}, {14.F, 3.F}, {14.F, 11.5F}, {8.5F, 11.5F}, {5.F, 14.5F}, {5.F, 11.5F}, {2.F, 11.5F}, {2.F, 3.F}}},
    {Kind::Disc, Ink::Accent, 2, {{5.4F, 7.2F}, {1.F, 0.F}}},
    {Kind::Disc, Ink::Accent, 2, {{8.F, 7.2F}, {1.F, 0.F}}},
    {Kind::Disc, Ink::Accent, 2, {{10.6F, 7.2F}, {1.F, 0.F}}},
};

constexpr Shape kDictate[] = {
    {Kind::Stroke, Ink::Accent, 2, {{8.F, 3.6F}, {8.F, 7.2F}}, 4.2F},
    {Kind::Stroke,
     Ink::Line,
     6,
     {{3.6F, 6.5F}, {4.2F, 9.4F}, {6.6F, 11.2F}, {9.4F, 11.2F}, {11.8F, 9.4F}, {12.4F, 6.5F}}},
    {Kind::Stroke, Ink::Line, 2, {{8.F, 11.4F}, {8.F, 14.F}}},
    {Kind::Stroke, Ink::Line, 2, {{5.F, 14.2F}, {11.F, 14.2F}}},
};

constexpr Shape kDebugStart[] = {
    {Kind::Area, Ink::Go, 3, {{6.5F, 2.F}, {14.8F, 7.5F}, {6.5F, 13.F}}},
    {Kind::Disc, Ink::Stop, 2, {{4.F, 11.8F}, {3.F, 0.F}}},
};
constexpr Shape kBreakpoint[] = {{Kind::Disc, Ink::Stop, 2, {{8.F, 8.F}, {5.F, 0.F}}}};
constexpr Shape kDebugStop[] = {
    {Kind::Ring, Ink::Stop, 2, {{8.F, 8.F}, {6.2F, 0.F}}, 1.5F},
    {Kind::Area, Ink::Stop, 4, {{5.2F, 5.2F}, {10.8F, 5.2F}, {10.8F, 10.8F}, {5.2F, 10.8F}}},
};
constexpr Shape kContinue[] = {
    {Kind::Area, Ink::Go, 4, {{2.F, 2.5F}, {4.2F, 2.5F}, {4.2F, 13.5F}, {2.F, 13.5F}}},
    {Kind::Area, Ink::Go, 3, {{6.F, 2.5F}, {14.5F, 8.F}, {6.F, 13.5F}}},
};
constexpr Shape kPause[] = {
    {Kind::Area, Ink::Accent, 4, {{3.5F, 2.5F}, {6.7F, 2.5F}, {6.7F, 13.5F}, {3.5F, 13.5F}}},
    {Kind::Area, Ink::Accent, 4, {{9.3F, 2.5F}, {12.5F, 2.5F}, {12.5F, 13.5F}, {9.3F, 13.5F}}},
};
constexpr Shape kStepOver[] = {
    {Kind::Stroke,
     Ink::Accent,
     7,
     {{1.8F, 9.F}, {2.6F, 6.F}, {5.F, 3.8F}, {8.F, 3.2F}, {11.F, 4.F}, {13.F, 6.2F}, {13.4F, 8.6F}},
     1.5F},
    {Kind::Stroke, Ink::Accent, 3, {{10.4F, 6.6F}, {13.4F, 9.2F}, {15.2F, 5.8F}}, 1.5F},
    {Kind::Disc, Ink::Line, 2, {{7.8F, 12.4F}, {2.F, 0.F}}},
};
constexpr Shape kStepInto[] = {
    {Kind::Stroke, Ink::Accent, 2, {{8.F, 1.2F}, {8.F, 8.F}}, 1.5F},
    {Kind::Stroke, Ink::Accent, 3, {{4.6F, 5.2F}, {8.F, 8.6F}, {11.4F, 5.2F}}, 1.5F},
    {Kind::Disc, Ink::Line, 2, {{8.F, 12.8F}, {2.F, 0.F}}},
};
constexpr Shape kStepOut[] = {
    {Kind::Stroke, Ink::Accent, 2, {{8.F, 2.4F}, {8.F, 9.2F}}, 1.5F},
    {Kind::Stroke, Ink::Accent, 3, {{4.6F, 5.2F}, {8.F, 1.8F}, {11.4F, 5.2F}}, 1.5F},
    {Kind::Disc, Ink::Line, 2, {{8.F, 12.8F}, {2.F, 0.F}}},
};
constexpr Shape kRunToCursor[] = {
    {Kind::Stroke, Ink::Accent, 2, {{1.5F, 8.F}, {8.4F, 8.F}}, 1.5F},
    {Kind::Stroke, Ink::Accent, 3, {{5.4F, 4.8F}, {8.8F, 8.F}, {5.4F, 11.2F}}, 1.5F},
    {Kind::Stroke, Ink::Line, 2, {{12.F, 2.8F}, {12.F, 13.2F}}, 1.4F},
    {Kind::Stroke, Ink::Line, 2, {{10.2F, 2.5F}, {13.8F, 2.5F}}, 1.4F},
    {Kind::Stroke, Ink::Line, 2, {{10.2F, 13.5F}, {13.8F, 13.5F}}, 1.4F},
};

constexpr Shape kMore[] = {
    {Kind::Stroke, Ink::Line, 3, {{4.F, 4.5F}, {7.5F, 8.F}, {4.F, 11.5F}}, 1.5F},
    {Kind::Stroke, Ink::Line, 3, {{8.5F, 4.5F}, {12.F, 8.F}, {8.5F, 11.5F}}, 1.5F},
};

constexpr std::span<const Shape> kIcons[] = {kNew,   kOpen,     kSave,          kSaveAll,    kUndo,        kRedo,
                                             kCut,   kCopy,     kPaste,         kFind,       kBuild,       kRun,
                                             kStop,  kSyntax,   kPreviousError, kNextError,  kAsm,         kOutput,
                                             kAi,    kDictate,  kDebugStart,    kBreakpoint, kDebugStop,   kContinue,
                                             kPause, kStepOver, kStepInto,      kStepOut,    kRunToCursor, kMore};
static_assert(std::size(kIcons) == static_cast<std::size_t>(Icon::Count));

// Squares of lengths, because roots cost most of the time in which a toolbar is drawn.
float Square(float value) { return value * value; }

float SquareToPoint(Point a, Point b) { return Square(a.x - b.x) + Square(a.y - b.y); }

float SquareToSegment(Point p, Point a, Point b) {
    const float dx = b.x - a.x;
    const float dy = b.y - a.y;
    const float length = dx * dx + dy * dy;
    const float t = length > 0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / length, 0.F, 1.F) : 0.F;
    return SquareToPoint(p, {a.x + t * dx, a.y + t * dy});
}

bool InsidePolygon(Point p, std::span<const Point> points) {
    bool inside = false;
    for (std::size_t i = 0, j = points.size() - 1; i < points.size(); j = i++) {
        const Point& a = points[i];
        const Point& b = points[j];
        if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) inside = !inside;
    }
    return inside;
}

bool Covers(const Shape& shape, Point p) {
    const std::span<const Point> points(shape.points, static_cast<std::size_t>(shape.count));
    switch (shape.kind) {
        case Kind::Area: return InsidePolygon(p, points);
        case Kind::Disc: return SquareToPoint(p, points[0]) <= Square(points[1].x);
        case Kind::Ring: {
            const float square = SquareToPoint(p, points[0]);
            return square >= Square(points[1].x - shape.width / 2) && square <= Square(points[1].x + shape.width / 2);
        }
        case Kind::Stroke:
            for (std::size_t i = 1; i < points.size(); ++i)
                if (SquareToSegment(p, points[i - 1], points[i]) <= Square(shape.width / 2)) return true;
            return false;
    }
    return false;
}

std::uint32_t InkColour(Ink ink, const IconInks& inks) {
    switch (ink) {
        case Ink::Accent: return inks.accent;
        case Ink::Go: return inks.go;
        case Ink::Stop: return inks.stop;
        case Ink::Fill: return inks.fill;
        case Ink::Line: break;
    }
    return inks.line;
}

struct Box {
    float left, top, right, bottom;
};

// The area outside of which a shape covers nothing.
Box BoxOf(const Shape& shape) {
    const bool round = shape.kind == Kind::Disc || shape.kind == Kind::Ring;
    const float reach = shape.width / 2 + (round ? shape.points[1].x : 0);
    Box box = {shape.points[0].x, shape.points[0].y, shape.points[0].x, shape.points[0].y};
    for (int i = 1; i < (round ? 1 : shape.count); ++i) {
        const Point& point = shape.points[i];
        box = {std::min(box.left, point.x), std::min(box.top, point.y), std::max(box.right, point.x),
               std::max(box.bottom, point.y)};
    }
    return {box.left - reach, box.top - reach, box.right + reach, box.bottom + reach};
}

// The shapes of an icon that may cover a part of a pixel, first drawn first.
struct Candidates {
    std::vector<const Shape*> shapes;
    std::vector<Box> boxes;  // of the icon's shapes

    explicit Candidates(std::span<const Shape> icon) {
        for (const Shape& shape : icon) boxes.push_back(BoxOf(shape));
    }
    void Choose(std::span<const Shape> icon, const Box& pixel) {
        shapes.clear();
        for (std::size_t i = 0; i < icon.size(); ++i)
            if (boxes[i].left <= pixel.right && boxes[i].right >= pixel.left && boxes[i].top <= pixel.bottom &&
                boxes[i].bottom >= pixel.top)
                shapes.push_back(&icon[i]);
    }
};

// The last shape that covers a sample gives its ink. The colour is the mean of the covered samples, the opacity their
// part of all.
std::uint32_t RenderPixel(std::span<const Shape* const> shapes, float x, float y, float step, const IconInks& inks) {
    constexpr int kSamples = 4;
    std::uint32_t sum[4] = {};  // alpha, red, green, blue
    for (int sample = 0; sample < kSamples * kSamples; ++sample) {
        const int column = sample % kSamples, line = sample / kSamples;
        const Point p{x + (static_cast<float>(column) + 0.5F) * step / kSamples,
                      y + (static_cast<float>(line) + 0.5F) * step / kSamples};
        for (std::size_t i = shapes.size(); i-- > 0;) {
            if (!Covers(*shapes[i], p)) continue;
            const std::uint32_t colour = InkColour(shapes[i]->ink, inks);
            sum[0] += 255;
            sum[1] += colour >> 16 & 0xFF;
            sum[2] += colour >> 8 & 0xFF;
            sum[3] += colour & 0xFF;
            break;
        }
    }
    const std::uint32_t covered = sum[0] / 255;
    if (covered == 0) return 0;
    constexpr std::uint32_t n = kSamples * kSamples;
    return sum[0] / n << 24 | sum[1] / covered << 16 | sum[2] / covered << 8 | sum[3] / covered;
}

}  // namespace

std::vector<std::uint32_t> RenderIcon(Icon icon, int size, const IconInks& inks) {
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(size) * static_cast<std::size_t>(size));
    const std::span<const Shape> shapes = kIcons[static_cast<std::size_t>(icon)];
    const float step = 16.0F / static_cast<float>(size);
    Candidates candidates(shapes);
    std::size_t next = 0;
    for (int row = 0; row < size; ++row) {
        for (int column = 0; column < size; ++column, ++next) {
            const float x = static_cast<float>(column) * step;
            const float y = static_cast<float>(row) * step;
            candidates.Choose(shapes, {x, y, x + step, y + step});
            if (!candidates.shapes.empty()) pixels[next] = RenderPixel(candidates.shapes, x, y, step, inks);
        }
    }
    return pixels;
}

std::uint32_t PremultipliedPixel(std::uint32_t pixel) {
    const std::uint32_t alpha = pixel >> 24;
    const auto times = [alpha](std::uint32_t channel) { return ((channel & 0xFF) * alpha + 127) / 255; };
    return alpha << 24 | times(pixel >> 16) << 16 | times(pixel >> 8) << 8 | times(pixel);
}
