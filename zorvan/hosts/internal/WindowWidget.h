#pragma once

#include <zorvan/hosts/internal/ItemBar.h>
#include <zorvan/interface/NSWindow.h>
#include <zorvan/observation/NoteSubscriber.h>

#include <QMainWindow>
#include <memory>

namespace zorvan::internal {

/// A window of the desktop: below the title bar the toolbar, the content as a tree of widgets, and
/// the touch bar.
class WindowWidget : public QMainWindow {
public:
    explicit WindowWidget(std::shared_ptr<NSWindow> window);

    const std::shared_ptr<NSWindow>& shownWindow() const noexcept { return window_; }

    /// Goes, once the event in progress, which may have asked for it, is done with.
    void retire();

protected:
    bool event(QEvent* event) noexcept override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    class Mirror;
    class ContentHolder;

    void followProperties();
    void followSize();
    void followContent();
    void followToolbar();
    void followTouchBar();
    ItemBar* addBar(ItemBar::Kind kind);
    void fillBar(ItemBar& bar, bool isShown, BarItems items);
    bool isSizedByDesktop() const;
    void followFirstResponder();
    void comeToFront();
    void followLooks();

    const std::shared_ptr<NSWindow> window_;
    const std::shared_ptr<NoteSubscriber> closing_, resizing_, becomingMain_;
    std::shared_ptr<Mirror> mirror_;
    /// Bars are made when there is something to show in them.
    ItemBar* toolbar_ = nullptr;
    ContentHolder* const holder_;
    ItemBar* touchBar_ = nullptr;
    bool isClosing_ = false;
};

} // namespace zorvan::internal
