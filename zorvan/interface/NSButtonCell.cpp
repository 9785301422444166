#include <zorvan/interface/NSButtonCell.h>

#include <zorvan/interface/NSControl.h>
#include <zorvan/interface/internal/drawing.h>
#include <zorvan/interface/internal/resolveImage.h>
#include <zorvan/platform/foundation/internal/valueUnder.h>

#include <algorithm>
#include <cmath>

namespace zorvan {

using internal::valueUnder;

std::shared_ptr<NSButtonCell> NSButtonCell::create(Text argument) {
    const auto cell = std::make_shared<NSButtonCell>(Key{});
    cell->setTitle(argument.text.value);
    return cell;
}

std::shared_ptr<NSButtonCell> NSButtonCell::create(Image argument) {
    const auto cell = std::make_shared<NSButtonCell>(Key{});
    cell->setImage(argument.image);
    return cell;
}

std::shared_ptr<NSButtonCell> NSButtonCell::create(const Coder& argument) {
    const auto cell = std::make_shared<NSButtonCell>(Key{});
    cell->decode(argument.coder);
    return cell;
}

PropertyList::Dictionary NSButtonCell::encode() const {
    PropertyList::Dictionary coder{
        {"title", title()},
        {"imagePosition", static_cast<std::int64_t>(imagePosition_)},
        {"bezelStyle", static_cast<std::int64_t>(bezelStyle_)},
        {"bordered", isBordered_},
        {"enabled", isEnabled()},
    };
    // A symbol tells its name in its description.
    if (image()) {
        const std::string name =
            image()->name().empty() ? image()->accessibilityDescription() : image()->name();
        coder.insert_or_assign("imageName", PropertyList(name));
    }
    return coder;
}

void NSButtonCell::decode(const PropertyList::Dictionary& coder) {
    setTitle(valueUnder<std::string_view>(coder, "title").value_or(""));
    if (const auto name = valueUnder<std::string_view>(coder, "imageName"))
        setImage(resolveImage(std::string(*name), std::nullopt));
    const auto position = valueUnder<std::int64_t>(coder, "imagePosition").value_or(-1);
    if (position >= 0 && position <= static_cast<std::int64_t>(NSCellImagePosition::imageTrailing))
        imagePosition_ = static_cast<NSCellImagePosition>(position);
    const bool isTextured = valueUnder<std::int64_t>(coder, "bezelStyle") ==
                            static_cast<std::int64_t>(NSBezelStyle::texturedRounded);
    bezelStyle_ = isTextured ? NSBezelStyle::texturedRounded : NSBezelStyle::rounded;
    isBordered_ = valueUnder<bool>(coder, "bordered").value_or(true);
    setEnabled(valueUnder<bool>(coder, "enabled").value_or(true));
}

void NSButtonCell::setImage(std::shared_ptr<NSImage> image) {
    if (image && imagePosition_ == NSCellImagePosition::noImage)
        imagePosition_ = attributedTitle().length() == 0 ? NSCellImagePosition::imageOnly
                                                         : NSCellImagePosition::imageLeft;
    NSCell::setImage(std::move(image));
}

// Where things stand

namespace {

using Position = NSCellImagePosition;

constexpr double gap = 5;

bool isBeside(Position position) {
    return position == Position::imageLeft || position == Position::imageRight ||
           position == Position::imageLeading || position == Position::imageTrailing;
}

bool isStacked(Position position) {
    return position == Position::imageAbove || position == Position::imageBelow;
}

/// What is not shown takes no gap.
double joined(double a, double b) { return a + b + (a > 0 && b > 0 ? gap : 0); }

/// In the middle, at the size or as large as fits.
CGRect centredRect(CGSize size, const CGRect& in) {
    const double largest = std::max({size.width / in.width(), size.height / in.height(), 1.0});
    const double width = size.width / largest, height = size.height / largest;
    return {std::round(in.minX() + (in.width() - width) / 2),
            std::round(in.minY() + (in.height() - height) / 2), width, height};
}

} // namespace

CGSize NSButtonCell::shownImageSize() const {
    return image() && imagePosition_ != Position::noImage ? image()->size().abs() : CGSize();
}

CGSize NSButtonCell::shownTitleSize() const {
    if (imagePosition_ == Position::imageOnly)
        return {};
    return textSize(withDefaults(attributedTitle(), Palette::label));
}

CGSize NSButtonCell::cellSize() const {
    const CGSize picture = shownImageSize(), text = shownTitleSize();
    CGSize content(std::max(picture.width, text.width), std::max(picture.height, text.height));
    if (isBeside(imagePosition_))
        content.width = joined(picture.width, text.width);
    else if (isStacked(imagePosition_))
        content.height = joined(picture.height, text.height);
    if (!isBordered_)
        return {content.width + 4, content.height + 4};
    const double least = bezelStyle_ == NSBezelStyle::texturedRounded ? 28 : 26;
    return {content.width + (text.width > 0 ? 24 : 18), std::max(content.height + 8, least)};
}

NSButtonCell::Placement NSButtonCell::placement(const CGRect& bounds) const {
    const CGSize picture = shownImageSize();
    CGSize text = shownTitleSize();
    if (bounds.isEmpty())
        return {CGRect::null, CGRect::null};
    Placement at{centredRect(picture, bounds), centredRect(text, bounds)};
    const bool isImageShown = picture.width > 0;
    if (isBeside(imagePosition_) && isImageShown && text.width > 0) {
        text.width = std::clamp(bounds.width() - picture.width - gap, 0.0, text.width);
        const double left =
            std::round(bounds.minX() + (bounds.width() - joined(picture.width, text.width)) / 2);
        const bool isFirst =
            imagePosition_ == Position::imageLeft || imagePosition_ == Position::imageLeading;
        at.image.origin.x = isFirst ? left : left + text.width + gap;
        at.title = {isFirst ? left + picture.width + gap : left, bounds.minY(), text.width,
                    bounds.height()};
    } else if (isStacked(imagePosition_) && isImageShown && text.height > 0) {
        const double bottom =
            std::round(bounds.minY() + (bounds.height() - joined(picture.height, text.height)) / 2);
        const bool isTop = imagePosition_ == Position::imageAbove;
        at.image.origin.y = isTop ? bottom + text.height + gap : bottom;
        at.title = {bounds.minX(), isTop ? bottom : bottom + picture.height + gap, bounds.width(),
                    text.height};
    } else {
        at.title = bounds;
    }
    if (!isImageShown)
        at.image = CGRect::null;
    if (!(text.width > 0))
        at.title = CGRect::null;
    return at;
}

} // namespace zorvan
