#include <tests/Testing.h>

#include <zorvan/interface/TintedButton.h>
#include <zorvan/media/CGImage.h>
#include <zorvan/media/NSImage.h>

#include <array>

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
                            {"disabled", false, false, false}};

NSColor hex(const char* text) { return NSColor::make({.hexString = text}).value(); }

std::optional<NSGradient> gradient(const char* from, const char* to) {
    return NSGradient::make({.colors = {hex(from), hex(to)}});
}

/// The colours of text, image or background, for the tint alone or for all states.
void tintText(TintedButton& button, bool all = true) {
    button.setTextTintColor(hex("#1D4ED8"));
    if (!all)
        return;
    button.setTextHoverColor(hex("#0891B2"));
    button.setTextPressedColor(hex("#BE123C"));
    button.setTextDisabledColor(hex("#A8A29E"));
}

void tintImage(TintedButton& button, bool all = true) {
    button.setImageTintColor(hex("#D97706"));
    if (!all)
        return;
    button.setImageHoverColor(hex("#16A34A"));
    button.setImagePressedColor(hex("#DC2626"));
    button.setImageDisabledColor(hex("#A8A29E"));
}

void tintBackground(TintedButton& button, bool all = true) {
    button.setBackgroundRadius(8);
    button.setBackgroundTintGradient(gradient("#BFDBFE", "#60A5FA"));
    if (!all)
        return;
    button.setBackgroundHoverGradient(gradient("#DDD6FE", "#A78BFA"));
    button.setBackgroundPressedGradient(gradient("#FBCFE8", "#F472B6"));
    button.setBackgroundDisabledGradient(gradient("#F5F5F4", "#D6D3D1"));
}

struct Look {
    const char* name;
    void (*tint)(TintedButton&);
};
const Look looks[] = {
    {"no colour", [](TintedButton&) {}},
    {"text tint", [](TintedButton& button) { tintText(button, false); }},
    {"text, all states", [](TintedButton& button) { tintText(button); }},
    {"image tint", [](TintedButton& button) { tintImage(button, false); }},
    {"image, all states", [](TintedButton& button) { tintImage(button); }},
    {"background tint", [](TintedButton& button) { tintBackground(button, false); }},
    {"background, all", [](TintedButton& button) { tintBackground(button); }},
    {"angle 90",
     [](TintedButton& button) {
         tintBackground(button);
         button.setBackgroundGradientAngle(90);
     }},
    {"angle 45, radius 100",
     [](TintedButton& button) {
         tintBackground(button);
         button.setBackgroundGradientAngle(45);
         button.setBackgroundRadius(100);
     }},
    {"everything",
     [](TintedButton& button) {
         tintText(button);
         tintImage(button);
         tintBackground(button);
     }},
    {"expanded, image right",
     [](TintedButton& button) {
         tintText(button);
         tintBackground(button);
         button.setImagePosition(NSCellImagePosition::imageRight);
         button.setExpandedSize(CGSize(20, 6));
     }},
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
        look.tint(*button);
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

/// The mean of each component over a square of the picture.
std::array<double, 4> meanOf(const CGImage& image, std::int64_t left, std::int64_t top,
                             std::int64_t side) {
    std::array<double, 4> mean{};
    for (std::int64_t y = top; y < top + side; ++y)
        for (std::int64_t x = left * 4; x < (left + side) * 4; ++x)
            mean[static_cast<std::size_t>(x % 4)] += image.bitmap().row(y)[x];
    for (double& component : mean)
        component /= static_cast<double>(side * side);
    return mean;
}

/// How far the squares of a button are apart in the mean: versions of the text's libraries put its
/// dots a fraction of a point elsewhere, which squares of a letter's size hardly see.
double difference(const CGImage& image, const CGImage& golden, const CGRect& frame, int scale) {
    const std::int64_t side = 8 * scale;
    const auto left = static_cast<std::int64_t>(frame.minX()) * scale;
    const auto right = static_cast<std::int64_t>(frame.maxX()) * scale;
    const auto top = image.height() - static_cast<std::int64_t>(frame.maxY()) * scale;
    const auto bottom = image.height() - static_cast<std::int64_t>(frame.minY()) * scale;
    double sum = 0;
    int count = 0;
    for (std::int64_t y = top; y + side <= bottom; y += side)
        for (std::int64_t x = left; x + side <= right; x += side) {
            const auto a = meanOf(image, x, y, side), b = meanOf(golden, x, y, side);
            for (std::size_t i = 0; i < 4; ++i, ++count)
                sum += std::abs(a[i] - b[i]);
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
        for (std::size_t i = 0; i < sheet.buttons.size(); ++i)
            EXPECT_LT(difference(*image, *golden, sheet.buttons[i]->frame(), scale), 0.75)
                << looks[i / std::size(states)].name << ", " << states[i % std::size(states)].name;
    }
}
