#include "TestImages.h"
#include <tests/Testing.h>
#include <tests/Variable.h>
#include <tests/bytesOf.h>
#include <tests/files/TemporaryFolder.h>

#include <zorvan/media/CGContext.h>
#include <zorvan/media/CGRect.h>
#include <zorvan/media/NSBezierPath.h>
#include <zorvan/media/NSBundle.h>
#include <zorvan/media/NSColor.h>
#include <zorvan/media/NSImage.h>
#include <zorvan/platform/appkit/Canvas.h>
#include <zorvan/platform/foundation/UUID.h>
#include <zorvan/platform/graphics/TextDrawing.h>

namespace {

constexpr std::uint32_t red = 0xFF0000FF, green = 0xFF00FF00, blue = 0xFFFF0000;

TEST(NSGraphicsContext, IsKeptForEachThreadAndNests) {
    const auto first = CGContext::rgba(4, 4), second = CGContext::rgba(4, 4);
    EXPECT_EQ(CGContext::current(), nullptr);
    first->push();
    first->setCompositingOperation(NSCompositingOperation::copy);
    second->useTemporaryContext([&] {
        EXPECT_EQ(CGContext::current(), second);
        std::thread([] { EXPECT_EQ(CGContext::current(), nullptr); }).join();
        // The state of the context around is kept, too.
        first->setCompositingOperation(NSCompositingOperation::XOR);
    });
    EXPECT_EQ(CGContext::current(), first);
    EXPECT_EQ(NSGraphicsContext::current()->compositingOperation(), NSCompositingOperation::copy);
    EXPECT_THROW(second->useTemporaryContext([] { throw std::runtime_error("stop"); }),
                 std::runtime_error);
    EXPECT_EQ(CGContext::current(), first);
    first->pop();
    first->pop();
    EXPECT_EQ(CGContext::current(), nullptr);
    // Nothing draws then, and nothing goes wrong.
    set(NSColor::red);
    fill(CGRect(0, 0, 4, 4), NSColor::red);
    NSBezierPath::create({.rect = CGRect(0, 0, 4, 4)})->addClip();
    EXPECT_DEATH(NSGraphicsContext::create(nullptr, false), "needs a drawing context");
    EXPECT_DEATH(NSBezierPath::create()->line({1, 1}), "The path has no current point.");
}

TEST(NSBezierPath, GoesOnFromWhereItIs) {
    const auto path = NSBezierPath::create();
    EXPECT_EQ(path->currentPoint(), CGPoint());
    path->move({8, 8});
    path->relativeLine({4, 2});
    EXPECT_EQ(path->currentPoint(), CGPoint(12, 10));
    path->relativeMove({-2, 5});
    path->line({11, 11});
    EXPECT_EQ(path->bounds(), CGRect(8, 8, 4, 7));
}

TEST(NSGraphicsContext, DrawsWhereAViewDoesWithItsCompositingOperation) {
    for (const bool isFlipped : {false, true}) {
        Bitmap bitmap = Bitmap::make(40, 40).value();
        const Canvas whole(bitmap, 2); // 20 by 20 points
        Canvas canvas = whole.inside(CGRect(5, 4, 10, 8), CGRect(100, 50, 10, 8), isFlipped);
        NSGraphicsContext::use(NSGraphicsContext::create(canvas), [&] {
            fill(CGRect(0, 0, 1000, 1000), NSColor::blue); // held by the clip
            fill(CGRect(100, 50, 3, 2), NSColor::red);
            NSGraphicsContext::current()->setCompositingOperation(
                NSCompositingOperation::destinationOver);
            fill(CGRect(100, 50, 3, 2), NSColor::green);
        });
        expectPixels(*CGImage::create(std::move(bitmap)), [&](auto x, auto y) {
            const bool isInView = x >= 10 && x < 30 && y >= 16 && y < 32;
            const bool isRed = x < 16 && (isFlipped ? y < 20 : y >= 28);
            return !isInView ? 0 : isRed ? red : blue;
        });
    }
}

TEST(Canvas, DrawsTextWhereItsCellIs) {
    Bitmap bitmap = Bitmap::make(120, 60).value(), expected = Bitmap::make(120, 60).value();
    Canvas(bitmap, 2).drawText("Hxg", CGRect(7, 6, 50, 20), {10, 20, 30});
    // As high as 13 points, in the middle of the cell's height.
    drawTextLine(expected, "Hxg", {.x = 14, .y = 8 + 3, .width = 100, .height = 40 - 3},
                 {.size = 26, .color = {10, 20, 30, 255}});
    expectPixels(*CGImage::create(std::move(bitmap)),
                 [&](auto x, auto y) { return pixelAt(expected, x, y); });
}

TEST(NSImage, ChoosesTheRepresentationForTheScale) {
    const auto small = plain(10, 10, red), large = plain(20, 20, green);
    EXPECT_EQ(small->nsImage()->size(), CGSize(10, 10));
    EXPECT_EQ(small->nsImage()->cgImageForProposedRect(), small);
    const auto image = NSImage::create(large, CGSize(10, 10));
    image->addRepresentation({small, CGSize(10, 10)});
    EXPECT_EQ(image->cgImageForProposedRect(), small);
    for (const double width : {11, 500})
        EXPECT_EQ(image->cgImageForProposedRect(CGRect(0, 0, width, 5)), large);
    const auto context = CGContext::rgba(40, 40);
    context->scaleBy(2, 2);
    EXPECT_EQ(
        image->cgImageForProposedRect(image->rect(), NSGraphicsContext::create(context, false)),
        large);
    EXPECT_EQ(NSImage::create(CGImage::Pointer()), nullptr);
}

TEST(NSImage, DrawsPartsUprightAndFaded) {
    // Red above, green below.
    const auto halves = CGImage::draw(4, 4, [](CGContext& c) {
                            c.draw(*plain(1, 1, green), CGRect(0, 0, 4, 2));
                            c.draw(*plain(1, 1, red), CGRect(0, 2, 4, 2));
                        })->nsImage();
    for (const bool isFlipped : {false, true}) {
        const auto drawn = [&](const CGRect& in, const NSImage::Options& options) {
            return drawnIn(8, 8, isFlipped, [&] { halves->draw(in, options); });
        };
        const auto whole = drawn(CGRect(0, 0, 8, 8), {});
        EXPECT_EQ(pixelAt(*whole, 4, 1), red);
        EXPECT_EQ(pixelAt(*whole, 4, 6), green);
        const auto part = drawn(CGRect(2, 2, 4, 4), {.from = CGRect(0, 0, 2, 2)});
        EXPECT_EQ(pixelAt(*part, 3, 3), green);
        EXPECT_EQ(pixelAt(*part, 5, 5), green);
        EXPECT_EQ(pixelAt(*part, 1, 3) | pixelAt(*part, 6, 3) | pixelAt(*part, 3, 1), 0u);
        EXPECT_EQ(pixelAt(*drawn(CGRect(0, 0, 8, 8), {.fraction = 0.5}), 4, 1) >> 24, 0x80u);
        const auto mirrored = drawn(CGRect(0, 0, 8, 8), {.respectFlipped = false});
        EXPECT_EQ(pixelAt(*mirrored, 4, 1), isFlipped ? green : red);
    }
}

TEST(NSImage, DrawsNothingAroundAPartAndPartsOfShapesHoweverEnlarged) {
    const auto halves = CGImage::draw(4, 4, [](CGContext& c) {
                            c.draw(*plain(1, 1, green), CGRect(0, 0, 4, 2));
                            c.draw(*plain(1, 1, red), CGRect(0, 2, 4, 2));
                        })->nsImage();
    const auto svg = bytesOf("<svg xmlns='http://www.w3.org/2000/svg' width='4' height='4'>"
                             "<rect width='4' height='2' fill='#f00'/>"
                             "<rect y='2' width='4' height='2' fill='#0f0'/></svg>");
    const auto drawing = NSImage::create(CGSize(4, 4), true, [](const CGRect&) {
        fill(CGRect(0, 0, 4, 2), NSColor::red);
        fill(CGRect(0, 2, 4, 2), NSColor::green);
    });
    for (const bool isFlipped : {false, true}) {
        const auto enlarged = drawnIn(32, 32, isFlipped, [&] {
            halves->draw(CGRect(0, 0, 32, 32), {.from = CGRect(0, 0, 4, 2)});
        });
        expectPixels(*enlarged, [](auto, auto) { return green; });
        for (const auto& image : {NSImage::create(svg), drawing}) {
            const auto edge = drawnIn(32, 32, isFlipped, [&] {
                image->draw(CGRect(0, 0, 32, 32), {.from = CGRect(1.9995, 1.9995, 0.001, 0.001)});
            });
            expectPixels(*edge, [](auto, auto y) { return y < 16 ? red : green; });
        }
    }
}

TEST(NSImage, TakesDrawingsWithTheFocus) {
    const auto image = NSImage::create(plain(4, 4, 0x80000080), CGSize(4, 4));
    const auto tinted = NSImage::create(CGSize(4, 6));
    tinted->useFocus(
        [&] {
            image->draw(CGRect(0, 0, 4, 4));
            fill(tinted->rect(), NSColor::green);
            NSGraphicsContext::current()->setCompositingOperation(NSCompositingOperation::copy);
        },
        2);
    EXPECT_EQ(CGContext::current(), nullptr);
    EXPECT_EQ(tinted->representations().front().image->size(), CGSize(8, 12));
    image->useFocus([&] {
        fill(CGRect(0, 0, 2, 4), NSColor::blue); // over what was there
    });
    const auto drawn = image->cgImageForProposedRect();
    EXPECT_EQ(pixelAt(*drawn, 0, 0), blue);
    EXPECT_EQ(pixelAt(*drawn, 3, 0), 0x80000080u);
    const auto none = NSImage::create(CGSize());
    none->useFocus([] { fill(CGRect(0, 0, 2, 4), NSColor::blue); });
    EXPECT_EQ(none->cgImageForProposedRect(), nullptr);
    none->unlockFocus();
    const auto bad = NSImage::create(CGSize(4, 4), false,
                                     [](const CGRect&) { throw std::runtime_error("stop"); });
    EXPECT_THROW(bad->useFocus([] {}), std::runtime_error);
    EXPECT_EQ(CGContext::current(), nullptr);
    EXPECT_EQ(none->data(ImageExportFormat::png), std::nullopt);
    EXPECT_TRUE(image->data(ImageExportFormat::png));
}

TEST(NSImage, IsFoundByItsName) {
    const auto image = plain(2, 2, red)->nsImage();
    EXPECT_TRUE(image->setName("first") && image->setName("logo"));
    EXPECT_EQ(NSImage::named("logo"), image);
    EXPECT_EQ(NSImage::named("first"), nullptr);
    EXPECT_EQ(image->name(), "logo");
    EXPECT_FALSE(plain(1, 1, red)->nsImage()->setName("logo"));
    EXPECT_EQ(CGImage::named("logo")->size(), CGSize(2, 2));
    EXPECT_TRUE(image->setName(""));
    EXPECT_EQ(NSImage::named("logo"), nullptr);
    EXPECT_EQ(CGImage::named("../logo"), nullptr);
    EXPECT_EQ(NSImage::named(""), nullptr);
}

std::string pngText(const CGImage& image) { return textOf(image.pngData().value()); }

TEST(NSImage, IsFoundAmongResources) {
    const std::string id = makeUUIDString();
    const fs::path resources(NSBundle::mainBundle()->resourceURL().path());
    std::ofstream(resources / (id + ".png")) << pngText(*plain(8, 8, red));
    std::ofstream(resources / (id + "@2x.png")) << pngText(*plain(16, 16, green));
    for (const std::string& name : {id, id + ".png"}) {
        const auto resource = NSImage::named(name);
        ASSERT_TRUE(resource);
        EXPECT_EQ(resource->size(), CGSize(8, 8));
        EXPECT_EQ(resource->representations().size(), 2u);
    }
    fs::remove(resources / (id + ".png"));
    fs::remove(resources / (id + "@2x.png"));
    for (const std::string scale : {"", "@2x"})
        std::ofstream(resources / (id + scale + ".svg"))
            << "<svg xmlns='http://www.w3.org/2000/svg' width='8' height='8'/>";
    const auto shapes = NSImage::named(id);
    ASSERT_TRUE(shapes);
    EXPECT_EQ(shapes->size(), CGSize(8, 8));
    for (const std::string scale : {"", "@2x"})
        fs::remove(resources / (id + scale + ".svg"));
}

/// A desktop with the theme "Child", whose parent is "Parent", and folders of its own for all else.
class Icons : public testing::Test {
protected:
    Icons() {
        root.file("gtk-3.0/settings.ini", "[Settings]\ngtk-icon-theme-name=Child\n");
        root.file("icons/Child/index.theme",
                  "[Icon Theme]\nInherits=Parent,hicolor\n"
                  "Directories=16,32,64,wide,32@2,../outside\n"
                  "[16]\nSize=16\nType=Fixed\n[32]\nSize=30\nThreshold=3\n[64]\nSize=64\n"
                  "[wide]\nSize=20\nType=Scalable\nMinSize=8\nMaxSize=60\n"
                  "[32@2]\nSize=32\nScale=2\nType=Fixed\n[../outside]\nSize=32\n");
        const std::string only32 = "Directories=32\n[32]\nSize=32\n";
        root.file("icons/Parent/index.theme",
                  "[Icon Theme]\nInherits=hicolor,Child,Grandparent\n" + only32);
        root.file("icons/Grandparent/index.theme", "[Icon Theme]\n" + only32);
    }

