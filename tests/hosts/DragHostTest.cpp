// Drags from the press of the mouse to its release, by the events of a screen that is not there.

#include "HostTest.h"

#include <tests/interface/Tree.h>

#include <zorvan/collections/Array.h>
#include <zorvan/interface/NSCollectionView.h>

#include <QAbstractItemView>
#include <QDropEvent>
#include <QImage>
#include <QMimeData>
#include <QTimer>
#include <QUrl>
#include <QWindow>

#include <stdexcept>

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
        if (then)
            then();
    }
    void mouseDragged(const NSEvent&) override { ++drags; }

    bool accepts = true, givesPicture = false, fails = false;
    std::string dropped;
    CGPoint droppedAt;
    std::function<void()> then;
    int drags = 0;
};

class DragHostTest : public HostTest {
protected:
    static void SetUpTestSuite() { start("minimal"); }

    /// The screen is 240 x 320, and a window on it keeps the size that it was made with.
    DragHostTest() {
        host = nullptr;
        window->setContentSize({230, 300});
        host = QtWindowHost::show(window);
        settle();
    }

    QPoint inWindow(const NSView& view, QPoint at) const {
        QWidget* widget = widgetFor(view);
        if (auto* const items = qobject_cast<QAbstractItemView*>(widget))
            widget = items->viewport();
        return widget->mapTo(&host->widget(), at);
    }
    /// Both in the content of the window; `meanwhile` is done when the drag has begun.
    void drag(const NSView& from, QPoint start, const NSView& to, QPoint end,
              std::function<void()> meanwhile = {}) {
        settle();
        const QPoint pressed = inWindow(from, start), released = inWindow(to, end);
        QWindow* const screen = host->widget().windowHandle();
        QTest::mousePress(screen, Qt::LeftButton, {}, pressed);
        bool isDone = false;
        whenDragging([=, &isDone] {
            if (meanwhile)
                meanwhile();
            QTest::mouseMove(screen, (pressed + released) / 2);
            QTest::mouseMove(screen, released);
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
};

TEST_F(DragHostTest, ViewsGiveAndTakeFiles) {
    const auto giver = addDropView({0, 0, 100, 100}, *content);
    const auto taker = addDropView({110, 0, 120, 200}, *content);
    const auto inner = addDropView({0, 0, 60, 100}, *taker);
    drag(*giver, {20, 50}, *taker, {100, 30});
    EXPECT_EQ(taker->dropped, "own.png ");
    EXPECT_EQ(taker->droppedAt, CGPoint(100, 170));
    EXPECT_EQ(giver->drags, 0);
    inner->accepts = false;
    drag(*giver, {20, 50}, *inner, {30, 50});
    EXPECT_EQ(taker->dropped, "own.png own.png ") << "for the one in it";
    taker->accepts = false;
    drag(*giver, {20, 50}, *taker, {100, 30});
    EXPECT_EQ(taker->dropped, "own.png own.png ");
    drag(*giver, {80, 50}, *taker, {100, 30});
    EXPECT_GT(giver->drags, 0) << "where there is nothing to carry the mouse is the view's";
    giver->fails = true;
    testing::internal::CaptureStdout();
    drag(*giver, {20, 50}, *taker, {100, 30});
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(taker->dropped, "own.png own.png ") << "nothing, when the view throws";
}

TEST_F(DragHostTest, PicturesAreDraggedOut) {
    struct Catcher : QWidget {
        Catcher() { setAcceptDrops(true); }
        void dragEnterEvent(QDragEnterEvent* event) override { event->accept(); }
        void dropEvent(QDropEvent* event) override {
            picture = qvariant_cast<QImage>(event->mimeData()->imageData());
            urls = event->mimeData()->urls();
        }
        QImage picture;
        QList<QUrl> urls;
    };
    const auto giver = addDropView({0, 0, 100, 100}, *content);
    const auto place = addDropView({110, 0, 120, 100}, *content);
    settle();
    auto* const catcher = new Catcher; // a widget that is none of the library's
    catcher->setParent(widgetFor(*place));
    catcher->setGeometry(0, 0, 100, 100);
    catcher->show();
    giver->givesPicture = true;
    drag(*giver, {80, 50}, *place, {50, 50});
    EXPECT_EQ(catcher->picture.size(), QSize(3, 2));
    EXPECT_TRUE(catcher->urls.isEmpty());
    drag(*giver, {20, 50}, *place, {50, 50});
    EXPECT_EQ(catcher->urls, QList<QUrl>{QUrl::fromLocalFile("/pictures/own.png")});
}

TEST_F(DragHostTest, OutlivesWhatGoesMeanwhile) {
    const auto giver = addDropView({0, 0, 100, 100}, *content);
    const auto taker = addDropView({110, 0, 120, 200}, *content);
    drag(*giver, {20, 50}, *taker, {100, 30}, [&] { giver->removeFromSuperview(); });
    EXPECT_EQ(taker->dropped, "own.png ");
    content->addSubview(giver);
    taker->then = [&] { taker->removeFromSuperview(); };
    drag(*giver, {20, 50}, *taker, {100, 30});
    EXPECT_EQ(taker->dropped, "own.png own.png ");
    content->addSubview(taker);
    taker->then = [&] { window->close(); };
    drag(*giver, {20, 50}, *taker, {100, 30});
    EXPECT_FALSE(host->widget().isVisible());
}

// Tables

struct Rows : NSTableViewDataSource {
    std::int64_t numberOfRows(const NSTableView&) const override {
        return static_cast<std::int64_t>(items.size());
    }
    std::string text(const NSTableView&, std::int64_t, std::int64_t row) const override {
        return std::string(1, items.at(static_cast<std::size_t>(row)));
    }
    std::optional<URL> draggedURL(const NSTableView& table, std::int64_t row) const override {
        return givesFiles ? std::optional(file(text(table, 0, row))) : std::nullopt;
    }
    bool isMovable(const NSTableView&, std::int64_t row) const override {
        return items.at(static_cast<std::size_t>(row)) != 'X';
    }
    void rowsDragged(NSTableView& table, const IndexSet& rows, std::int64_t before) override {
        std::vector<char> list(items.begin(), items.end());
        zorvan::move(list, rows, before);
        items.assign(list.begin(), list.end());
        table.moveRows(rows, before);
    }
    bool acceptsDrop(const NSTableView&, const std::vector<URL>&) const override { return true; }
    void urlsDropped(NSTableView&, const std::vector<URL>& urls, std::int64_t before) override {
        dropped += names(urls) + std::to_string(before) + " ";
    }

    std::string items = "abcdX", dropped;
    bool givesFiles = false;
};

TEST_F(DragHostTest, RowsAreDraggedToAnotherPlace) {
    const auto rows = std::make_shared<Rows>();
    const auto table = NSTableView::create({0, 0, 110, 300});
    table->setNumberOfColumns(1);
    table->setDataSource(rows);
    content->addSubview(table);
    const auto middle = [](int row) { return QPoint(20, row * 24 + 12); };
    drag(*table, middle(0), *table, middle(2) + QPoint(0, 6));
    EXPECT_EQ(rows->items, "bcadX") << "below the middle: after it";
    EXPECT_EQ(table->selectedRowIndexes(), IndexSet({2}));
    table->selectOnlyRows({0, 2, 4});
    drag(*table, middle(0), *table, QPoint(20, 250));
    EXPECT_EQ(rows->items, "cdXba") << "to the end, without the one that is not movable";
    table->selectOnlyRow(0);
    drag(*table, middle(2), *table, middle(4));
    EXPECT_EQ(rows->items, "cdXba");
    EXPECT_EQ(table->selectedRowIndexes(), IndexSet({2, 3, 4})) << "such a drag selects";
    // Out of the table and, from elsewhere, into it.
    const auto beside = addDropView({110, 0, 120, 300}, *content);
    rows->givesFiles = true;
    table->selectOnlyRows({0, 1});
    drag(*table, middle(1), *beside, {100, 100});
    EXPECT_EQ(beside->dropped, "c d ");
    drag(*beside, {20, 50}, *table, middle(1) - QPoint(0, 6));
    drag(*beside, {20, 50}, *table, QPoint(20, 250));
    EXPECT_EQ(rows->dropped, "own.png 1 own.png 5 ");
    EXPECT_EQ(rows->items, "cdXba");
}

// Outlines

struct MovableTree : Tree {
    MovableTree() { top = {node("a", {node("b"), node("c")}), node("d")}; }
    bool isMovable(const NSOutlineView&, const Item&) const override { return true; }
    void itemsDragged(NSOutlineView&, const std::vector<Item>& items, const Item& holder,
                      std::int64_t before) override {
        for (const Item& item : items)
            told += of(item).name;
        told += ">" + of(holder).name + std::to_string(before) + " ";
    }
    bool acceptsDrop(const NSOutlineView&, const std::vector<URL>&) const override { return true; }
    void urlsDropped(NSOutlineView&, const std::vector<URL>& urls, const Item& holder,
                     std::int64_t before) override {
        told += names(urls) + ">" + of(holder).name + std::to_string(before) + " ";
    }

    std::string told;
};

TEST_F(DragHostTest, ItemsOfAnOutlineAreDraggedIntoEachOther) {
    const auto tree = std::make_shared<MovableTree>();
    const auto outline = NSOutlineView::create({0, 0, 110, 300});
    outline->setNumberOfColumns(1);
    outline->setOutlineDataSource(tree);
    outline->expandAllItems(); // a b c d
    content->addSubview(outline);
    const auto beside = addDropView({110, 0, 120, 300}, *content);
    const auto at = [](int row, int below) { return QPoint(80, row * 24 + 12 + below); };
    const struct {
        IndexSet selected;
        int from;
        QPoint to;
        const char* told;
    } table[] = {
        {{3}, 3, at(0, 0), "d>a2 "},    {{3}, 3, at(0, -10), "d>root0 "},
        {{3}, 3, at(0, 10), "d>a0 "},   {{1}, 1, at(3, 10), "b>root2 "},
        {{1}, 1, at(2, 10), "b>a2 "},   {{1}, 1, QPoint(80, 250), "b>root2 "},
        {{0}, 0, at(1, 0), ""},         // into itself
        {{0, 1}, 0, at(3, 0), "a>d0 "}, // what goes along is not named
    };
    for (const auto& step : table) {
        tree->told.clear();
        outline->selectOnlyRows(step.selected);
        drag(*outline, at(step.from, 0), *outline, step.to);
        EXPECT_EQ(tree->told, step.told);
    }
    tree->told.clear();
    drag(*beside, {20, 50}, *outline, at(3, 0));
    EXPECT_EQ(tree->told, "own.png >d0 ");
}

// Collections

struct Items : NSCollectionViewDataSource {
    std::int64_t numberOfItems(const NSCollectionView&, std::int64_t) const override { return 6; }
    bool isMovable(const NSCollectionView&, IndexPath path) const override {
        return path.item != 5;
    }
    void itemsDragged(NSCollectionView&, const std::set<IndexPath>& items,
                      IndexPath before) override {
        for (const IndexPath item : items)
            told += std::to_string(item.item);
        told += ">" + std::to_string(before.item) + " ";
    }
    bool acceptsDrop(const NSCollectionView&, const std::vector<URL>&) const override {
        return true;
    }
    void urlsDropped(NSCollectionView&, const std::vector<URL>& urls, IndexPath before) override {
        told += names(urls) + ">" + std::to_string(before.item) + " ";
    }
    std::string told;
};

TEST_F(DragHostTest, ItemsOfACollectionAreDraggedToAnotherPlace) {
    const auto items = std::make_shared<Items>();
    const auto view = NSCollectionView::create({0, 100, 200, 200});
    view->setDataSource(items);
    view->setCollectionViewLayout(std::make_shared<NSCollectionViewFlowLayout>(CGSize(40, 40), 10));
    content->addSubview(view);
    const auto beside = addDropView({0, 0, 200, 90}, *content);
    const auto at = [](int column, int line, int right) {
        return QPoint(column * 50 + 20 + right, line * 50 + 20);
    };
    const struct {
        std::set<IndexPath> selected;
        QPoint from, to;
        const char* told;
    } table[] = {
        {{{0, 0}}, at(0, 0, 0), at(2, 0, -9), "0>2 "},
        {{{0, 0}}, at(0, 0, 0), at(2, 0, 9), "0>3 "},
        {{{0, 0}, {3, 0}, {5, 0}}, at(3, 0, 0), at(0, 1, -9), "03>4 "},
        {{{0, 0}}, at(0, 0, 0), {100, 150}, "0>6 "},
        {{{5, 0}}, at(1, 1, 0), at(0, 0, 0), ""},
    };
    for (const auto& step : table) {
        items->told.clear();
        view->setSelectionIndexPaths(step.selected);
        drag(*view, step.from, *view, step.to);
        EXPECT_EQ(items->told, step.told);
    }
    items->told.clear();
    drag(*beside, {20, 50}, *view, at(1, 0, -9));
    EXPECT_EQ(items->told, "own.png >1 ");
}

} // namespace
