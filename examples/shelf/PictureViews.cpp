#include "PictureViews.h"

#include "displayText.h"
#include "report.h"

#include <zorvan/interface/NSImage.h>
#include <zorvan/media/CGRect.h>
#include <zorvan/media/NSAttributedString.h>
#include <zorvan/media/NSColor.h>
#include <zorvan/media/NSGraphicsContext.h>
#include <zorvan/platform/appkit/NSScrollView.h>

#include <algorithm>
#include <cmath>
#include <map>

using namespace zorvan;

namespace {

constexpr NSColor paper({.white = 0.995, .alpha = 1}), side({.white = 0.945, .alpha = 1}),
    ink({.white = 0.13, .alpha = 1}), faint({.white = 0.45, .alpha = 1}),
    line({.white = 0.85, .alpha = 1}), tile({.white = 0.93, .alpha = 1});
const NSColor accent = NSColor::make({.hexString = "#2563EB"}).value();
const NSColor warning = NSColor::make({.hexString = "#B45309"}).value();

constexpr double margin = 22, gap = 18, captionHeight = 38;

struct Style {
    double size = 12;
    NSColor color = ink;
    TextAlignment alignment = TextAlignment::center;
    bool isBold = false;
};

void drawLine(const std::string& text, const CGRect& in, const Style& style) {
    const NSAttributedString line(
        text, {{std::string(AttributeName::font),
                TextFont{.family = "sans-serif", .size = style.size, .isBold = style.isBold}},
               {std::string(AttributeName::foregroundColor), TextColor(style.color.rgba())},
               {std::string(AttributeName::alignment), style.alignment}});
    drawTruncated(line, in);
}

void drawSymbol(const std::string& name, const CGRect& in, const NSColor& color) {
    if (const auto symbol = NSImage::systemSymbol(name))
        tintedImage(*symbol, color, 1)->draw(in);
}

/// As large as fits, in the middle, never enlarged.
CGRect fitted(CGSize size, const CGRect& in) {
    const double share = std::min({in.width() / size.width, in.height() / size.height, 1.0});
    const CGSize shown = size * share;
    return {std::round(in.midX() - shown.width / 2), std::round(in.midY() - shown.height / 2),
            shown.width, shown.height};
}

std::string nameOf(const ListedFile& file) {
    return forDisplay(file.name.substr(file.name.rfind('/') + 1));
}

} // namespace

std::string kindOf(const PictureFacts& facts) {
    if (!facts.error.empty())
        return "Unreadable";
    if (facts.movie)
        return "Movies";
    static const std::map<std::string, std::string> names{{"public.jpeg", "JPEG"},
                                                          {"public.png", "PNG"},
                                                          {"public.tiff", "TIFF"},
                                                          {"public.heic", "HEIC"}};
    const auto known = names.find(facts.type.value_or(""));
    return known == names.end() ? "Others" : known->second;
}

// PictureGrid

std::shared_ptr<PictureGrid> PictureGrid::create(const std::vector<ListedFile>& files,
                                                 const std::vector<PictureFacts>& facts) {
    auto grid = std::make_shared<PictureGrid>(Key{}, CGRect());
    grid->files_ = files;
    grid->facts_ = facts;
    grid->thumbnails_.resize(files.size());
    grid->setFilter("");
    return grid;
}

void PictureGrid::setCellSide(double side) {
    cellSide_ = std::clamp(side, 64.0, 512.0);
    thumbnails_.assign(files_.size(), std::nullopt);
    askForRoom();
}

void PictureGrid::setFilter(const std::string& text) {
    filter_ = text;
    reload();
}

void PictureGrid::setKind(const std::string& kind) {
    kind_ = kind;
    reload();
}

void PictureGrid::setSortedBySize(bool sorted) {
    isSortedBySize_ = sorted;
    reload();
}

void PictureGrid::reload() {
    items_.clear();
    for (std::size_t i = 0; i < files_.size(); ++i)
        if (files_[i].name.find(filter_) != std::string::npos &&
            (kind_.empty() || kindOf(facts_[i]) == kind_))
            items_.push_back(
                {i, shortened(nameOf(files_[i]), 20),
                 facts_[i].uprightSize ? sizeText(*facts_[i].uprightSize) : "unreadable"});
    const auto area = [this](const Item& item) {
        return facts_[item.index].uprightSize.value_or(CGSize()).area();
    };
    if (isSortedBySize_)
        std::stable_sort(items_.begin(), items_.end(),
                         [&](const Item& a, const Item& b) { return area(a) > area(b); });
    askForRoom();
}

