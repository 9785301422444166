#pragma once

#include <zorvan/interface/NSTableView.h>

#include <memory>

class QHeaderView;

namespace zorvan::internal {

/// Keeps the header of a widget as the columns of a table are, and the columns as a person makes
/// them: their widths, and by which one the rows stand.
class TableHeader {
public:
    TableHeader(std::shared_ptr<NSTableView> table, QHeaderView& header);

    /// After any change of the columns, once the model has as many.
    void follow();
    void followSortOrder();

private:
    void click(int column);

    const std::shared_ptr<NSTableView> table_;
    QHeaderView& header_;
    bool isFollowing_ = false;
};

} // namespace zorvan::internal
