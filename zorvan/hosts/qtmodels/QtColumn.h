#pragma once

#include <QString>
#include <QVariant>
#include <functional>
#include <map>

namespace zorvan {

/// A column of a `QtListModel`: what its cells say of an item.
template <class Item>
struct QtColumn {
    /// What a role of Qt (`Qt::DisplayRole`, ...) says of an item.
    using Roles = std::map<int, std::function<QVariant(const Item&)>>;
    /// Takes what was entered for a role; false refuses it.
    using Setter = std::function<bool(Item&, const QVariant&)>;

    /// What the header says.
    QString title = {};
    /// Those that cells answer; nothing is said for any other.
    Roles roles;
    /// A column with one for `Qt::EditRole` can be edited, one with one for `Qt::CheckStateRole`
    /// can be ticked.
    ///
    /// Over a `SelectableArray` a setter changes a copy that takes the element's place. The items
    /// of a `ManagedList` stay as they are: there a setter changes what the item stands for, such
    /// as the object of a pointer, and one that changes the item itself stops the program.
    ///
    /// A setter may change the list, too: the item is followed to where it stands then, and one
    /// that has left the list is not replaced.
    std::map<int, Setter> setters = {};
    /// By what the list is sorted when a view sorts by this column; none leaves it as it is.
    /// Backwards when the view asks for the descending order, equal items in the order in which
    /// they stand.
    std::function<bool(const Item&, const Item&)> order = {};
};

} // namespace zorvan
