#include <tests/Testing.h>

#include <zorvan/interface/NSApplication.h>
#include <zorvan/interface/NSImage.h>
#include <zorvan/interface/NSWindow.h>
#include <zorvan/interface/TintedButton.h>
#include <zorvan/media/CGContext.h>
#include <zorvan/media/CGImage.h>

using Type = NSEvent::EventType;

namespace {

std::vector<std::uint8_t> pixels(const NSView& view) {
    const auto bitmap = view.render(2).value();
    return {bitmap.data(), bitmap.data() + bitmap.byteCount()};
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

TEST_F(TintedButtonTest, PassesItsPropertiesToItsCell) {
    EXPECT_FALSE(button->imagePressedColor() || button->backgroundHoverGradient() ||
                 button->backgroundGradientAngle() || button->expandedSize());
    take();
    button->setImagePressedColor(NSColor::red);
    button->setBackgroundTintGradient(NSColor::blue.gradient());
    button->setBackgroundRadius(3);
    button->setNeedsDisplay(CGRect(500, 0, 15, 5)); // outside
    EXPECT_EQ(take(), "redraw redraw redraw ");
    const auto cell = button->tintedButtonCell();
    EXPECT_EQ(cell->imagePressedColor(), NSColor::red);
    EXPECT_EQ(button->backgroundTintGradient(), NSColor::blue.gradient());
    EXPECT_EQ(button->backgroundRadius(), 3);
    const auto other = NSButton::create();
    other->setCell(cell);
    EXPECT_EQ(button->cell(), nullptr) << "a cell has one control";
    button->setCell(NSButtonCell::create(NSButtonCell::Text{"plain"}));
    take();
    EXPECT_EQ(button->tintedButtonCell(), nullptr);
    button->setImagePressedColor(NSColor::red);
    EXPECT_FALSE(button->imagePressedColor());
    EXPECT_EQ(take(), "");
    EXPECT_EQ(TintedButtonCell::create(NSButtonCell::Image{NSImage::create(CGSize(4, 4))})
                  ->imagePosition(),
              NSCellImagePosition::imageOnly);
    EXPECT_EQ(TintedButtonCell::create(NSButtonCell::Text{"t"})->title(), "t");
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
    EXPECT_FALSE(decoded->isEnabled() || decoded->textTintColor());
    const auto cell = TintedButtonCell::create(TintedButtonCell::Coder{plainButton->encode()});
    EXPECT_EQ(cell->encode(), decoded->tintedButtonCell()->encode());

    const Selector go("go", [] {});
    EXPECT_EQ(TintedButton::create({.title = "Go", .action = go})->action(), go);
    // Bytes from elsewhere.
    const auto odd = TintedButton::create(TintedButton::Coder{PropertyList::Dictionary{
        {"frame", "wide"}, {"title", 5}, {"imagePosition", 99}, {"imageName", "no such picture"}}});
    EXPECT_EQ(odd->frame(), CGRect());
    EXPECT_EQ(odd->title(), "");
    EXPECT_EQ(odd->imagePosition(), NSCellImagePosition::noImage);
}

// Which colour comes when, and that without one a button looks as any other, is in the pictures.

TEST(TintedButtonBezel, HasRoundCornersThatFit) {
    const auto button = TintedButton::create({0, 0, 60, 20});
    button->setBackgroundTintGradient(NSColor::black.gradient());
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
    const double small = width("title", 11, NSColor::black);
    EXPECT_LT(width("titl", 11, NSColor::black), small);
    for (int i = 0; i < 40; ++i) {
        EXPECT_GT(width("title", 17, NSColor::red), small);
        EXPECT_EQ(width("title", 11, NSColor::red), small);
        width(std::to_string(i), 13, NSColor::black);
    }
}

TEST_F(TintedButtonTest, GrowsByWhatItIsExpanded) {
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
    cell->setImage(NSImage::create(CGSize(10, 10)));
    button->setCell(cell);
    const CGSize natural = button->intrinsicContentSize();
    window->layoutIfNeeded();
    button->setExpandedSize(CGSize(20, 4));
    EXPECT_TRUE(button->needsLayout());
    EXPECT_EQ(button->intrinsicContentSize(), CGSize(natural.width + 20, natural.height + 4));
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
    EXPECT_TRUE(!tinted->isTemplate() && source->isTemplate());
    const auto image = tinted->cgImageForProposedRect();
    ASSERT_TRUE(image && image->size() == CGSize(8, 4));
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
    // Over its bounds, whatever they are.
    button->setFrame({20, 20, 150, 20});
    const auto area = button->trackingArea();
    EXPECT_EQ(button->trackingAreas(), std::vector{area});
    EXPECT_EQ(area->rect(), CGRect(0, 0, 150, 20));
    EXPECT_EQ(area->options().rawValue, 65u);
    EXPECT_EQ(area->owner(), button);
    EXPECT_FALSE(area->userInfo());
}

TEST_F(TintedButtonTest, RedrawsWhenAnyWindowBecomesMainWhileItIsInOne) {
    const auto become = button->windowDidBecomeMainSubscriber();
    const auto resign = button->windowDidResignMainSubscriber();
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
    EXPECT_FALSE(become->observer() || resign->observer());
    window->contentView()->addSubview(button);
    EXPECT_TRUE(become->observer() && resign->observer());
    window->close();
    window.reset(); // the window goes, the button stays
    EXPECT_EQ(button->window(), nullptr);
    EXPECT_FALSE(become->observer() || resign->observer());
    other->contentView()->addSubview(button);
    const std::weak_ptr gone = button;
    button.reset();
    other->setContentView(nullptr);
    EXPECT_TRUE(gone.expired());
    EXPECT_FALSE(become->observer() || resign->observer());
}

// What ends while an action is performed

TEST_F(TintedButtonTest, MayRemoveItselfInItsAction) {
    const auto cell = button->tintedButtonCell();
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

// The looks of tinted buttons, one sheet for each scale: a row for each set of colours, a column
// for each state. With ZORVAN_WRITE_GOLDEN set, the sheets are written instead of compared; look at
// them then.

namespace {

constexpr double left = 160, columnWidth = 148, rowHeight = 44;

struct State {
    const char* name;
    bool isEnabled, isHover, isPressed;
};
constexpr State states[] = {{"normal", true, false, false},
                            {"hovered", true, true, false},
                            {"pressed", true, true, true},
                            {"disabled", false, true, true}}; // which comes before the others

NSColor hex(const char* text) { return NSColor::make({.hexString = text}).value(); }

std::optional<NSGradient> gradient(const char* from, const char* to) {
    return NSGradient::make({.colors = {hex(from), hex(to)}});
}

struct Look {
    const char* name;
    /// What has colours: "t" text, "i" image, "b" background; in capitals for every state.
    std::string_view coloured;
    double angle = 0, radius = 8;
    bool isExpanded = false;

    bool has(std::string_view parts) const { return coloured.find_first_of(parts) != parts.npos; }
    void dress(TintedButton& button) const {
        if (has("tT"))
            button.setTextTintColor(hex("#1D4ED8"));
        if (has("T")) {
            button.setTextHoverColor(hex("#0891B2"));
            button.setTextPressedColor(hex("#BE123C"));
            button.setTextDisabledColor(hex("#A8A29E"));
        }
        if (has("iI"))
            button.setImageTintColor(hex("#D97706"));
        if (has("I")) {
            button.setImageHoverColor(hex("#16A34A"));
            button.setImagePressedColor(hex("#DC2626"));
            button.setImageDisabledColor(hex("#A8A29E"));
        }
        if (has("bB"))
            button.setBackgroundTintGradient(gradient("#BFDBFE", "#60A5FA"));
        if (has("B")) {
            button.setBackgroundHoverGradient(gradient("#DDD6FE", "#A78BFA"));
            button.setBackgroundPressedGradient(gradient("#FBCFE8", "#F472B6"));
            button.setBackgroundDisabledGradient(gradient("#F5F5F4", "#D6D3D1"));
        }
        button.setBackgroundRadius(radius);
        button.setBackgroundGradientAngle(angle);
        if (isExpanded) {
            button.setImagePosition(NSCellImagePosition::imageRight);
            button.setExpandedSize(CGSize(20, 6));
        }
    }
};
const Look looks[] = {
    {"no colour", ""},
    {"text tint", "t"},
    {"text, all states", "T"},
    {"image tint", "i"},
    {"image, all states", "I"},
    {"background tint", "b"},
    {"background, all", "B"},
    {"angle 90", "B", 90},
    {"angle 45, radius 100", "B", 45, 100},
    {"everything", "TIB"},
    {"expanded, image right", "TB", 0, 8, true},
};

std::shared_ptr<NSButton> label(const char* text, const CGRect& frame) {
    const auto button = NSButton::create(frame);
    button->setTitle(text);
    button->setBordered(false);
    return button;
}

/// The buttons of a sheet, row by row.
struct Sheet {
    Sheet() {
        const double height = rowHeight * static_cast<double>(std::size(looks)) + 36;
        view->setFrame({0, 0, left + columnWidth * static_cast<double>(std::size(states)), height});
        double x = left, y = height - 32;
        for (const State& state : states) {
            view->addSubview(label(state.name, {x, y, columnWidth, 24}));
            x += columnWidth;
        }
        for (const Look& look : looks) {
            y -= rowHeight;
            view->addSubview(label(look.name, {0, y + 10, left, 24}));
            x = left;
            for (const State& state : states) {
                addButton(look, state, {x, y, columnWidth, rowHeight});
                x += columnWidth;
            }
        }
    }
    void addButton(const Look& look, const State& state, const CGRect& cell) {
        const auto button = TintedButton::create({.title = "Favourite"});
        button->setImage(NSImage::systemSymbol("star.fill"));
        button->setImagePosition(NSCellImagePosition::imageLeft);
        look.dress(*button);
        button->setEnabled(state.isEnabled);
        button->tintedButtonCell()->setIsHover(state.isHover);
        button->tintedButtonCell()->setIsPressed(state.isPressed);
        const CGSize size = button->fittingSize();
        button->setFrame({std::floor(cell.midX() - size.width / 2),
                          std::floor(cell.midY() - size.height / 2), size.width, size.height});
        view->addSubview(button);
        buttons.push_back(button);
    }

    std::shared_ptr<NSView> view = NSView::create();
    std::vector<std::shared_ptr<TintedButton>> buttons;
};

/// One pixel for 8 x 8 points: versions of the text's libraries put its dots a fraction of a point
/// elsewhere, which such squares hardly see.
CGImage::Pointer coarse(const CGImage& image, int scale) {
    return image.resizing(image.size() * (0.125 / scale));
}

/// How far two such pictures are apart in the mean where a button is.
double difference(const CGImage& a, const CGImage& b, const CGRect& frame) {
    const auto square = [](double points) { return static_cast<std::int64_t>(points / 8); };
    double sum = 0;
    int count = 0;
    for (std::int64_t y = square(frame.minY()); y <= square(frame.maxY()); ++y)
        for (std::int64_t i = square(frame.minX()) * 4; i < square(frame.maxX()) * 4 + 4; ++i) {
            const std::int64_t row = a.height() - 1 - y;
            sum += std::abs(a.bitmap().row(row)[i] - b.bitmap().row(row)[i]);
            ++count;
        }
    return sum / count;
}

} // namespace

TEST(TintedButtonPictures, AreAsTheyWereApproved) {
    const Sheet sheet;
    for (const int scale : {1, 2}) {
        const auto image = CGImage::create(sheet.view->render(scale).value());
        const std::string path = GOLDEN "/tinted-buttons@" + std::to_string(scale) + "x.png";
        if (std::getenv("ZORVAN_WRITE_GOLDEN")) {
            const Data png = image->pngData().value();
            std::ofstream(path, std::ios::binary)
                .write(reinterpret_cast<const char*>(png.data()), std::ssize(png));
        }
        const auto golden = CGImage::image(URL({.fileURLWithPath = path}));
        ASSERT_TRUE(golden);
        ASSERT_EQ(image->size(), golden->size());
        const auto now = coarse(*image, scale), approved = coarse(*golden, scale);
        for (std::size_t i = 0; i < sheet.buttons.size(); ++i)
            EXPECT_LT(difference(*now, *approved, sheet.buttons[i]->frame()), 0.6)
                << looks[i / std::size(states)].name << ", " << states[i % std::size(states)].name;
    }
}
