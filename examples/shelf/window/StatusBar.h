#pragma once

#include <zorvan/interface/NSButton.h>
#include <zorvan/platform/appkit/NSView.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

/// A line of text at the bottom of the window; while something is under way how far that is, and a
/// button that ends it.
class StatusBar : public zorvan::NSView {
public:
    static constexpr double height = 30;

    static std::shared_ptr<StatusBar> create(std::function<void()> cancel);
    using NSView::NSView;

    void setText(const std::string& text);
    /// From 0 to 1; absent when nothing is under way.
    void setProgress(std::optional<double> progress);

    void draw(zorvan::Canvas& canvas) const override;
    void layout() override;

private:
    std::string text_;
    std::optional<double> progress_;
    std::shared_ptr<zorvan::NSButton> cancel_;
};

/// What a window shows: one view, and the status bar below it.
class Stage : public zorvan::NSView {
public:
    static std::shared_ptr<Stage> create(const std::shared_ptr<StatusBar>& statusBar);
    using NSView::NSView;

    /// In place of the one before.
    void show(const std::shared_ptr<zorvan::NSView>& view);
    /// Null at first.
    const std::shared_ptr<zorvan::NSView>& shown() const { return shown_; }

    void layout() override;

private:
    std::shared_ptr<zorvan::NSView> shown_;
    std::shared_ptr<StatusBar> statusBar_;
};
