#include <tests/Testing.h>

#include <zorvan/interface/NSApplication.h>
#include <zorvan/interface/NSImage.h>
#include <zorvan/interface/NSWindow.h>
#include <zorvan/interface/TintedButton.h>
#include <zorvan/media/CGContext.h>

using Type = NSEvent::EventType;

namespace {

std::optional<NSGradient> plain(const NSColor& color) { return color.gradient(); }

/// An opaque grey picture.
std::shared_ptr<NSImage> square(double side) {
    const auto pixels = static_cast<std::int64_t>(side);
    return NSImage::create(CGImage::draw(pixels, pixels, [&](CGContext& context) {
        context.setFillColor(CGColor::gray);
        context.fill({0, 0, side, side});
    }));
}

std::vector<std::uint8_t> pixels(const NSView& view) {
    const auto bitmap = view.render(2).value();
    return {bitmap.data(), bitmap.data() + bitmap.byteCount()};
}

std::string pixel(const NSView& view, double x, double y, double scale = 1) {
    const auto bitmap = view.render(scale).value();
    const std::uint8_t* at =
        bitmap.row(bitmap.height() - 1 - static_cast<std::int64_t>(y * scale)) +
        static_cast<std::int64_t>(x * scale) * 4;
    return RGBA(at[0] / 255.0, at[1] / 255.0, at[2] / 255.0, 1).hexString();
}

struct Redraws : NSViewObserver {
    explicit Redraws(std::string& where) : told(where) {}
    void needsDisplay(const CGRect&) override { told += "redraw "; }
    std::string& told;
};

class TintedButtonTest : public testing::Test {
protected:
    TintedButtonTest() {
        window->contentView()->addSubview(button);
        button->addObserver(redraws);
    }
    void send(Type type, CGPoint at) { window->sendEvent({.type = type, .locationInWindow = at}); }
    std::string take() { return std::exchange(told, {}); }

    std::string told;
    std::shared_ptr<NSWindow> window = NSWindow::create({200, 100});
    std::shared_ptr<TintedButton> button = TintedButton::create({20, 20, 60, 20});
    const std::shared_ptr<Redraws> redraws = std::make_shared<Redraws>(told);
    const CGPoint inside = {30, 30}, outside = {150, 30};
};

} // namespace

TEST_F(TintedButtonTest, BeginsWithoutColours) {
    const auto fresh = TintedButton::create();
    EXPECT_FALSE(fresh->trackingArea() || fresh->expandedSize());
    const auto cell = fresh->tintedButtonCell();
    ASSERT_TRUE(cell);
    EXPECT_FALSE(cell->isHover() || cell->isPressed() || cell->imageTintColor() ||
                 cell->textDisabledColor() || cell->backgroundHoverGradient() ||
                 cell->backgroundGradientAngle() || cell->backgroundRadius());
    const auto other = NSButton::create();
    other->setCell(cell);
    EXPECT_EQ(cell->controlView(), other);
    EXPECT_EQ(fresh->cell(), nullptr) << "a cell has one control";
    EXPECT_EQ(TintedButtonCell::create(NSButtonCell::Image{square(4)})->imagePosition(),
              NSCellImagePosition::imageOnly);
    EXPECT_EQ(TintedButtonCell::create(NSButtonCell::Text{"t"})->title(), "t");
}

TEST_F(TintedButtonTest, PassesItsPropertiesToItsCell) {
    take();
    button->setImagePressedColor(NSColor::red);
    button->setBackgroundTintGradient(plain(NSColor::blue));
    button->setBackgroundRadius(3);
    EXPECT_EQ(take(), "redraw redraw redraw ");
    const auto cell = button->tintedButtonCell();
    EXPECT_EQ(cell->imagePressedColor(), NSColor::red);
    EXPECT_EQ(cell->backgroundTintGradient(), plain(NSColor::blue));
    EXPECT_EQ(button->backgroundRadius(), 3);
    cell->setTextHoverColor(NSColor::green);
    EXPECT_EQ(button->textHoverColor(), NSColor::green);
    button->setCell(NSButtonCell::create(NSButtonCell::Text{"plain"}));
    take();
    EXPECT_EQ(button->tintedButtonCell(), nullptr);
    EXPECT_FALSE(button->imagePressedColor());
    button->setImagePressedColor(NSColor::red);
    EXPECT_FALSE(button->imagePressedColor());
    EXPECT_EQ(take(), "");
}

