#include <zorvan/interface/NSSearchField.h>

#include <zorvan/interface/internal/drawing.h>
#include <zorvan/media/NSBezierPath.h>
#include <zorvan/media/NSColor.h>

namespace zorvan {

namespace {

class SearchFieldCell : public NSCell {
public:
    static std::shared_ptr<SearchFieldCell> create() {
        return std::make_shared<SearchFieldCell>(Key{});
    }
    using NSCell::NSCell;
};

constexpr double usualWidth = 180, usualHeight = 28, radius = 7;

} // namespace

std::shared_ptr<NSSearchField> NSSearchField::create(const CGRect& frame) {
    const auto field = std::make_shared<NSSearchField>(Key{}, frame);
    field->setCell(SearchFieldCell::create());
    return field;
}

void NSSearchField::setPlaceholderString(std::optional<std::string> placeholder) {
    placeholder_ = std::move(placeholder);
    setNeedsDisplay(true);
}

void NSSearchField::enterText(std::string_view text) {
    if (!isEnabled() || text == stringValue())
        return;
    setStringValue(text);
    sendAction();
}

CGSize NSSearchField::intrinsicContentSize() const { return {usualWidth, usualHeight}; }

void NSSearchField::draw(Canvas& canvas) const {
    const Drawing drawing(canvas);
    const CGRect field = bounds();
    fillRounded(field, radius, Palette::field);
    outlineRounded(field, radius, Palette::outline);
    const NSColor ink = isEnabled() ? Palette::faintLabel : Palette::separator;
    const CGPoint middle(field.minX() + 15, field.minY() + field.height() / 2 + 1);
    setStroke(ink);
    const auto lens = NSBezierPath::create(
        NSBezierPath::OvalInRect{CGRect(middle.x - 4.5, middle.y - 4.5, 9, 9)});
    lens->setLineWidth(1.4);
    lens->stroke();
    drawLine({{middle.x + 3.4, middle.y - 3.4}, {middle.x + 6.8, middle.y - 6.8}}, 1.6, ink);
    const std::string text = stringValue();
    const CGRect box(field.minX() + 28, field.minY(), field.width() - 36, field.height());
    if (text.empty())
        drawLabel(placeholder_.value_or(""), box, LabelStyle::plain, Palette::faintLabel,
                  LabelAlignment::left);
    else
        drawLabel(text, box, LabelStyle::plain, isEnabled() ? Palette::label : Palette::faintLabel,
                  LabelAlignment::left);
}

} // namespace zorvan
