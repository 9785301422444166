#include <zorvan/media/NSImage.h>

#include <zorvan/media/CGContext.h>
#include <zorvan/numbers-geometry/CGAffineTransform.h>

#include <algorithm>
#include <charconv>
#include <numbers>

namespace zorvan {

namespace {

/// A drawing in a box of 24 by 24, y downward. Each letter takes the numbers after it:
///
///     M x y          begin a line          O x y r        a circle
///     L x y          continue it           R x y w h r    a rectangle with round corners
///     C 3 points     curve it              A x y r a b    an arc, in degrees, clockwise
///     Z              close it
///     S              stroke all so far     F              fill all so far
///
/// Lines are 2 wide.
struct Symbol {
    std::string_view name;
    std::string_view drawing;
};

constexpr Symbol symbols[] = {
    {"arrow.clockwise", "A 12 12 8 -10 300 S M 17 1 L 17 6.5 L 11.5 6.5 S"},
    {"arrow.counterclockwise", "A 12 12 8 -120 190 S M 7 1 L 7 6.5 L 12.5 6.5 S"},
    {"arrow.down", "M 12 3 L 12 21 S M 5 14 L 12 21 L 19 14 S"},
    {"arrow.left", "M 21 12 L 3 12 S M 10 5 L 3 12 L 10 19 S"},
    {"arrow.right", "M 3 12 L 21 12 S M 14 5 L 21 12 L 14 19 S"},
    {"arrow.up", "M 12 21 L 12 3 S M 5 10 L 12 3 L 19 10 S"},
    {"bell",
     "M 5 17 C 7 15 6 12 6.5 9 C 7 5.5 9 4 12 4 C 15 4 17 5.5 17.5 9 C 18 12 17 15 19 17 Z S "
     "A 12 18 2.5 0 180 S"},
    {"checkmark", "M 4 13 L 10 19 L 20 5 S"},
    {"chevron.down", "M 4 8 L 12 16 L 20 8 S"},
    {"chevron.left", "M 16 4 L 8 12 L 16 20 S"},
    {"chevron.right", "M 8 4 L 16 12 L 8 20 S"},
    {"chevron.up", "M 4 16 L 12 8 L 20 16 S"},
    {"circle", "O 12 12 9 S"},
    {"circle.fill", "O 12 12 10 F"},
    {"clock", "O 12 12 9 S M 12 6.5 L 12 12 L 16 14 S"},
    {"doc", "M 6 3 L 14 3 L 19 8 L 19 21 L 6 21 Z S M 14 3 L 14 8 L 19 8 S"},
    {"ellipsis", "O 5 12 2 O 12 12 2 O 19 12 2 F"},
    {"exclamationmark.triangle", "M 12 3 L 22 20 L 2 20 Z S M 12 9 L 12 14 S O 12 17 1.2 F"},
    {"eye", "M 2 12 C 6 5 18 5 22 12 C 18 19 6 19 2 12 Z S O 12 12 3 F"},
    {"folder", "M 3 6 L 3 19 L 21 19 L 21 7.5 L 11.5 7.5 L 9.5 5 L 3 5 Z S"},
    {"gearshape",
     "O 12 12 6.5 S O 12 12 2.5 S M 12 2 L 12 5 M 12 19 L 12 22 M 2 12 L 5 12 M 19 12 L 22 12 "
     "M 4.9 4.9 L 7 7 M 17 17 L 19.1 19.1 M 4.9 19.1 L 7 17 M 17 7 L 19.1 4.9 S"},
    {"heart", "M 12 20 C 2 13 2 9 2.8 7.5 C 4.5 3.5 10 3.5 12 8 C 14 3.5 19.5 3.5 21.2 7.5 C 22 9 "
              "22 13 12 20 Z S"},
    {"heart.fill",
     "M 12 21 C 1 13.5 1 9 2 7 C 4 2.5 10 2.5 12 7 C 14 2.5 20 2.5 22 7 C 23 9 23 13.5 12 21 Z F"},
    {"house",
     "M 2 12 L 12 3 L 22 12 S M 5 10 L 5 20 L 19 20 L 19 10 S M 10 20 L 10 14 L 14 14 L 14 20 S"},
    {"info.circle", "O 12 12 9 S M 12 11 L 12 17 S O 12 7.5 1.3 F"},
    {"list.bullet",
     "O 4 6 1.5 O 4 12 1.5 O 4 18 1.5 F M 9 6 L 21 6 M 9 12 L 21 12 M 9 18 L 21 18 S"},
    {"lock", "R 5 11 14 10 2 S M 8 11 L 8 8 A 12 8 4 180 360 L 16 11 S"},
    {"magnifyingglass", "O 10 10 6.5 S M 15 15 L 21 21 S"},
    {"minus", "M 4 12 L 20 12 S"},
    {"pause.fill", "R 5 4 5 16 1 R 14 4 5 16 1 F"},
    {"pencil", "M 4 20 L 5 15 L 16 4 L 20 8 L 9 19 Z S M 13.5 6.5 L 17.5 10.5 S"},
    {"person", "O 12 8 4 S M 4 21 C 4 12 20 12 20 21 S"},
    {"photo", "R 2 4 20 16 2 S O 8 9.5 1.8 F M 3 18 L 9.5 12.5 L 13 15.5 L 16.5 11.5 L 21 16 S"},
    {"play.fill", "M 6 3.5 L 20 12 L 6 20.5 Z F"},
    {"plus", "M 4 12 L 20 12 M 12 4 L 12 20 S"},
    {"plus.circle", "O 12 12 9 S M 7.5 12 L 16.5 12 M 12 7.5 L 12 16.5 S"},
    {"questionmark.circle",
     "O 12 12 9 S M 9 9.5 C 9 5.5 15 5.5 15 9.5 C 15 11.5 12 11.5 12 14 S O 12 17 1.2 F"},
    {"sidebar.left", "R 2 4 20 16 2 S M 9 4 L 9 20 S"},
    {"slider.horizontal.3",
     "M 2 6 L 22 6 M 2 12 L 22 12 M 2 18 L 22 18 S O 8 6 2.5 O 16 12 2.5 O 6 18 2.5 F"},
    {"square", "R 4 4 16 16 2 S"},
    {"square.and.arrow.down",
     "M 8 9 L 4 9 L 4 21 L 20 21 L 20 9 L 16 9 S M 12 2 L 12 15 S M 8 11.5 L 12 15.5 L 16 11.5 S"},
    {"square.and.arrow.up",
     "M 8 9 L 4 9 L 4 21 L 20 21 L 20 9 L 16 9 S M 12 15 L 12 2.5 S M 8 6 L 12 2 L 16 6 S"},
    {"square.grid.2x2",
     "R 3 3 7.5 7.5 1 R 13.5 3 7.5 7.5 1 R 3 13.5 7.5 7.5 1 R 13.5 13.5 7.5 7.5 1 S"},
    {"star", "M 12 3 L 14.7 9 L 21.2 9.7 L 16.4 14 L 17.7 20.5 L 12 17.2 L 6.3 20.5 L 7.6 14 L 2.8 "
             "9.7 L 9.3 9 Z S"},
    {"star.fill", "M 12 2 L 15 8.6 L 22.2 9.4 L 16.8 14.2 L 18.3 21.3 L 12 17.7 L 5.7 21.3 L 7.2 "
                  "14.2 L 1.8 9.4 L 9 8.6 Z F"},
    {"stop.fill", "R 4 4 16 16 2 F"},
    {"tag", "M 3 3 L 12 3 L 21 12 L 12 21 L 3 12 Z S O 7.5 7.5 1.5 F"},
    {"trash", "M 3 6 L 21 6 M 9 6 L 9.5 3 L 14.5 3 L 15 6 M 5.5 6 L 6.5 21 L 17.5 21 L 18.5 6 M 10 "
              "10 L 10.3 17 M 14 10 L 13.7 17 S"},
    {"xmark", "M 5 5 L 19 19 M 19 5 L 5 19 S"},
    {"xmark.circle", "O 12 12 9 S M 8.5 8.5 L 15.5 15.5 M 15.5 8.5 L 8.5 15.5 S"},
};

/// Reads a drawing from the table above, which is known to be well formed.
class SymbolDrawing {
public:
    SymbolDrawing(std::string_view drawing, CGContext& context)
        : rest_(drawing), context_(context) {}