/// The holder of the scroll view makes the grid as high as it needs to be.
void PictureGrid::askForRoom() {
    setNeedsDisplay(true);
    if (const auto scrollView = enclosingScrollView(*this))
        scrollView->superview()->setNeedsLayout(true);
}

void PictureGrid::select(std::optional<std::size_t> index) {
    selected_ = index;
    setNeedsDisplay(true);
}

void PictureGrid::selectNext(bool forward) {
    if (items_.empty())
        return;
    const auto current = std::find_if(items_.begin(), items_.end(),
                                      [this](const Item& item) { return selected_ == item.index; });
    auto next = current;
    if (current == items_.end())
        next = items_.begin();
    else if (forward && current + 1 != items_.end())
        ++next;
    else if (!forward && current != items_.begin())
        --next;
    select(next->index);
    const CGRect chosen = cell(static_cast<std::size_t>(next - items_.begin()));
    scrollToVisible(*this, chosen.shrunkBy({.dx = 0, .dy = -margin}));
}

double PictureGrid::columns(double width) const {
    const double room = width - 2 * margin;
    return std::max(1.0, std::floor((room + gap) / (cellSide_ + gap)));
}

double PictureGrid::height(double forWidth) const {
    const double rows = std::ceil(static_cast<double>(items_.size()) / columns(forWidth));
    return 2 * margin - gap + rows * (boxHeight() + captionHeight + gap);
}

CGRect PictureGrid::cell(std::size_t place) const {
    const double width = bounds().width(), room = width - 2 * margin, inRow = columns(width);
    // What is left over widens the gaps.
    const double step = inRow > 1 ? (room - cellSide_) / (inRow - 1) : cellSide_ + gap;
    const auto perRow = static_cast<std::size_t>(inRow);
    const double height = boxHeight() + captionHeight;
    const double x = margin + static_cast<double>(place % perRow) * step;
    const double top =
        bounds().height() - margin - static_cast<double>(place / perRow) * (height + gap);
    return {std::round(x), top - height, cellSide_, height};
}

std::shared_ptr<NSImage> PictureGrid::thumbnail(std::size_t index) const {
    auto& made = thumbnails_[index];
    if (!made) {
        // Enough pixels for the finest display.
        Picture picture(files_[index].url);
        const auto image = picture.thumbnail(static_cast<std::int64_t>(cellSide_ * 2));
        made = image ? NSImage::create(image, image->size() / 2) : nullptr;
    }
    return *made;
}

void PictureGrid::draw(Canvas& canvas) const {
    NSGraphicsContext::use(NSGraphicsContext::create(canvas), [&] {
        const CGRect shown = visibleRect(*this);
        fill(shown, paper);
        for (std::size_t place = 0; place < items_.size(); ++place) {
            const CGRect frame = cell(place);
            if (frame.intersects(shown))
                drawItem(items_[place], frame);
        }
        if (items_.empty())
            drawLine("No pictures", {shown.minX(), shown.midY() - 10, shown.width(), 20},
                     {.size = 14, .color = faint});
        if (shown.height() < bounds().height())
            drawScroller(shown);
    });
}

/// At the right edge, which part of the whole is to be seen.
void PictureGrid::drawScroller(const CGRect& shown) const {
    const double share = shown.height() / bounds().height();
    const double length = std::max(share * shown.height(), 24.0);
    const double way = (shown.height() - length) / (bounds().height() - shown.height());
    setFill(ink.withAlphaComponent(0.3));
    nsRoundedPath({shown.maxX() - 9, shown.minY() + shown.minY() * way, 6, length}, 3)->fill();
}

