// What a screen reader is told of views, in Qt's terms; screenReader.py hears it from outside.

#include "HostTest.h"

#include <tests/interface/Tree.h>

#include <zorvan/interface/NSCollectionView.h>
#include <zorvan/interface/TintedButton.h>

namespace {

class AccessibilityTest : public HostTest {
protected:
    AccessibilityTest() { QAccessible::setActive(true); }
    ~AccessibilityTest() override { QAccessible::setActive(false); }

    /// The view fills the window.
    QAccessibleInterface& shown(const std::shared_ptr<NSView>& view) {
        view->setAccessibilityLabel("Label");
        window->setContentView(view);
        EXPECT_EQ(faceOf(*view).text(QAccessible::Name), "Label");
        return faceOf(*view);
    }
};

TEST_F(AccessibilityTest, ViewsSayWhatTheyAre) {
    const auto level = NSView::create();
    level->setAccessibilityRole(NSAccessibilityRole::slider);
    level->setAccessibilityValue("40 %");
    QAccessibleInterface& face = shown(level);
    EXPECT_EQ(face.role(), QAccessible::Slider);
    EXPECT_EQ(face.text(QAccessible::Value), "40 %");
    level->setAccessibilityValue("50 %");
    EXPECT_EQ(face.text(QAccessible::Description), "50 %");
    QAccessibleInterface& field = faceOf(*addSearchField());
    EXPECT_EQ(field.role(), QAccessible::EditableText);
    EXPECT_EQ(field.text(QAccessible::Name), "Search");
    EXPECT_TRUE(field.textInterface());
}

TEST_F(AccessibilityTest, ButtonsArePressedFromOutside) {
    const auto button = TintedButton::create({.title = "Press", .action = does("p")});
    QAccessibleInterface& face = shown(button);
    EXPECT_EQ(face.role(), QAccessible::Button);
    face.actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(done, "p");
    button->setEnabled(false);
    EXPECT_TRUE(face.state().disabled);
    face.actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(done, "p");
}

/// Five items, shown as "item 2" or by a view of that name.
struct Items : NSTableViewDataSource, NSTableViewDelegate, NSCollectionViewDataSource {
    std::int64_t numberOfRows(const NSTableView&) const override { return 5; }
    std::int64_t numberOfItems(const NSCollectionView&, std::int64_t) const override { return 5; }
    using NSTableViewDataSource::text;
    std::string text(const NSCollectionView&, IndexPath path) const override {
        return "item " + std::to_string(path.item);
    }
    std::shared_ptr<NSView> view(NSTableView&, std::int64_t, std::int64_t row) override {
        const auto made = NSView::create();
        made->setAccessibilityLabel("view " + std::to_string(row));
        return made;
    }
};

TEST_F(AccessibilityTest, ItemViewsSayWhatIsInThem) {
    const auto items = std::make_shared<Items>();
    const auto tree = std::make_shared<Tree>();
    const auto table = NSTableView::create();
    table->setNumberOfColumns(1);
    table->tableColumns()[0]->setTitle("Name");
    table->setDataSource(items);
    table->setDelegate(items);
    table->selectOnlyRow(2);
    const auto collection = NSCollectionView::create();
    collection->setDataSource(items);
    collection->setCollectionViewLayout(
        std::make_shared<NSCollectionViewFlowLayout>(CGSize(40, 40), 10));
    collection->setSelectionIndexPaths({{2, 0}});
    const auto outline = NSOutlineView::create();
    outline->setNumberOfColumns(1);
    outline->setOutlineDataSource(tree);
    outline->expandItem(tree->top[0]);
    outline->selectOnlyRow(2);
    const auto expect = [&](const std::shared_ptr<NSView>& view, QAccessible::Role role, int rows,
                            const char* name) {
        QAccessibleInterface& face = shown(view);
        EXPECT_EQ(face.role(), role);
        EXPECT_EQ(face.tableInterface()->rowCount(), rows);
        EXPECT_EQ(face.tableInterface()->cellAt(2, 0)->text(QAccessible::Name), name);
        EXPECT_TRUE(face.tableInterface()->cellAt(2, 0)->state().selected);
        return face.tableInterface();
    };
    EXPECT_EQ(expect(table, QAccessible::Table, 5, "view 2")->columnDescription(0), "Name");
    EXPECT_EQ(expect(collection, QAccessible::List, 5, "item 2")->cellAt(2, 0)->rect().size(),
              QSize(40, 40));
    EXPECT_TRUE(expect(outline, QAccessible::Tree, 4, "d")->cellAt(0, 0)->state().expanded);
}

} // namespace
