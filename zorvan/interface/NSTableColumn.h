#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace zorvan {

class NSTableView;

/// A column of a table. What is set is shown at once by the table that has the column.
class NSTableColumn {
    struct Key {};
    friend class NSTableView;

public:
    /// 100 points wide, and in no table yet.
    static std::shared_ptr<NSTableColumn> create(std::string title = {});
    /// For `create`.
    NSTableColumn(Key, std::string title) : title_(std::move(title)) {}

    /// What the header says.
    /// @{
    const std::string& title() const noexcept { return title_; }
    void setTitle(std::string title) { change(title_, std::move(title)); }
    /// @}

    /// In points; 100 unless set. A negative width, or one that is not a number, counts as 0.
    /// @{
    double width() const noexcept { return width_; }
    void setWidth(double width) { change(width_, width > 0 ? width : 0); }
    /// @}

    /// Whether a click on its header sorts by the column; false unless set.
    /// @{
    bool isSortable() const noexcept { return isSortable_; }
    void setSortable(bool sortable) { change(isSortable_, sortable); }
    /// @}

    /// The table that has the column, of several the latest; null for none.
    std::shared_ptr<NSTableView> tableView() const noexcept { return tableView_.lock(); }

private:
    void didChange() const;
    template <class Property>
    void change(Property& property, Property value) {
        property = std::move(value);
        didChange();
    }

    std::weak_ptr<NSTableView> tableView_;
    std::string title_;
    double width_ = 100;
    bool isSortable_ = false;
};

} // namespace zorvan
