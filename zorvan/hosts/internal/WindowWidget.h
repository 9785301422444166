#pragma once

#include <zorvan/hosts/internal/EventInProgress.h>
#include <zorvan/hosts/internal/ItemBar.h>
#include <zorvan/interface/NSWindow.h>
#include <zorvan/observation/NoteSubscriber.h>

#include <QMainWindow>
#include <memory>
#include <string_view>
#include <vector>

namespace zorvan::internal {

/// A window of the desktop: below the title bar the toolbar, the content as a tree of widgets, and
/// the touch bar.
class WindowWidget : public QMainWindow, NSWindowObserver {
public:
    explicit WindowWidget(std::shared_ptr<NSWindow> window);

    const std::shared_ptr<NSWindow>& shownWindow() const noexcept { return window_; }

    /// Has Tab go as the views say, once all that comes in this turn of the event loop is there.
    void orderKeyViewsLater();

    /// Goes, once the event in progress, which may have asked for it, is done with.
    void retire();

protected:
    bool event(QEvent* event) noexcept override {
        const EventInProgress inProgress;
        return QMainWindow::event(event);
    }
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    class ContentHolder;

    void viewsNeedDisplay() override { later(&WindowWidget::display); }
    void propertiesDidChange() override;
    void contentViewDidChange() override;
    void toolbarDidChange() override { later(&WindowWidget::followToolbar); }
    void touchBarDidChange() override { later(&WindowWidget::followTouchBar); }
    void firstResponderDidChange() override;

    void subscribe(std::string_view name, void (WindowWidget::*act)());
    void later(void (WindowWidget::*act)());
    void display();
    void closeAlong();
    void followSize();
    void followToolbar();
    void followTouchBar();
    ItemBar* addBar(ItemBar::Kind kind);
    template <class Bar>
    void followBar(ItemBar*& shown, ItemBar::Kind kind, const std::shared_ptr<Bar>& bar,
                   BarItems (*itemsOf)(const Bar&));
    bool isSizedByDesktop() const;
    void comeToFront();
    void followLooks();
    void orderKeyViews();
    void orderParts();

    const std::shared_ptr<NSWindow> window_;
    std::vector<std::shared_ptr<NoteSubscriber>> subscribers_;
    /// Until this retires.
    std::shared_ptr<NSWindowObserver> observer_{std::make_shared<char>(), this};
    /// Bars are made when there is something to show in them.
    ItemBar* toolbar_ = nullptr;
    ContentHolder* const holder_;
    ItemBar* touchBar_ = nullptr;
    bool isClosing_ = false;
    bool willOrderKeyViews_ = false;
};

} // namespace zorvan::internal
