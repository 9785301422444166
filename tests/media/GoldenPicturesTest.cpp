#include "TestImages.h"
#include <tests/Testing.h>

#include <zorvan/colour/NSColor.h>
#include <zorvan/media/CGContext.h>
#include <zorvan/media/CGRect.h>
#include <zorvan/media/NSBezierPath.h>
#include <zorvan/media/NSColor.h>
#include <zorvan/media/NSGradient.h>
#include <zorvan/media/NSImage.h>

namespace {

constexpr std::int64_t width = 64, height = 48;

struct Golden {
    const char* name;
    void (*draw)(CGContext&);
};

const CGRect frame(8, 6, 40, 30);
const CGGradient redToBlue =
    CGGradient::create({.startingColor = CGColor::red, .endingColor = CGColor::blue});

CGPattern dotsAndSquares() {
    return {.bounds = CGRect(0, 0, 8, 8), .draw = [](CGContext& cell) {
                cell.setFillColor(CGColor::green);
                cell.fill(CGRect(0, 0, 4, 4));
                cell.setFillColor(CGColor::orange);
                cell.fillEllipse(CGRect(4, 4, 4, 4));
            }};
}

using Operation = NSCompositingOperation;

/// Two discs that overlap, the second under the operation.
template <Operation operation, int tenthsOfBlue = 9>
void discs(CGContext& context) {
    context.setFillColor(NSColor({.red = 0.9, .green = 0.5, .blue = 0.1, .alpha = 0.8}).cgColor());
    context.fillEllipse(CGRect(4, 6, 36, 36));
    context.setCompositingOperation(operation);
    context.setFillColor(
        NSColor({.red = 0.1, .green = 0.4, .blue = tenthsOfBlue / 10.0, .alpha = 0.6}).cgColor());
    context.fillEllipse(CGRect(24, 6, 36, 36));
}

constexpr Golden goldens[] = {
    {"lines",
     [](CGContext& c) {
         c.setStrokeColor(CGColor::blue);
         c.setLineWidth(3);
         c.moveTo(6, 6);
         c.addLineTo(30, 40);
         c.addLineTo(54, 6);
         c.strokePath();
         c.setLineCap(CGLineCap::round);
         c.setLineDash(0, {0, 6});
         c.moveTo(6, 44);
         c.addLineTo(58, 44);
         c.strokePath();
     }},
    {"even-odd",
     [](CGContext& c) {
         c.setFillColor(CGColor::purple);
         c.addEllipse(frame);
         c.addRect(frame.insetBy(10, 8));
         c.fillPath(CGPathFillRule::evenOdd);
     }},
    {"arcs",
     [](CGContext& c) {
         c.scaleBy(2, 1.5);
         c.setFillColor(CGColor::orange);
         c.moveTo(14, 14);
         c.addArc({14, 14}, 10, 0.5, 4, true); // a slice
         c.fillPath();
         c.addArc({20, 20}, 9, 0.2, 2.5); // an open arc
         c.strokePath();
     }},
    {"stroke-under-slant",
     [](CGContext& c) {
         c.translateBy(32, 24);
         c.rotate(0.5);
         c.scaleBy(2, 1);
         c.setStrokeColor(CGColor::red);
         c.setLineWidth(4);
         c.stroke(CGRect(-10, -10, 20, 20));
     }},
    {"linear-gradient",
     [](CGContext& c) {
         c.drawLinearGradient(redToBlue, {16, 12}, {44, 30});
     }},
    {"radial-gradient",
     [](CGContext& c) {
         c.drawRadialGradient(redToBlue, {28, 22}, 18);
     }},
    {"radial-gradient-onward",
     [](CGContext& c) {
         c.clip(frame);
         c.drawRadialGradient(redToBlue, {20, 22}, 12,
                              CGGradientDrawingOptions::drawsAfterEndLocation);
     }},
    {"vertical-gradient", [](CGContext& c) { c.drawVerticalGradient(redToBlue, frame); }},
    {"horizontal-gradient", [](CGContext& c) { c.drawHorizontalGradient(redToBlue, frame); }},
    {"gradient-of-three",
     [](CGContext& c) {
         const auto three =
             CGGradient::create({.colors = {CGColor::red, NSColor::clear.cgColor(), CGColor::cyan},
                                 .locations = std::vector<double>{0.1, 0.3, 0.9}});
         c.drawHorizontalGradient(*three, frame);
     }},
    {"pattern",
     [](CGContext& c) {
         c.setFillColoredPattern(dotsAndSquares(), 1);
         c.fillEllipse(CGRect(6, 4, 52, 40));
     }},
    {"pattern-alpha-scaled",
     [](CGContext& c) {
         CGPattern pattern = dotsAndSquares();
         pattern.matrix = CGAffineTransform(1.5, 0.5, -0.5, 1.5, 3, 0);
         pattern.xStep = 10;
         c.setFillColoredPattern(pattern, 0.5);
         c.translateBy(20, 0); // which patterns do not follow
         c.fill(CGRect(-16, 4, 52, 40));
     }},
    {"picture-clipped-faded",
     [](CGContext& c) {
         c.clip(frame, 15);
         c.setAlpha(0.5);
         c.draw(*plain(3, 3, 0xFF20A0F0), CGRect(0, 0, 40, 48));
         c.rotate(0.2);
         c.draw(*plain(3, 3, 0xFFF02020), CGRect(20, 0, 40, 20));
     }},
    {"rect-lines",
     [](CGContext&) {
         fill(frame, NSColor::lightGray);
         set(NSColor::red);
         strokeTopLine(frame, 4);
         setStroke(NSColor::green);
         strokeBottomLine(frame, 2);
         setStroke(NSColor::blue);
         strokeLeftLine(frame, 6);
         setStroke(NSColor::black);
         strokeRightLine(frame, 1);
         stroke(CGRect(20.5, 12.5, 15, 15), NSColor::magenta);
     }},
    {"bezier-path",
     [](CGContext&) {
         const auto path = NSBezierPath::create();
         path->move({8, 8});
         path->curve({56, 8}, {8, 48}, {56, 48});
         path->appendArc({32, 14}, 8, 0, 270);
         path->setLineWidth(2);
         setFill(NSColor::yellow);
         path->fill();
         set(NSColor::blue);
         path->transform(CGAffineTransform({.translationX = 0, .y = 6}));
         path->stroke();
     }},
    {"gradient-in-path",
     [](CGContext&) {
         draw(*NSGradient::make({.colors = {NSColor::white, NSColor::red, NSColor::black}}),
              *nsRoundedPath(frame, 8), 60);
     }},
    {"symbols",
     [](CGContext&) {
         NSImage::systemSymbol("gearshape")->draw(CGRect(2, 2, 28, 28));
         NSImage::systemSymbol("trash")->draw(CGRect(34, 2, 28, 28));
         NSImage::systemSymbol("heart.fill")->draw(CGRect(4, 32, 14, 14));
         NSImage::systemSymbol("arrow.clockwise")->draw(CGRect(30, 32, 14, 14), {.fraction = 0.5});
     }},
    {"discs-over", discs<Operation::sourceOver>},
    {"discs-copy", discs<Operation::copy>},
    {"discs-clear", discs<Operation::clear>},
    {"discs-in", discs<Operation::sourceIn>},
    {"discs-out", discs<Operation::sourceOut>},
    {"discs-atop", discs<Operation::sourceAtop>},
    {"discs-behind", discs<Operation::destinationOver>},
    {"discs-behind-in", discs<Operation::destinationIn>},
    {"discs-behind-atop", discs<Operation::destinationAtop>},
    {"discs-darker", discs<Operation::plusDarker>},
    {"discs-lighter", discs<Operation::plusLighter>},
    {"discs-multiply", discs<Operation::multiply>},
    {"discs-screen", discs<Operation::screen>},
    {"discs-overlay", discs<Operation::overlay>},
    {"discs-darken", discs<Operation::darken>},
    {"discs-lighten", discs<Operation::lighten>},
    {"discs-dodge", discs<Operation::colorDodge>},
    {"discs-burn", discs<Operation::colorBurn>},
    {"discs-soft-light", discs<Operation::softLight>},
    {"discs-hard-light", discs<Operation::hardLight>},
    {"discs-difference", discs<Operation::difference>},
    {"discs-exclusion", discs<Operation::exclusion>},
    {"discs-xor", discs<Operation::XOR>},
    {"discs-cut-out", discs<Operation::destinationOut>},
    {"discs-hue", discs<Operation::hue>},
    {"discs-saturation", discs<Operation::saturation, 5>},
    {"discs-color", discs<Operation::color, 5>},
    {"discs-luminosity", discs<Operation::luminosity>},
};

URL fileOf(const char* name) {
    return URL({.fileURLWithPath = std::string(ZORVAN_GOLDEN_PICTURES "/") + name + ".png"});
}

/// Rasterisers of other versions set edges a little differently, but a line that moves by a quarter
/// of a pixel exceeds this.
void expectLike(const CGImage& golden, const CGImage& drawn) {
    ASSERT_EQ(drawn.size(), golden.size());
    const Difference found = difference(drawn.bitmap(), golden.bitmap());
    EXPECT_LE(found.largest, 32);
    EXPECT_LE(found.mean, 0.32);
}

/// With `ZORVAN_WRITE_GOLDEN_PICTURES` set they are written anew, to be looked at.
TEST(GoldenPictures, AreDrawnInBothLayoutsAndInPartsOfBitmaps) {
    for (const auto& [name, golden_] : goldens) {
        SCOPED_TRACE(name);
        const auto draw = [golden_ = golden_](CGContext& context) {
            context.useTemporaryContext([&] { golden_(context); });
        };
        const CGImage::Pointer drawn = CGImage::draw(width, height, draw);
        if (std::getenv("ZORVAN_WRITE_GOLDEN_PICTURES")) {
            const Data bytes = drawn->pngData().value();
            std::ofstream(fileOf(name).path(), std::ios::binary)
                .write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
        }
        const CGImage::Pointer golden = CGImage::image(fileOf(name));
        ASSERT_TRUE(golden);
        expectLike(*golden, *drawn);
        expectLike(*golden, *CGImage::argbDraw(width, height, draw)->rgbaDrawnCopy());

        Bitmap sheet = Bitmap::make(width + 9, height + 7).value();
        draw(*CGContext::create(sheet, {4, 5, width, height}));
        const CGImage::Pointer all = CGImage::create(std::move(sheet));
        const CGImage::Pointer part = CGImage::draw(width, height, [&](CGContext& context) {
            context.draw(*all, CGRect(-4, -2, width + 9, height + 7));
        });
        EXPECT_TRUE(haveSamePixels(*part, *drawn));
        EXPECT_EQ(pixelAt(*all, 3, 20) | pixelAt(*all, 20, 4) | pixelAt(*all, width + 4, 20) |
                      pixelAt(*all, 20, height + 5),
                  0u)
            << "beside the part";
    }
}

} // namespace
