#include <tests/Testing.h>
#include <tests/interface/Tree.h>

#include <zorvan/platform/dispatch/MainQueue.h>

namespace {

std::string rows(const NSOutlineView& outline) {
    std::string text;
    for (std::int64_t row = 0; row < outline.numberOfRows(); ++row)
        text += std::string(static_cast<std::size_t>(outline.level(row)), '.') +
                static_cast<const Node*>(outline.item(row).get())->name + " ";
    return text;
}

struct NSOutlineViewTest : testing::Test {
    void SetUp() override { outline->setOutlineDataSource(tree); }
    std::shared_ptr<Tree> tree = std::make_shared<Tree>();
    std::shared_ptr<NSOutlineView> outline = NSOutlineView::create();
};

} // namespace

TEST_F(NSOutlineViewTest, ExpandsAndCollapses) {
    const auto a = tree->top[0], e = tree->top[1], b = a->children[0];
    EXPECT_EQ(rows(*outline), "a e ");
    outline->selectOnlyRow(1);
    outline->toggleExpand(a);
    EXPECT_EQ(rows(*outline), "a .b .d e ");
    EXPECT_EQ(outline->selectedRowIndexes(), IndexSet({3}));
    outline->expandItem(b);
    EXPECT_EQ(rows(*outline), "a .b ..c .d e ");
    outline->setExpanded(false, a);
    EXPECT_EQ(rows(*outline), "a e ");
    EXPECT_EQ(outline->row(e), 1);
    EXPECT_EQ(outline->row(b), -1);
    outline->expandItem(a); // what was expanded below comes back
    EXPECT_EQ(rows(*outline), "a .b ..c .d e ");
    outline->expandItem(a->children[1]); // has no children
    EXPECT_FALSE(outline->isItemExpanded(a->children[1]));
    // Everything, and later.
    outline->collapseItem(a);
    outline->selectOnlyRow(1);
    outline->asyncExpandAllItems();
    EXPECT_EQ(rows(*outline), "a e ");
    MainQueue::drain();
    EXPECT_EQ(rows(*outline), "a .b ..c .d e .f ");
    EXPECT_EQ(outline->selectedRowIndexes(), IndexSet({4})) << "e, though rows came on both sides";
    tree->top = {a}; // without a word
    outline->collapseItem(a);
    EXPECT_EQ(rows(*outline), "a ");

    outline->asyncExpandAllItems();
    outline.reset();
    MainQueue::drain(); // the outline has gone: nothing to do
}

TEST_F(NSOutlineViewTest, KnowsItsNewItemsWhenUpdatesHaveEnded) {
    tree->top.push_back(node("g"));
    outline->setNumberOfColumns(1);
    outline->beginUpdates();
    outline->insertRows({2}, {});
    EXPECT_EQ(outline->item(2), nullptr);
    EXPECT_EQ(outline->level(2), -1);
    EXPECT_EQ(outline->text(0, 2), "");
    outline->endUpdates();
    EXPECT_EQ(rows(*outline), "a e g ");
}

TEST_F(NSOutlineViewTest, StopsOnATreeThatHoldsItself) {
    tree->top[0]->children.push_back(tree->top[0]);
    EXPECT_DEATH(outline->expandAllItems(), "^An item of an outline view holds itself.\n$");
    EXPECT_DEATH(outline->expandItem(tree->top[0]), "^An item of an outline view holds itself.\n$");
    tree->top[0]->children.clear();
}
