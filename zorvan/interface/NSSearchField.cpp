#include <zorvan/interface/NSSearchField.h>

namespace zorvan {

namespace {

struct SearchFieldCell : NSCell {
    SearchFieldCell() : NSCell(Key{}) {}
};

} // namespace

std::shared_ptr<NSSearchField> NSSearchField::create(const CGRect& frame) {
    const auto field = std::make_shared<NSSearchField>(Key{}, frame);
    field->setCell(std::make_shared<SearchFieldCell>());
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

CGSize NSSearchField::intrinsicContentSize() const { return {180, 28}; }

} // namespace zorvan
