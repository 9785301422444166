// Drags from the press of the mouse to its release, by the events of a screen that is not there.

#include "HostTest.h"

#include <tests/interface/Tree.h>

#include <zorvan/interface/NSCollectionView.h>

#include <QAbstractItemView>
#include <QDrag>
#include <QImage>
#include <QMimeData>
#include <QTimer>
#include <QWindow>

namespace {

URL file(const std::string& name) { return URL({.fileURLWithPath = "/pictures/" + name}); }

std::string names(const std::vector<URL>& urls) {
    std::string all;
    for (const URL& url : urls)
        all += std::string(url.lastPathComponent()) + " ";
    return all;
}

/// Takes files and gives one; writes down what comes.
class DropView : public NSView {
public:
    static std::shared_ptr<DropView> create(const CGRect& frame) {
        return std::make_shared<DropView>(Key{}, frame);
    }
    using NSView::NSView;

    std::vector<URL> draggedURLs(CGPoint from) const override {
        if (fails)
            throw std::runtime_error("no files");
        return from.x < 50 ? std::vector{file("own.png")} : std::vector<URL>();
    }
    std::shared_ptr<const Bitmap> draggedPicture(CGPoint) const override {
        return givesPicture ? std::make_shared<const Bitmap>(Bitmap::make(3, 2).value()) : nullptr;
    }
    bool acceptsDrop(const std::vector<URL>&) const override { return accepts; }
    void urlsDropped(const std::vector<URL>& urls, CGPoint at) override {
        dropped += names(urls);
        droppedAt = at;
        then();
    }
    void mouseDragged(const NSEvent&) override { ++drags; }

    bool accepts = true, givesPicture = false, fails = false;
    std::string dropped;
    CGPoint droppedAt;
    std::function<void()> then = [] {};
    int drags = 0;
};

class DragHostTest : public HostTest {
protected:
    static void SetUpTestSuite() { start("minimal"); }

    /// The screen is 240 x 320, and a window on it keeps the size that it was made with.
    DragHostTest() {
        host = nullptr;
        window->setContentSize({230, 300});
        show();
    }

    QPoint inWindow(const NSView& view, QPoint at) const {
        auto* const items = widgetFor<QAbstractItemView>(view);
        return HostTest::inWindow(items ? *items->viewport() : *widgetFor(view), at);
    }
    /// Both in the content of the window; `meanwhile` is done when the drag has begun.
    void drag(const NSView& from, QPoint start, const NSView& to, QPoint end,
              std::function<void()> meanwhile = {}) {
        settle();
        const QPoint pressed = inWindow(from, start), released = inWindow(to, end);
        QWindow* const screen = top().windowHandle();
        QTest::mousePress(screen, Qt::LeftButton, {}, pressed);
        bool isDone = false;
        whenDragging([&] {
            if (meanwhile)
                meanwhile();
            QTest::mouseMove(screen, (pressed + released) / 2);
            const QImage before = host->widget().grab().toImage();
            QTest::mouseMove(screen, released);
            marksPlace = host->widget().grab().toImage() != before;
            QTest::mouseRelease(screen, Qt::LeftButton, {}, released);
            isDone = true;
        });
        // An item view takes note of the first and begins with the second.
        for (const int beyond : {1, 2})
            if (!isDone)
                QTest::mouseMove(screen,
                                 pressed + QPoint(QApplication::startDragDistance() + beyond, 0));
        while (!isDone)
            settle();
        settle();
    }
    /// What a program that would rather move a file is told of, before the drop and by it.
    Qt::DropActions droppedFromElsewhere(const NSView& to, QPoint end) {
        const QPoint released = inWindow(to, end);
        QWindow* const screen = top().windowHandle();
        auto* const data = new QMimeData;
        data->setUrls({QUrl("file:///pictures/other.png")});
        auto* const drag = new QDrag(qApp);
        drag->setMimeData(data);
        Qt::DropActions told;
        QObject::connect(drag, &QDrag::actionChanged,
                         [&](Qt::DropAction action) { told |= action; });
        whenDragging([&] {
            QTest::mouseMove(screen, released);
            QTest::mouseRelease(screen, Qt::LeftButton, {}, released);
        });
        told |= drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::MoveAction);
        settle();
        return told;
    }
    /// When Qt has given the mouse the shape of a drag, or it is clear that there is none.
    static void whenDragging(const std::function<void()>& act, int turns = 100) {
        QTimer::singleShot(0, [=] {
            if (turns == 0 || QGuiApplication::overrideCursor())
                act();
            else
                whenDragging(act, turns - 1);
        });
    }
    std::shared_ptr<DropView> addDropView(const CGRect& frame, NSView& to) {
        auto view = DropView::create(frame);
        to.addSubview(view);
        return view;
    }

