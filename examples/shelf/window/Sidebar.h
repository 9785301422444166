#pragma once

#include "Album.h"

#include <zorvan/interface/NSOutlineView.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// A tree of what the pictures can be chosen by: all, by folder, by kind, with how many there are.
/// Several lines can be chosen at once.
class Sidebar : public zorvan::NSOutlineViewDataSource,
                public zorvan::NSViewObserver,
                public std::enable_shared_from_this<Sidebar> {
public:
    /// `chosen` gets what lets the chosen pictures through; an empty filter for all.
    static std::shared_ptr<Sidebar> create(std::function<void(Album::Filter)> chosen);

    const std::shared_ptr<zorvan::NSScrollView>& scrollView() const { return scrollView_; }
    const std::shared_ptr<zorvan::NSOutlineView>& outline() const { return outline_; }
    /// Counts these pictures. What is chosen and is still there stays chosen.
    void show(const std::vector<PictureFile::Pointer>& pictures);

    std::int64_t numberOfChildren(const zorvan::NSOutlineView&, const Item& item) const override;
    Item child(const zorvan::NSOutlineView&, std::int64_t index, const Item& item) const override;
    std::string text(const zorvan::NSOutlineView&, std::int64_t column,
                     const Item& item) const override;
    void frameDidChange() override;

private:
    struct Line {
        std::string title;
        std::string PictureFile::*field = nullptr; // that says what a picture belongs to
        std::string value = {};
        std::int64_t count = 0;
        std::vector<std::shared_ptr<Line>> lines = {}; // below a heading
        bool isHeading = false;
    };
    using Lines = std::vector<std::shared_ptr<Line>>;

    explicit Sidebar(std::function<void(Album::Filter)> chosen) : chosen_(std::move(chosen)) {}
    void start();
    void choose();
    const Lines& linesOf(const Item& item) const;
    static Lines count(const Lines& before, std::string PictureFile::*field,
                       const std::vector<PictureFile::Pointer>& pictures);

    const std::function<void(Album::Filter)> chosen_;
    const std::shared_ptr<zorvan::NSOutlineView> outline_ = zorvan::NSOutlineView::create();
    const std::shared_ptr<zorvan::NSScrollView> scrollView_ = zorvan::NSScrollView::create();
    Lines top_;
    bool isCounting_ = false;
    bool isFilled_ = false; // for the first time, the lines are opened
};