    void draw() {
        while (const char letter = nextLetter())
            step(letter);
    }

private:
    void step(char letter) {
        switch (letter) {
        case 'M':
            path_.moveTo(point());
            break;
        case 'L':
            path_.addLineTo(point());
            break;
        case 'Z':
            path_.closeSubpath();
            break;
        case 'C': {
            const CGPoint a = point(), b = point(), end = point();
            path_.addCurveTo(a, b, end);
            break;
        }
        case 'O': {
            const CGPoint center = point();
            path_.addEllipse(CGRect({.center = center, .square = number() * 2}));
            break;
        }
        case 'R': {
            const CGPoint corner = point(), size = point();
            const double radius = number();
            path_.addRoundedRect(CGRect(corner, CGSize(size.x, size.y)), radius, radius);
            break;
        }
        case 'A': {
            constexpr double radians = std::numbers::pi / 180;
            const CGPoint center = point();
            const double radius = number(), from = number() * radians, to = number() * radians;
            path_.addArc(center, radius, from, to);
            break;
        }
        case 'S':
            context_.stroke(std::exchange(path_, {}));
            break;
        default:
            context_.fill(std::exchange(path_, {}));
            break;
        }
    }

    void skipSpaces() noexcept {
        rest_.remove_prefix(std::min(rest_.find_first_not_of(' '), rest_.size()));
    }

