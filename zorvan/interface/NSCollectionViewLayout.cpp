#include <zorvan/interface/NSCollectionViewLayout.h>

#include <zorvan/numbers-geometry/RealNumber.h>

#include <algorithm>

namespace zorvan {

CGRect NSCollectionViewLayout::frameOfItem(IndexPath at) const {
    for (const auto& element : layoutAttributesForElements(CGRect(CGPoint(), contentSize())))
        if (element.indexPath == at)
            return element.frame;
    return {};
}

void NSCollectionViewFlowLayout::prepare(const std::vector<std::int64_t>& itemCounts,
                                         double width) {
    itemCounts_ = itemCounts;
    width_ = width;
    const double step = itemSize_.width + spacing_;
    perLine_ = step > 0 ? std::max<std::int64_t>(floorInt((width + spacing_) / step), 1) : 1;
}

double NSCollectionViewFlowLayout::sectionHeight(std::int64_t itemCount) const {
    const std::int64_t lines = itemCount / perLine_ + (itemCount % perLine_ > 0);
    return static_cast<double>(lines) * (itemSize_.height + spacing_);
}

std::vector<NSCollectionViewLayoutAttributes>
NSCollectionViewFlowLayout::layoutAttributesForElements(const CGRect& in) const {
    std::vector<NSCollectionViewLayoutAttributes> elements;
    const double stepX = itemSize_.width + spacing_, stepY = itemSize_.height + spacing_;
    double top = 0;
    for (std::size_t section = 0; section < itemCounts_.size(); ++section) {
        const std::int64_t count = itemCounts_[section];
        const std::int64_t skipped =
            stepY > 0 ? std::max<std::int64_t>(floorInt((in.minY() - top) / stepY), 0) : 0;
        std::int64_t item = skipped < count / perLine_ + 1 ? skipped * perLine_ : count;
        for (; item < count; ++item) {
            const CGRect frame(static_cast<double>(item % perLine_) * stepX,
                               top + static_cast<double>(item / perLine_) * stepY, itemSize_.width,
                               itemSize_.height);
            if (frame.minY() >= in.maxY())
                break;
            if (frame.intersects(in))
                elements.push_back({frame, IndexPath{item, static_cast<std::int64_t>(section)}});
        }
        top += sectionHeight(count);
    }
    return elements;
}

CGRect NSCollectionViewFlowLayout::frameOfItem(IndexPath at) const {
    const auto sections = static_cast<std::int64_t>(itemCounts_.size());
    if (at.section < 0 || at.section >= sections || at.item < 0 ||
        at.item >= itemCounts_[static_cast<std::size_t>(at.section)])
        return {};
    double top = 0;
    for (std::size_t section = 0; section < static_cast<std::size_t>(at.section); ++section)
        top += sectionHeight(itemCounts_[section]);
    return {static_cast<double>(at.item % perLine_) * (itemSize_.width + spacing_),
            top + static_cast<double>(at.item / perLine_) * (itemSize_.height + spacing_),
            itemSize_.width, itemSize_.height};
}

CGSize NSCollectionViewFlowLayout::contentSize() const {
    double height = 0;
    for (const std::int64_t count : itemCounts_)
        height += sectionHeight(count);
    return {width_, std::max(height - spacing_, 0.0)};
}

void NSCollectionViewGridLayout::prepare(const std::vector<std::int64_t>& itemCounts,
                                         double width) {
    constexpr double spacing = 10;
    const auto columns = static_cast<double>(std::max<std::int64_t>(columns_, 1));
    flow_ = NSCollectionViewFlowLayout(
        {std::max((width - (columns - 1) * spacing) / columns, 1.0), rowHeight_}, spacing);
    flow_.prepare(itemCounts, width);
}

} // namespace zorvan
