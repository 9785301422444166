// What a screen reader is told of views, in Qt's terms; screenReader.py hears it from outside.

#include "HostTest.h"

#include <zorvan/interface/TintedButton.h>

#include <QAccessible>

namespace {

using AccessibilityTest = HostTest;

TEST_F(AccessibilityTest, ViewsSayWhatTheyAreAndButtonsArePressed) {
    QAccessible::setActive(true);
    const auto face = [this](const NSView& view) {
        return QAccessible::queryAccessibleInterface(widgetFor(view));
    };
    const auto level = NSView::create();
    content->addSubview(level);
    level->setAccessibilityRole(NSAccessibilityRole::slider);
    level->setAccessibilityLabel("Level");
    level->setAccessibilityValue("50 %");
    EXPECT_EQ(face(*level)->role(), QAccessible::Slider);
    EXPECT_EQ(face(*level)->text(QAccessible::Name), "Level");
    for (const auto kind : {QAccessible::Value, QAccessible::Description})
        EXPECT_EQ(face(*level)->text(kind), "50 %");
    const auto button = TintedButton::create({.title = "Press", .action = does("p")});
    content->addSubview(button);
    EXPECT_EQ(face(*button)->role(), QAccessible::Button);
    face(*button)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    button->setEnabled(false);
    EXPECT_TRUE(face(*button)->state().disabled);
    face(*button)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(done, "p");
    QAccessible::setActive(false);
}

} // namespace