    /// Whether the window looked another way at the end of a drag than half-way.
    bool marksPlace = false;
};

TEST_F(DragHostTest, ViewsGiveAndTakeFiles) {
    const auto giver = addDropView({0, 0, 100, 100}, *content);
    const auto taker = addDropView({110, 0, 120, 200}, *content);
    const auto inner = addDropView({0, 0, 60, 100}, *taker);
    // What comes of a drag to the one view or the one in it.
    const auto dropped = [&](NSView& to, QPoint from = {20, 50},
                             const std::function<void()>& meanwhile = {}) {
        drag(*giver, from, to, &to == inner.get() ? QPoint(30, 50) : QPoint(100, 30), meanwhile);
        return std::exchange(taker->dropped, {});
    };
    EXPECT_EQ(dropped(*taker), "own.png ");
    EXPECT_EQ(taker->droppedAt, CGPoint(100, 170));
    EXPECT_EQ(droppedFromElsewhere(*taker, {100, 30}), Qt::CopyAction) << "it stays there as well";
    EXPECT_EQ(std::exchange(taker->dropped, {}), "other.png ");
    EXPECT_EQ(giver->drags, 0);
    inner->accepts = false;
    EXPECT_EQ(dropped(*inner), "own.png ") << "for the one in it";
    taker->accepts = false;
    EXPECT_EQ(dropped(*taker), "");
    taker->accepts = true;
    EXPECT_EQ(dropped(*taker, {80, 50}), "");
    EXPECT_GT(giver->drags, 0) << "where there is nothing to carry the mouse is the view's";
    giver->givesPicture = true;
    bool isCarried = false;
    dropped(*taker, {80, 50}, [&] {
        const QMimeData& carried = *qApp->findChild<QDrag*>()->mimeData();
        isCarried = qvariant_cast<QImage>(carried.imageData()).size() == QSize(3, 2);
        EXPECT_FALSE(carried.hasUrls());
    });
    EXPECT_TRUE(isCarried);
    giver->givesPicture = false;
    giver->fails = true;
    testing::internal::CaptureStdout();
    EXPECT_EQ(dropped(*taker), "") << "nothing, when the view throws";
    testing::internal::GetCapturedStdout();
    giver->fails = false;
    // What goes meanwhile.
    EXPECT_EQ(dropped(*taker, {20, 50}, [&] { giver->removeFromSuperview(); }), "own.png ");
    content->addSubview(giver);
    taker->then = [&] { taker->removeFromSuperview(); };
    EXPECT_EQ(dropped(*taker), "own.png ");
    content->addSubview(taker);
    taker->then = [&] { window->close(); };
    EXPECT_EQ(dropped(*taker), "own.png ");
    EXPECT_FALSE(top().isVisible());
}

// Tables, outlines and collections: what a drag of the selection is told as.

/// What is told is written down, and nothing moves.
struct Movable : NSTableViewDataSource, NSCollectionViewDataSource, Tree {
    Movable() { top = {node("a", {node("b"), node("c")}), node("d")}; }
    std::int64_t numberOfRows(const NSTableView&) const override { return 5; }
    std::int64_t numberOfItems(const NSCollectionView&, std::int64_t) const override { return 6; }

    using NSCollectionViewDataSource::draggedURL;
    using NSOutlineViewDataSource::draggedURL;
    std::optional<URL> draggedURL(const NSTableView&, std::int64_t row) const override {
        return givesFiles ? std::optional(file(std::to_string(row))) : std::nullopt;
    }
    bool isMovable(const NSTableView&, std::int64_t row) const override { return row != 4; }
    bool isMovable(const NSOutlineView&, const Item&) const override { return true; }
    bool isMovable(const NSCollectionView&, IndexPath path) const override { return path.item < 5; }

    void rowsDragged(NSTableView&, const IndexSet& rows, std::int64_t before) override {
        for (const std::int64_t row : rows)
            told += std::to_string(row);
        told += ">" + std::to_string(before);
    }
    void itemsDragged(NSOutlineView&, const std::vector<Item>& items, const Item& holder,
                      std::int64_t before) override {
        for (const Item& item : items)
            told += of(item).name;
        told += ">" + of(holder).name + std::to_string(before);
    }
    void itemsDragged(NSCollectionView&, const std::set<IndexPath>& items,
                      IndexPath before) override {
        for (const IndexPath item : items)
            told += std::to_string(item.item);
        told += ">" + std::to_string(before.item);
    }