    char nextLetter() noexcept {
        skipSpaces();
        if (rest_.empty())
            return 0;
        const char letter = rest_.front();
        rest_.remove_prefix(1);
        return letter;
    }

    double number() noexcept {
        skipSpaces();
        double value = 0;
        const char* const end =
            std::from_chars(rest_.data(), rest_.data() + rest_.size(), value).ptr;
        rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
        return value;
    }

    CGPoint point() noexcept {
        const double x = number();
        return {x, number()};
    }

    std::string_view rest_;
    CGContext& context_;
    CGPath path_;
};

void drawSymbol(const Symbol& symbol, const CGRect& rect) {
    const auto context = CGContext::current();
    if (!context)
        return;
    constexpr double box = 24;
    context->concatenate({rect.width() / box, 0, 0, rect.height() / box, rect.minX(), rect.minY()});
    context->setLineWidth(2);
    context->setLineCap(CGLineCap::round);
    context->setLineJoin(CGLineJoin::round);
    SymbolDrawing(symbol.drawing, *context).draw();
}

} // namespace

NSImage::Pointer NSImage::systemSymbol(std::string_view name,
                                       std::string accessibilityDescription) {
    const auto symbol = std::ranges::find(symbols, name, &Symbol::name);
    if (symbol == std::end(symbols))
        return nullptr;
    constexpr CGSize usualSize(18, 18);
    const Pointer image =
        create(usualSize, true, [symbol](const CGRect& rect) { drawSymbol(*symbol, rect); });
    image->setTemplate(true);
    image->setAccessibilityDescription(std::move(accessibilityDescription));
    return image;
}

std::vector<std::string_view> NSImage::systemSymbolNames() {
    std::vector<std::string_view> names;
    for (const Symbol& symbol : symbols)
        names.push_back(symbol.name);
    return names;
}

} // namespace zorvan
