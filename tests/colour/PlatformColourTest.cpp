#include <tests/Testing.h>

#include <zorvan/colour/HexNSColorTransformer.h>
#include <zorvan/colour/NSColor.h>
#include <zorvan/colour/NSGradient.h>
#include <zorvan/colour/RGB.h>

TEST(NSColor, ReadsAndWritesHexText) {
    EXPECT_EQ(NSColor::make({.hexString = "#F00"}), NSColor::red);
    EXPECT_EQ(NSColor::make({.hexString = "red"}), std::nullopt);
    EXPECT_EQ(NSColor::orange.hexString(), "#FF7F00");
    EXPECT_EQ(NSColor::clear.hexString(), "#00000000");
    EXPECT_EQ(NSColor::brown.rgba(), RGBA(0.6, 0.4, 0.2, 1));
    EXPECT_EQ(NSColor(RGBA(2, -1, NAN, 5)).rgba(), RGBA(1, 0, 0, 1));
}

TEST(NSColor, RemembersTheSpaceItWasMadeIn) {
    EXPECT_EQ(NSColor::darkGray.colorSpace(), ColorSpace::gray);
    EXPECT_NE(NSColor::white, NSColor(RGBA::white));
    EXPECT_EQ(NSColor::gray.withAlphaComponent(0.25), NSColor({.white = 0.5, .alpha = 0.25}));
    EXPECT_EQ(NSColor::gray.blended(0.5, NSColor::white), NSColor({.white = 0.75, .alpha = 1}));
    EXPECT_EQ(NSColor::black.blended(0.5, NSColor::red).rgba(), RGBA(0.5, 0, 0, 1));
    EXPECT_EQ(NSColor::red.blended(7, NSColor::blue), NSColor::blue);
    EXPECT_EQ(NSColor::red.blended(NAN, NSColor::blue), NSColor::red);
}

TEST(NSColor, BlendsTowardsTransparency) {
    for (const NSColor& color :
         {NSColor::orange, NSColor::lightGray, NSColor(RGBA(0.1, 0.7, 0.3, 0.9))}) {
        EXPECT_EQ(color.withAlphaBlending(0), color.withAlphaComponent(0));
        EXPECT_EQ(color.withAlphaBlending(0.25).withAlphaComponent(color.alphaComponent()), color);
        EXPECT_DOUBLE_EQ(color.withAlphaBlending(0.25).alphaComponent(),
                         0.25 * color.alphaComponent());
    }
}

TEST(CGColor, IsMadeFromEachModel) {
    EXPECT_EQ(CGColor::create({.gray = 0.5, .alpha = 0.25}).components(),
              (std::vector<double>{0.5, 0.25}));
    EXPECT_EQ(CGColor::create({.hexString = "#10F8"})->components(),
              (std::vector<double>{1 / 15.0, 0, 1, 8 / 15.0}));
    EXPECT_EQ(CGColor::create({.hexString = "00F"}), std::nullopt);
    EXPECT_EQ(RGB(255, 0, 51).cpColor(), NSColor(RGBA(1, 0, 0.2, 1)));
    EXPECT_EQ(RGB(255, 0, 51).cgColor().nsColor(), NSColor(RGBA(1, 0, 0.2, 1)));
}

TEST(CGColor, RandomChannelsAreHundredths) {
    std::set<double> seen;
    for (int i = 0; i < 2000; ++i) {
        const RGBA c = CGColor::randomColor().rgba();
        EXPECT_EQ(c.a, 1);
        seen.insert({c.r, c.g, c.b});
    }
    EXPECT_EQ(seen.size(), 100U);
    EXPECT_EQ(*seen.rbegin(), 0.99);
}

TEST(Gradients, SpaceTheirStops) {
    const std::vector colors{CGColor::red, CGColor::gray, CGColor::blue};
    EXPECT_EQ(CGGradient::create({.colors = colors})->locations(),
              (std::vector<double>{0, 0.5, 1}));
    EXPECT_EQ(CGGradient::create({.startingColor = CGColor::red, .endingColor = CGColor::blue}),
              CGGradient::create({.colors = {CGColor::red, CGColor::blue}}));
}