    bool acceptsDrop(const NSTableView&, const std::vector<URL>&) const override { return true; }
    bool acceptsDrop(const NSOutlineView&, const std::vector<URL>&) const override { return true; }
    bool acceptsDrop(const NSCollectionView&, const std::vector<URL>&) const override {
        return true;
    }
    void urlsDropped(NSTableView&, const std::vector<URL>& urls, std::int64_t before) override {
        told += names(urls) + ">" + std::to_string(before);
    }
    void urlsDropped(NSOutlineView&, const std::vector<URL>& urls, const Item& holder,
                     std::int64_t before) override {
        told += names(urls) + ">" + of(holder).name + std::to_string(before);
    }
    void urlsDropped(NSCollectionView&, const std::vector<URL>& urls, IndexPath before) override {
        told += names(urls) + ">" + std::to_string(before.item);
    }

    std::string told;
    bool givesFiles = false;
};

class ItemDragTest : public DragHostTest {
protected:
    /// What is selected, the drag, and what is told.
    using Step = std::tuple<IndexSet, QPoint, QPoint, const char*>;
    /// Drags inside of the view, and out of the one beside it, whose file is told as `fromBeside`.
    template <class Select>
    void expectDrags(NSView& view, const std::vector<Step>& steps, const Select& select,
                     QPoint toFromBeside, const char* fromBeside) {
        for (const auto& [selected, from, to, told] : steps) {
            source->told.clear();
            select(selected);
            drag(view, from, view, to);
            EXPECT_EQ(source->told, told);
        }
        source->told.clear();
        drag(*beside, {20, 50}, view, toFromBeside);
        EXPECT_EQ(source->told, fromBeside);
        EXPECT_TRUE(marksPlace) << "before it is dropped there";
    }
    /// In the middle of a row, or so far below it.
    static QPoint row(int row, int below = 0) { return {80, row * 24 + 12 + below}; }

    const std::shared_ptr<Movable> source = std::make_shared<Movable>();
    const std::shared_ptr<DropView> beside = addDropView({110, 0, 120, 300}, *content);
};

TEST_F(ItemDragTest, RowsOfATable) {
    const auto table = NSTableView::create({0, 0, 110, 300});
    table->setNumberOfColumns(1);
    table->setDataSource(source);
    content->addSubview(table);
    expectDrags(
        *table,
        {{{}, row(0), row(2, 6), "0>3"}, // below the middle: after it
         {{}, row(0), row(2, -6), "0>2"},
         {{0, 2, 4}, row(0), {80, 250}, "02>5"}, // to the end, what is movable
         {{0}, row(4), row(2), ""}},
        [&](const IndexSet& rows) { table->selectOnlyRows(rows); }, row(1, -6), "own.png >1");
    EXPECT_EQ(table->selectedRowIndexes(), IndexSet({2, 3, 4})) << "such a drag selects";
    EXPECT_EQ(droppedFromElsewhere(*table, row(1, -6)), Qt::CopyAction);
    source->givesFiles = true;
    table->selectOnlyRows({0, 1});
    drag(*table, row(1), *beside, {100, 100});
    EXPECT_EQ(beside->dropped, "0 1 ");
}

TEST_F(ItemDragTest, ItemsOfAnOutline) {
    const auto outline = NSOutlineView::create({0, 0, 110, 300});
    outline->setNumberOfColumns(1);
    outline->setOutlineDataSource(source);
    outline->expandAllItems(); // a b c d
    content->addSubview(outline);
    expectDrags(
        *outline,
        {{{3}, row(3), row(0), "d>a2"},
         {{3}, row(3), row(0, -10), "d>root0"},
         {{3}, row(3), row(0, 10), "d>a0"},
         {{1}, row(1), row(3, 10), "b>root2"},
         {{1}, row(1), row(2, 10), "b>a2"},
         {{1}, row(1), {80, 250}, "b>root2"},
         {{0}, row(0), row(1), ""},         // into itself
         {{0, 1}, row(0), row(3), "a>d0"}}, // what goes along is not named
        [&](const IndexSet& rows) { outline->selectOnlyRows(rows); }, row(3), "own.png >d0");
}

TEST_F(ItemDragTest, ItemsOfACollection) {
    const auto view = NSCollectionView::create({0, 0, 110, 300});
    view->setDataSource(source);
    view->setCollectionViewLayout(std::make_shared<NSCollectionViewFlowLayout>(CGSize(30, 30), 5));
    content->addSubview(view);
    const auto at = [](int column, int line, int right = 0) {
        return QPoint(column * 35 + 15 + right, line * 35 + 15);
    };
    expectDrags(
        *view,
        {{{0}, at(0, 0), at(2, 0, -9), "0>2"},
         {{0}, at(0, 0), at(2, 0, 9), "0>3"},
         {{0, 3, 5}, at(0, 1), at(1, 1, -9), "03>4"},
         {{0}, at(0, 0), {50, 250}, "0>6"},
         {{5}, at(2, 1), at(0, 0), ""}},
        [&](const IndexSet& items) { view->setSelectionIndexPaths(items.mapToIndexPaths()); },
        at(1, 0, -9), "own.png >1");
}

} // namespace