    const TemporaryFolder root;
    const Variable home{"HOME", root.path().c_str()};
    const Variable data{"XDG_DATA_HOME", root.path().c_str()};
    const Variable configuration{"XDG_CONFIG_HOME", root.path().c_str()};
    const Variable shared{"XDG_DATA_DIRS", root.path().c_str()};
};

TEST_F(Icons, AreFoundByTheRulesOfThemes) {
    const char* const hicolor32 = "hicolor/32x32/apps";
    struct {
        const char* what;
        std::vector<std::pair<const char*, std::uint32_t>> folders;
        std::uint32_t color, colorAtTwo;
    } const table[] = {
        {"threshold", {{"Child/16", red}, {"Child/32", green}, {"Child/64", red}}, green, red},
        {"the first of two that fit", {{"Child/32", green}, {"Child/wide", red}}, green, red},
        {"any size", {{"Child/16", red}, {"Child/wide", green}}, green, green},
        {"the nearest", {{"Child/16", green}, {"Child/64", red}}, green, red},
        {"the scale", {{"Child/32@2", blue}, {"Child/64", red}, {"Child/32", green}}, green, blue},
        {"a child's before a fit", {{"Parent/32", red}, {"Child/64", green}}, green, green},
        {"a parent's", {{"Parent/32", green}, {hicolor32, red}}, green, green},
        {"the shared last", {{hicolor32, red}, {"Grandparent/32", green}}, green, green},
        {"without an index", {{"hicolor/64x64/apps", red}, {hicolor32, green}}, green, red},
        {"without a theme", {{".", green}}, green, green},
        {"never outside", {{"outside", red}}, 0, 0},
    };
    int number = 0;
    for (const auto& row : table) {
        const std::string name = "icon" + std::to_string(++number);
        for (const auto& [folder, color] : row.folders)
            root.file(std::string("icons/") + folder + "/" + name + ".png",
                      pngText(*plain(8, 8, color)));
        const auto icon = NSImage::named(name);
        const auto colorAt = [&](double side) {
            return icon ? pixelAt(*icon->cgImageForProposedRect(CGRect(0, 0, side, side)), 4, 4)
                        : 0;
        };
        EXPECT_EQ(colorAt(8), row.color) << row.what;
        EXPECT_EQ(icon ? icon->size() : CGSize(32, 32), CGSize(32, 32)) << row.what;
        const auto& last = icon ? icon->representations().back().image : nullptr;
        EXPECT_EQ(last ? pixelAt(*last, 4, 4) : 0, row.colorAtTwo) << row.what;
    }
    root.file("icons/hicolor/32x32/apps/tool.png", pngText(*plain(32, 32, blue)));
    root.folder("tool.app");
    const auto bundle = NSBundle::create(root.url("tool.app").path());
    EXPECT_EQ(applicationIcon(*bundle, 64)->size(), CGSize(64, 64));
}

TEST_F(Icons, OfShapesAreSharpAtAnySize) {
    root.file("secret.png", pngText(*plain(8, 8, blue)));
    const std::string shapes = "<svg xmlns='http://www.w3.org/2000/svg' width='16' height='8'>"
                               "<rect width='8' height='8' fill='#f00'/><image x='8' width='8' "
                               "height='8' href='file://" +
                               root.url("secret.png").path() + "'/></svg>";
    root.file("icons/Child/16/shapes.svg", shapes);
    const auto icon = NSImage::named("shapes");
    ASSERT_TRUE(icon);
    EXPECT_EQ(icon->size(), CGSize(32, 16));
    const auto drawn = icon->cgImageForProposedRect(CGRect(0, 0, 640, 320));
    ASSERT_EQ(drawn->size(), CGSize(640, 320));
    for (const std::int64_t y : {0, 160, 319}) {
        EXPECT_EQ(pixelAt(*drawn, 319, y), red);
        EXPECT_EQ(pixelAt(*drawn, 320, y), 0u) << "another file was read";
    }
    for (const char* broken : {"<svg", "<svg xmlns='http://www.w3.org/2000/svg'/>",
                               "<svg xmlns='http://www.w3.org/2000/svg' width='-1' height='1'/>"}) {
        root.file("icons/Child/16/broken.svg", broken);
        EXPECT_EQ(NSImage::named("broken"), nullptr) << broken;
    }
}

TEST(NSImage, DrawsSymbolsAtAnySize) {
    EXPECT_EQ(NSImage::systemSymbol("no.such.symbol"), nullptr);
    for (const std::string_view name : NSImage::systemSymbolNames()) {
        const auto symbol = NSImage::systemSymbol(name, "what it shows");
        EXPECT_TRUE(symbol->isTemplate());
        EXPECT_EQ(symbol->accessibilityDescription(), "what it shows");
        for (const double side : {12.0, 48.0}) {
            const auto drawn = symbol->cgImageForProposedRect(CGRect(0, 0, side, side));
            ASSERT_EQ(drawn->size(), CGSize(side, side));
            std::int64_t inked = 0;
            for (std::int64_t i = 3; i < drawn->bitmap().byteCount(); i += 4)
                inked += drawn->uint8Data()[i] > 90;
            EXPECT_GT(static_cast<double>(inked), side * 0.6) << name;
            EXPECT_LT(static_cast<double>(inked), side * side * 0.8) << name;
        }
    }
}

} // namespace