TEST(Gradients, RefuseWhatIsNoGradient) {
    const std::vector colors{CGColor::red, CGColor::blue};
    EXPECT_FALSE(CGGradient::create({.colors = {}}));
    for (const std::vector<double>& locations :
         std::vector<std::vector<double>>{{}, {0}, {0, 0.5, 1}, {0, 1.01}, {-0.01, 1}, {0, NAN}})
        EXPECT_FALSE(CGGradient::create({.colors = colors, .locations = locations}));
    EXPECT_TRUE(CGGradient::create({.colors = colors, .locations = std::vector{1.0, 0.0}}));
    EXPECT_FALSE(NSGradient::make({.colors = {NSColor::red}, .locations = std::vector{2.0}}));
}

TEST(Gradients, ListTheirStopsInOrder) {
    const auto gradient = NSGradient::make(
        {.colors = {NSColor::red, NSColor::white}, .locations = std::vector{0.25, 0.75}});
    ASSERT_TRUE(gradient);
    EXPECT_EQ(gradient->numberOfColorStops(), 2);
    EXPECT_EQ(gradient->colorStop(1), (NSGradient::Stop{NSColor::white, 0.75}));
    EXPECT_EQ(gradient->colorStops(),
              (ColorStops{{CGColor::red, NSColor::white.cgColor()}, {0.25, 0.75}}));
    EXPECT_EQ(gradient->cgGradient()->colorStops(), gradient->colorStops());
    EXPECT_DEATH((void)gradient->colorStop(2), "^A gradient of 2 has no colour stop at 2.\n$");
    EXPECT_DEATH((void)gradient->colorStop(-1), "^A gradient of 2 has no colour stop at -1.\n$");
    EXPECT_EQ(NSColor::red.gradient()->colorStop(0), (NSGradient::Stop{NSColor::red, 0}));
}

TEST(HexNSColorTransformer, GoesBothWays) {
    const HexNSColorTransformer transformer;
    const auto forward = [&](std::any value) {
        const std::any result = transformer.transformedValue(value);
        return result.has_value() ? std::optional(std::any_cast<NSColor>(result)) : std::nullopt;
    };
    EXPECT_EQ(forward(std::string("#F00")), NSColor::red);
    EXPECT_EQ(forward("#F00F"), NSColor::red);
    EXPECT_EQ(forward(std::string_view("#00F")), NSColor::blue);
    EXPECT_EQ(forward(std::string("red")), std::nullopt);
    EXPECT_EQ(forward(42), NSColor::black);
    EXPECT_EQ(forward(static_cast<const char*>(nullptr)), NSColor::black);
    const auto backward = [&](std::any value) {
        return std::any_cast<std::string>(transformer.reverseTransformedValue(value));
    };
    EXPECT_EQ(backward(NSColor::white.withAlphaComponent(0.5)), "#FFFFFF7F");
    EXPECT_EQ(backward(std::string("#F00")), "#000000");
    EXPECT_EQ(HexNSColorTransformer::transformedValueClass(), typeid(NSColor));
}

TEST(HexNSColorTransformer, RegistersOnceWhoeverAsks) {
    const std::string name = "HexNSColorTransformer";
    EXPECT_FALSE(NSValueTransformer::addValueTransformer(nullptr, name));
    EXPECT_EQ(NSValueTransformer::valueTransformer(name), nullptr);
    std::vector<std::shared_ptr<const NSValueTransformer>> found(8);
    {
        std::vector<std::jthread> threads;
        for (auto& slot : found)
            threads.emplace_back([&slot, &name] {
                HexNSColorTransformer::registerIfNeeded();
                slot = NSValueTransformer::valueTransformer(name);
            });
    }
    ASSERT_NE(found.front(), nullptr);
    EXPECT_EQ(std::set(found.begin(), found.end()).size(), 1U);
    NSValueTransformer::setValueTransformer(nullptr, name);
    EXPECT_EQ(NSValueTransformer::valueTransformer(name), nullptr);
    const auto own = std::make_shared<const HexNSColorTransformer>();
    NSValueTransformer::setValueTransformer(own, name);
    HexNSColorTransformer::registerIfNeeded();
    EXPECT_EQ(NSValueTransformer::valueTransformer(name), own);
}