void PictureGrid::drawItem(const Item& item, const CGRect& cell) const {
    const CGRect box(cell.minX(), cell.maxY() - boxHeight(), cellSide_, boxHeight());
    const bool isSelected = selected_ == item.index;
    if (isSelected) {
        setFill(accent.withAlphaComponent(0.13));
        nsRoundedPath(cell.shrunkBy({.dx = -8, .dy = -7}), 10)->fill();
    }
    const auto image = thumbnail(item.index);
    if (image) {
        const CGRect frame = fitted(image->size(), box);
        setFill(tile);
        nsRoundedPath(frame, 4)->fill();
        NSGraphicsContext::saveGraphicsState();
        nsRoundedPath(frame, 4)->addClip();
        image->draw(frame);
        NSGraphicsContext::restoreGraphicsState();
    } else {
        setFill(tile);
        nsRoundedPath(box.shrunkBy({.dx = 10, .dy = 6}), 8)->fill();
        drawSymbol("exclamationmark.triangle", fitted({30, 30}, box), faint);
    }
    drawLine(item.title, {cell.minX() - 6, cell.minY() + 15, cell.width() + 12, 17},
             {.color = isSelected ? accent : ink, .isBold = isSelected});
    drawLine(item.detail, {cell.minX() - 6, cell.minY(), cell.width() + 12, 15},
             {.size = 10.5, .color = image ? faint : warning});
}

void PictureGrid::mouseDown(const NSEvent& with) {
    const CGPoint point = convertFromBase(with.locationInWindow);
    for (std::size_t place = 0; place < items_.size(); ++place)
        if (cell(place).contains(point))
            return select(items_[place].index);
    select(std::nullopt);
}

// KindList

std::shared_ptr<KindList> KindList::create(std::vector<Kind> kinds,
                                           std::function<void(std::size_t)> chosen) {
    auto list = std::make_shared<KindList>(Key{}, CGRect());
    list->kinds_ = std::move(kinds);
    list->chosen_ = std::move(chosen);
    return list;
}

CGRect KindList::row(std::size_t kind) const {
    constexpr double height = 30, top = 40;
    const double y = bounds().height() - top - height * static_cast<double>(kind + 1);
    return {10, y, bounds().width() - 20, height - 2};
}

void KindList::draw(Canvas& canvas) const {
    NSGraphicsContext::use(NSGraphicsContext::create(canvas), [&] {
        fill(bounds(), side);
        drawLine("Kinds", {18, bounds().height() - 34, bounds().width() - 36, 15},
                 {.size = 11, .color = faint, .alignment = TextAlignment::left, .isBold = true});
        for (std::size_t i = 0; i < kinds_.size(); ++i) {
            const CGRect frame = row(i);
            const bool isChosen = i == chosenKind_;
            if (isChosen) {
                setFill(accent);
                nsRoundedPath(frame, 7)->fill();
            }
            const double x = frame.minX(), y = frame.minY() + 5;
            drawSymbol(kinds_[i].symbol, {x + 10, y + 1, 16, 16},
                       isChosen ? NSColor::white : accent);
            drawLine(kinds_[i].name, {x + 36, y, frame.width() - 80, 17},
                     {.size = 13,
                      .color = isChosen ? NSColor::white : ink,
                      .alignment = TextAlignment::left});
            drawLine(
                std::to_string(kinds_[i].count), {frame.maxX() - 50, y, 40, 17},
                {.color = isChosen ? NSColor::white : faint, .alignment = TextAlignment::right});
        }
    });
}

void KindList::mouseDown(const NSEvent& with) {
    const CGPoint point = convertFromBase(with.locationInWindow);
    for (std::size_t i = 0; i < kinds_.size(); ++i)
        if (row(i).contains(point))
            choose(i);
}

void KindList::choose(const std::string& kind) {
    for (std::size_t i = 0; i < kinds_.size(); ++i)
        if (kinds_[i].name == kind)
            choose(i);
}

void KindList::choose(std::size_t kind) {
    chosenKind_ = kind;
    setNeedsDisplay(true);
    chosen_(kind);
}

// StatusBar

std::shared_ptr<StatusBar> StatusBar::create(std::string text) {
    auto bar = std::make_shared<StatusBar>(Key{}, CGRect());
    bar->text_ = std::move(text);
    return bar;
}

void StatusBar::draw(Canvas& canvas) const {
    NSGraphicsContext::use(NSGraphicsContext::create(canvas), [&] {
        fill(bounds(), NSColor({.white = 0.965, .alpha = 1}));
        fill({0, bounds().height() - 1, bounds().width(), 1}, line);
        drawLine(text_, {margin, bounds().height() / 2 - 10, bounds().width() / 2, 18},
                 {.color = faint, .alignment = TextAlignment::left});
    });
}