TEST(TintedButtonCoding, ReplacesTheCellAndKeepsWhatWasSet) {
    const auto plainButton = NSButton::create({1, 2, 70, 30});
    plainButton->setTitle("Save");
    plainButton->setImage(NSImage::systemSymbol("star", "star"));
    plainButton->setImagePosition(NSCellImagePosition::imageAbove);
    plainButton->setEnabled(false);
    const auto decoded = TintedButton::create(TintedButton::Coder{plainButton->encode()});
    ASSERT_TRUE(decoded->tintedButtonCell() && decoded->image());
    EXPECT_EQ(decoded->encode(), plainButton->encode());
    EXPECT_EQ(decoded->frame(), CGRect(1, 2, 70, 30));
    EXPECT_EQ(decoded->imagePosition(), NSCellImagePosition::imageAbove);
    EXPECT_EQ(decoded->image()->accessibilityDescription(), "star");
    EXPECT_FALSE(decoded->isEnabled() || decoded->textTintColor());

    int acts = 0;
    TintedButton::create({.title = "Go", .action = Selector("go", [&] { ++acts; })})
        ->performClick();
    EXPECT_EQ(acts, 1);
    // Bytes from elsewhere.
    const auto odd = TintedButton::create(TintedButton::Coder{PropertyList::Dictionary{
        {"frame", "wide"}, {"title", 5}, {"imagePosition", 99}, {"imageName", "no such picture"}}});
    EXPECT_EQ(odd->frame(), CGRect());
    EXPECT_EQ(odd->title(), "");
    EXPECT_EQ(odd->imagePosition(), NSCellImagePosition::noImage);
}

// Colours by state; those of image, text and background are chosen alike. The pictures show them
// all.

TEST(TintedButtonColours, ComeInTheirOrder) {
    const auto button = TintedButton::create({0, 0, 40, 20});
    const NSColor tint = NSColor::red, hover = NSColor::green, pressed = NSColor::blue,
                  disabled = NSColor::yellow;
    struct {
        bool isEnabled, isPressed, isHover;
        NSColor withAll;
    } const states[] = {
        {true, false, false, tint},  {true, false, true, hover},      {true, true, false, pressed},
        {true, true, true, pressed}, {false, false, false, disabled}, {false, true, true, disabled},
    };
    for (const bool hasAll : {false, true}) {
        button->setBackgroundTintGradient(plain(tint));
        if (hasAll) {
            button->setBackgroundHoverGradient(plain(hover));
            button->setBackgroundPressedGradient(plain(pressed));
            button->setBackgroundDisabledGradient(plain(disabled));
        }
        for (const auto& [isEnabled, isPressed, isHover, withAll] : states) {
            button->setEnabled(isEnabled);
            button->tintedButtonCell()->setIsPressed(isPressed);
            button->tintedButtonCell()->setIsHover(isHover);
            EXPECT_EQ(pixel(*button, 2, 10), (hasAll ? withAll : tint).hexString());
        }
    }
}

TEST(TintedButtonColours, FallBackToTheLookOfAnyButton) {
    const auto any = NSButton::create({0, 0, 60, 26});
    const auto tinted = TintedButton::create({0, 0, 60, 26});
    for (const auto& button : std::vector<std::shared_ptr<NSButton>>{any, tinted}) {
        button->setTitle("Title");
        button->setImage(NSImage::systemSymbol("star"));
    }
    EXPECT_EQ(pixels(*tinted), pixels(*any));
    // Without a tint, a colour for one state is no colour for the others.
    tinted->setTextHoverColor(NSColor::red);
    tinted->setImagePressedColor(NSColor::red);
    tinted->setBackgroundDisabledGradient(plain(NSColor::red));
    EXPECT_EQ(pixels(*tinted), pixels(*any));
    tinted->tintedButtonCell()->setIsHover(true);
    EXPECT_NE(pixels(*tinted), pixels(*any));
}

TEST(TintedButtonBezel, IsARoundedRectangleOfTheGradient) {
    const auto button = TintedButton::create({0, 0, 60, 20});
    button->setBackgroundTintGradient(NSGradient::make({.colors = {NSColor::red, NSColor::blue}}));
    const auto isRed = [&](double x, double y) {
        const auto color = RGBA::make({.hexString = pixel(*button, x, y, 2)}).value();
        return color.r > color.b;
    };
    EXPECT_TRUE(isRed(1, 10) && isRed(0.2, 0.2) && !isRed(58, 10));
    button->setBackgroundGradientAngle(180);
    EXPECT_TRUE(isRed(58, 10) && !isRed(1, 10));

    button->setBackgroundTintGradient(plain(NSColor::black));
    const auto shape = [&](std::optional<double> radius) {
        button->setBackgroundRadius(radius);
        return pixels(*button);
    };
    EXPECT_EQ(shape(100), shape(10));
    EXPECT_NE(shape(9), shape(10));
    EXPECT_EQ(shape(std::nullopt), shape(0));
    EXPECT_EQ(shape(-3), shape(0));
    button->setFrame({0, 0, 0, 20});
    EXPECT_FALSE(button->render());
}

