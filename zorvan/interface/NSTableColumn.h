#pragma once

#include <memory>
#include <string>
#include <utility>

namespace zorvan {

/// A column of a table.
class NSTableColumn {
    struct Key {};

public:
    static std::shared_ptr<NSTableColumn> create(std::string title = {}) {
        return std::make_shared<NSTableColumn>(Key{}, std::move(title));
    }
    NSTableColumn(Key, std::string title) : title_(std::move(title)) {}

    const std::string& title() const noexcept { return title_; }
    void setTitle(std::string title) { title_ = std::move(title); }

    /// In points; 100 unless set. A negative width, or one that is not a number, counts as 0.
    double width() const noexcept { return width_; }
    void setWidth(double width) noexcept { width_ = width > 0 ? width : 0; }

private:
    std::string title_;
    double width_ = 100;
};

} // namespace zorvan
