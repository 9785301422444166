// What a screen reader is told of views, in Qt's terms; screenReader.py hears it from outside.

#include "HostTest.h"

#include <zorvan/interface/TintedButton.h>

#include <QAccessible>

namespace {

class AccessibilityTest : public HostTest {
protected:
    QAccessibleInterface& interfaceOf(const NSView& view) const {
        return *QAccessible::queryAccessibleInterface(widgetFor(view));
    }
};

TEST_F(AccessibilityTest, ViewsSayWhatTheyAre) {
    const auto level = NSView::create({0, 0, 50, 20});
    level->setAccessibilityRole(NSAccessibilityRole::slider);
    level->setAccessibilityLabel("Level");
    level->setAccessibilityValue("40 %");
    content->addSubview(level);
    const auto field = addSearchField();
    settle();
    QAccessibleInterface& shown = interfaceOf(*level);
    EXPECT_EQ(shown.role(), QAccessible::Slider);
    EXPECT_EQ(shown.text(QAccessible::Name), "Level");
    EXPECT_EQ(shown.text(QAccessible::Value), "40 %");
    level->setAccessibilityValue("50 %");
    EXPECT_EQ(shown.text(QAccessible::Description), "50 %");
    EXPECT_EQ(interfaceOf(*field).role(), QAccessible::EditableText);
    EXPECT_EQ(interfaceOf(*field).text(QAccessible::Name), "Search");
    EXPECT_TRUE(interfaceOf(*field).textInterface());
}

TEST_F(AccessibilityTest, ButtonsArePressedFromOutside) {
    int presses = 0;
    const auto button = TintedButton::create(
        {.title = "Press", .action = Selector("press", [&presses] { ++presses; })});
    content->addSubview(button);
    settle();
    QAccessibleInterface& shown = interfaceOf(*button);
    EXPECT_EQ(shown.role(), QAccessible::Button);
    EXPECT_EQ(shown.text(QAccessible::Name), "Press");
    shown.actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(presses, 1);
    button->setEnabled(false);
    EXPECT_TRUE(shown.state().disabled);
    shown.actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(presses, 1);
}

} // namespace