TEST(TintedButtonTitle, IsMeasuredByTextAndFontWhateverWasMeasuredBefore) {
    const auto button = TintedButton::create();
    const auto width = [&](std::string_view text, double size, const NSColor& color) {
        button->setAttributedTitle(NSAttributedString(
            text, {{AttributeName::font, TextFont{.family = "sans-serif", .size = size}},
                   {AttributeName::foregroundColor, TextColor(color.rgba())}}));
        return button->intrinsicContentSize().width;
    };
    const double small = width("title", 11, NSColor::black),
                 large = width("title", 17, NSColor::black);
    EXPECT_LT(small, large);
    EXPECT_LT(width("titl", 11, NSColor::black), small);
    for (int i = 0; i < 40; ++i) {
        EXPECT_EQ(width("title", 11, NSColor::red), small);
        EXPECT_EQ(width("title", 17, NSColor::red), large);
        width(std::to_string(i), 13, NSColor::black);
    }
}

TEST_F(TintedButtonTest, GrowsByWhatItIsExpanded) {
    button->setTitle("Title");
    button->setImage(square(10));
    const CGSize natural = button->intrinsicContentSize();
    window->layoutIfNeeded();
    button->setExpandedSize(CGSize(10, 4));
    EXPECT_TRUE(button->needsLayout());
    EXPECT_EQ(button->intrinsicContentSize(), CGSize(natural.width + 10, natural.height + 4));

    // The interior stands in a frame that is smaller by half of it on each side.
    struct Cell : TintedButtonCell {
        Cell() : TintedButtonCell(Key{}) {}
        void drawImage(const NSImage&, const CGRect& frame, const NSControl&) const override {
            drawn.push_back(frame);
        }
        CGRect drawTitle(const NSAttributedString&, const CGRect& frame,
                         const NSControl&) const override {
            drawn.push_back(frame);
            return frame;
        }
        mutable std::vector<CGRect> drawn;
    };
    const auto cell = std::make_shared<Cell>();
    cell->setTitle("a title much too long for its button");
    cell->setImage(square(10));
    button->setCell(cell);
    button->setExpandedSize(CGSize(20, 4));
    ASSERT_TRUE(button->render());
    EXPECT_EQ(cell->drawn, (std::vector{CGRect(10, 5, 10, 10), CGRect(25, 2, 25, 16)}));
}

TEST(TintedImage, TakesTheColourAndKeepsTheOpacity) {
    const auto source = NSImage::create(CGImage::draw(4, 2, [](CGContext& context) {
        context.setFillColor(CGColor::create({.gray = 1, .alpha = 0.5}));
        context.fill({0, 0, 2, 2});
    }));
    source->setTemplate(true);
    source->setAlignmentRect({1, 0, 2, 1});
    const auto tinted = tintedImage(*source, NSColor::red, 2);
    EXPECT_EQ(tinted->size(), CGSize(8, 4));
    EXPECT_EQ(tinted->alignmentRect(), CGRect(2, 0, 4, 2));
    EXPECT_FALSE(tinted->isTemplate());
    EXPECT_TRUE(source->isTemplate());
    const auto image = tinted->cgImageForProposedRect();
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), CGSize(8, 4));
    const std::uint8_t* left = image->uint8Data();
    EXPECT_NEAR(left[0], 128, 1);
    EXPECT_EQ(left[1], 0);
    EXPECT_NEAR(left[3], 128, 1);
    EXPECT_EQ(left[7 * 4 + 3], 0);
    const auto nothing = NSImage::create(CGSize());
    EXPECT_EQ(tintedImage(*nothing, NSColor::red, 3), nothing);
}

// Events

TEST_F(TintedButtonTest, FollowsTheMouse) {
    const auto cell = button->tintedButtonCell();
    button->setAction(
        Selector("act", [&] { told += cell->isPressed() ? "act pressed " : "act "; }));
    struct {
        Type type;
        CGPoint at;
        bool isHover, isPressed;
        std::string told;
    } const table[] = {
        {Type::mouseMoved, inside, true, false, "redraw "},
        {Type::leftMouseDown, inside, true, true, "redraw act pressed "},
        {Type::leftMouseDragged, outside, false, true, "redraw "},
        {Type::leftMouseUp, outside, false, false, "redraw "},
    };
    take();
    for (const auto& row : table) {
        send(row.type, row.at);
        EXPECT_EQ(cell->isHover(), row.isHover);
        EXPECT_EQ(cell->isPressed(), row.isPressed);
        EXPECT_EQ(take(), row.told);
    }
    button->setEnabled(false);
    take();
    send(Type::leftMouseDown, inside);
    EXPECT_FALSE(cell->isPressed());
    EXPECT_EQ(take(), "redraw ") << "by the hover alone";
}

