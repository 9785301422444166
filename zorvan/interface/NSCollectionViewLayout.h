#pragma once

#include <zorvan/collections/IndexPath.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/numbers-geometry/CGSize.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace zorvan {

/// Where an element of a collection view stands, in the view's coordinates, y growing downward.
struct NSCollectionViewLayoutAttributes {
    /// In points.
    CGRect frame;
    /// Absent for decoration, which stands for no item.
    std::optional<IndexPath> indexPath;
};

/// Says where the elements of a collection view stand.
class NSCollectionViewLayout {
public:
    virtual ~NSCollectionViewLayout() = default;

    /// Lays out sections of that many items for a view of that width.
    virtual void prepare(const std::vector<std::int64_t>& itemCounts, double width) = 0;
    /// The elements whose frames share area with the rectangle, in the layout's order.
    virtual std::vector<NSCollectionViewLayoutAttributes>
    layoutAttributesForElements(const CGRect& in) const = 0;
    /// Where an item stands; null-sized when there is no such item. Unless overridden it looks at
    /// all elements.
    virtual CGRect frameOfItem(IndexPath at) const;
    /// How much room all elements take.
    virtual CGSize contentSize() const = 0;
};

/// Items of one size in lines from left to right, sections one below the other.
class NSCollectionViewFlowLayout : public NSCollectionViewLayout {
public:
    /// Both in points; the spacing stands between items and between lines.
    explicit NSCollectionViewFlowLayout(CGSize itemSize = {50, 50}, double spacing = 10)
        : itemSize_(itemSize), spacing_(spacing) {}

    void prepare(const std::vector<std::int64_t>& itemCounts, double width) override;
    std::vector<NSCollectionViewLayoutAttributes>
    layoutAttributesForElements(const CGRect& in) const override;
    CGRect frameOfItem(IndexPath at) const override;
    CGSize contentSize() const override;

private:
    double sectionHeight(std::int64_t itemCount) const;

    CGSize itemSize_;
    double spacing_;
    std::vector<std::int64_t> itemCounts_;
    std::int64_t perLine_ = 1;
    double width_ = 0;
};

/// A flow layout that stretches its items so that a given number of columns fills the width.
class NSCollectionViewGridLayout : public NSCollectionViewLayout {
public:
    /// A number of columns below 1 counts as 1.
    explicit NSCollectionViewGridLayout(std::int64_t columns = 4, double rowHeight = 50)
        : columns_(columns), rowHeight_(rowHeight) {}

    void prepare(const std::vector<std::int64_t>& itemCounts, double width) override;
    std::vector<NSCollectionViewLayoutAttributes>
    layoutAttributesForElements(const CGRect& in) const override {
        return flow_.layoutAttributesForElements(in);
    }
    CGRect frameOfItem(IndexPath at) const override { return flow_.frameOfItem(at); }
    CGSize contentSize() const override { return flow_.contentSize(); }

private:
    std::int64_t columns_;
    double rowHeight_;
    NSCollectionViewFlowLayout flow_;
};

} // namespace zorvan
