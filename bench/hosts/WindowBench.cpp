// A window with a toolbar, a sidebar and a button of its own looks, beside the same made of Qt's
// widgets: how long it takes to open, and to follow the mouse and the keyboard.

#include "settle.h"

#include <zorvan/hosts/QtWindowHost.h>
#include <zorvan/interface/DynamicToolbar.h>
#include <zorvan/interface/NSSplitView.h>
#include <zorvan/interface/NSTableView.h>
#include <zorvan/interface/TintedButton.h>
#include <zorvan/media/NSColor.h>
#include <zorvan/platform/appkit/NSScrollView.h>

#include <benchmark/benchmark.h>

#include <QAbstractButton>
#include <QHeaderView>
#include <QLineEdit>
#include <QMainWindow>
#include <QPainter>
#include <QPainterPath>
#include <QSplitter>
#include <QStringListModel>
#include <QTableView>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

#include <array>
#include <memory>
#include <string>

using namespace zorvan;

namespace {

constexpr std::array toolNames{"Back", "Forward", "Export", "Delete"};
constexpr int sidebarRows = 20;
const QRect buttonPlace(40, 40, 160, 40);

struct Places : NSTableViewDataSource {
    std::int64_t numberOfRows(const NSTableView&) const override { return sidebarRows; }
    std::string text(const NSTableView&, std::int64_t, std::int64_t row) const override {
        return "place " + std::to_string(row);
    }
};

class Ours {
public:
    Ours() {
        fillToolbar();
        table_->setNumberOfColumns(1);
        const auto scrollView = NSScrollView::create();
        scrollView->setDocumentView(table_);
        table_->setDataSource(places_);
        const auto content = NSView::create();
        content->addSubview(button_);
        const auto split = NSSplitView::create();
        split->addSubview(scrollView);
        split->addSubview(content);
        window_->setContentView(split);
        split->setPosition(200, 0);
        host_ = QtWindowHost::show(window_);
        settle();
    }
    QWidget& button() { return *host_->widget(*button_); }
    QWidget& field() { return *host_->widget(*field_); }

private:
    void fillToolbar() {
        bar_->addItemSet();
        for (const char* const name : toolNames) {
            const auto item = NSToolbarItem::create(name);
            item->setTitle(name);
            bar_->addItem({.identifier = name})->setItem(item);
        }
        field_ = bar_->addItem({.createSearchField = [](SearchFieldSettings&) {}});
        window_->setToolbar(bar_->toolbar());
        bar_->reloadDisplayedItems();
    }
    static std::shared_ptr<TintedButton> makeButton() {
        auto made = TintedButton::create({.title = "Press"});
        made->setFrame({40, 40, 160, 40});
        made->setBackgroundRadius(8);
        made->setBackgroundTintGradient(
            NSGradient::make({.colors = {NSColor::blue, NSColor::black}}));
        made->setBackgroundHoverGradient(
            NSGradient::make({.colors = {NSColor::red, NSColor::blue}}));
        return made;
    }

    const std::shared_ptr<Places> places_ = std::make_shared<Places>();
    const std::shared_ptr<NSWindow> window_ = NSWindow::create({800, 500});
    const std::shared_ptr<DynamicToolbar> bar_ = DynamicToolbar::create({"bar"});
    const std::shared_ptr<NSTableView> table_ = NSTableView::create();
    const std::shared_ptr<TintedButton> button_ = makeButton();
    std::shared_ptr<NSSearchField> field_;
    std::shared_ptr<QtWindowHost> host_;
};

/// A gradient that is another under the mouse.
class GradientButton : public QAbstractButton {
public:
    using QAbstractButton::QAbstractButton;

protected:
    void enterEvent(QEnterEvent*) override { update(); }
    void leaveEvent(QEvent*) override { update(); }
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QLinearGradient shade(0, 0, width(), 0);
        shade.setColorAt(0, underMouse() ? Qt::red : Qt::blue);
        shade.setColorAt(1, underMouse() ? Qt::blue : Qt::black);
        painter.setPen(Qt::NoPen);
        painter.setBrush(shade);
        painter.drawRoundedRect(rect(), 8, 8);
        painter.setPen(Qt::white);
        painter.drawText(rect(), Qt::AlignCenter, text());
    }
};

class Peer {
public:
    Peer() {
        auto* const bar = window_.addToolBar("bar");
        for (const char* const name : toolNames)
            bar->addAction(name);
        auto* const space = new QWidget;
        space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
        bar->addWidget(space);
        bar->addWidget(field_ = new QLineEdit);
        field_->setClearButtonEnabled(true);
        auto* const split = new QSplitter;
        QStringList places;
        for (int row = 0; row < sidebarRows; ++row)
            places += QString("place %1").arg(row);
        model_.setStringList(places);
        table_ = new QTableView(split);
        table_->setModel(&model_);
        table_->verticalHeader()->hide();
        table_->horizontalHeader()->hide();
        auto* const content = new QWidget(split);
        button_ = new GradientButton(content);
        button_->setText("Press");
        button_->setGeometry(buttonPlace);
        split->setSizes({200, 600});
        window_.setCentralWidget(split);
        window_.resize(800, 550);
        window_.show();
        settle();
    }
    QWidget& button() { return *button_; }
    QWidget& field() { return *field_; }

private:
    QStringListModel model_;
    QMainWindow window_;
    QLineEdit* field_ = nullptr;
    QTableView* table_ = nullptr;
    QAbstractButton* button_ = nullptr;
};

template <class Shown>
void startWindow(benchmark::State& state) {
    for (auto _ : state) {
        const Shown shown;
        benchmark::DoNotOptimize(&shown);
    }
    settle();
}
BENCHMARK(startWindow<Ours>)->Name("startWindow/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(startWindow<Peer>)->Name("startWindow/qt")->Unit(benchmark::kMillisecond);

/// In and out again, drawing included.
template <class Shown>
void hover(benchmark::State& state) {
    Shown shown;
    QWidget& button = shown.button();
    for (auto _ : state) {
        QTest::mouseMove(&button, {20, 20});
        settle();
        QTest::mouseMove(button.window(), {button.window()->width() - 20, 300});
        settle();
    }
}
BENCHMARK(hover<Ours>)->Name("hover/ours")->Unit(benchmark::kMicrosecond);
BENCHMARK(hover<Peer>)->Name("hover/qt")->Unit(benchmark::kMicrosecond);

/// A character typed into the search field and taken out again, drawing included.
template <class Shown>
void type(benchmark::State& state) {
    Shown shown;
    shown.field().setFocus();
    settle();
    for (auto _ : state) {
        QTest::keyClick(&shown.field(), 'a');
        settle();
        QTest::keyClick(&shown.field(), Qt::Key_Backspace);
        settle();
    }
}
BENCHMARK(type<Ours>)->Name("typeInSearchField/ours")->Unit(benchmark::kMicrosecond);
BENCHMARK(type<Peer>)->Name("typeInSearchField/qt")->Unit(benchmark::kMicrosecond);

} // namespace