TEST_F(TintedButtonTest, KeepsItsTrackingAreaOverItsBounds) {
    const auto first = button->trackingArea();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->rect(), CGRect(0, 0, 60, 20));
    EXPECT_EQ(first->options().rawValue, 65u);
    EXPECT_EQ(first->owner(), button);
    EXPECT_FALSE(first->userInfo());
    button->setFrame({20, 20, 150, 20});
    EXPECT_NE(button->trackingArea(), first);
    EXPECT_EQ(button->trackingAreas(), std::vector{button->trackingArea()});
    EXPECT_EQ(button->trackingArea()->rect(), CGRect(0, 0, 150, 20));
    send(Type::mouseMoved, outside);
    EXPECT_TRUE(button->tintedButtonCell()->isHover());
    button->setFrame({20, 20, 60, 20});
    send(Type::mouseMoved, outside);
    EXPECT_FALSE(button->tintedButtonCell()->isHover());
}

TEST_F(TintedButtonTest, RedrawsWhenAnyWindowBecomesMainWhileItIsInOne) {
    const auto other = NSWindow::create({10, 10});
    take();
    other->makeMainWindow();
    EXPECT_EQ(take(), "redraw ");
    other->resignMainWindow();
    EXPECT_EQ(take(), "redraw ");
    // Into another window: each of the two is told of once.
    other->contentView()->addSubview(button);
    take();
    window->makeMainWindow();
    EXPECT_EQ(take(), "redraw ");
    button->removeFromSuperview();
    take();
    window->close();
    EXPECT_EQ(take(), "");
}

TEST_F(TintedButtonTest, EndsItsSubscriptionsWithItself) {
    const auto become = button->windowDidBecomeMainSubscriber();
    const auto resign = button->windowDidResignMainSubscriber();
    button->removeFromSuperview();
    window->contentView()->addSubview(button);
    EXPECT_TRUE(become->observer() && resign->observer());
    window->setContentView(nullptr);
    EXPECT_FALSE(become->observer() || resign->observer());
    window->contentView()->addSubview(button);
    // The window goes, the button stays.
    window.reset();
    EXPECT_EQ(button->window(), nullptr);
    EXPECT_FALSE(become->observer() || resign->observer());
    const auto second = NSWindow::create({100, 100});
    second->contentView()->addSubview(button);
    EXPECT_TRUE(become->observer());
    std::weak_ptr gone = button;
    button.reset();
    second->setContentView(nullptr);
    EXPECT_TRUE(gone.expired());
    EXPECT_FALSE(become->observer() || resign->observer());
}

// What ends while an action is performed

TEST_F(TintedButtonTest, MayHaveLostItsTargetAndRemoveItselfInItsAction) {
    const auto cell = button->tintedButtonCell();
    button->setTarget(std::make_shared<int>()); // which has gone by now
    button->setAction(Selector("act", [] { std::abort(); }));
    send(Type::leftMouseDown, inside);
    EXPECT_TRUE(cell->isPressed());
    send(Type::leftMouseUp, inside);
    EXPECT_FALSE(cell->isPressed());
    button->setTarget({});
    button->setAction(Selector("remove", [this] { button->removeFromSuperview(); }));
    send(Type::leftMouseDown, inside);
    EXPECT_EQ(button->window(), nullptr);
    EXPECT_TRUE(cell->isPressed() && cell->isHover());
    // The release and the leaving still come.
    send(Type::leftMouseUp, inside);
    EXPECT_FALSE(cell->isPressed() || cell->isHover());
}

TEST_F(TintedButtonTest, MayEndInItsAction) {
    // The action releases the button, its window, and itself.
    std::weak_ptr<TintedButton> gone = button;
    button->setAction(Selector("end", [this, gone] {
        const auto self = gone.lock();
        self->setAction(std::nullopt);
        self->removeFromSuperview();
        window->close();
        window.reset();
        button.reset();
    }));
    const auto sender = window;
    sender->orderFront();
    sender->sendEvent({.type = Type::leftMouseDown, .locationInWindow = inside});
    sender->sendEvent({.type = Type::leftMouseUp, .locationInWindow = inside});
    EXPECT_TRUE(gone.expired());
}
