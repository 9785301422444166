#pragma once

#include <zorvan/collections/ManagedList.h>
#include <zorvan/hosts/rows/RowList.h>
#include <zorvan/platform/dispatch/NSNotificationCenter.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <memory>
#include <optional>
#include <utility>

namespace zorvan {

/// The rows of a managed list: what it shows.
template <class Item>
class ManagedListRows final : public ItemList<Item> {
    using List = ManagedList<Item>;

public:
    /// `follower` must outlive the rows.
    ManagedListRows(std::shared_ptr<List> list, RowFollower& follower)
        : ItemList<Item>(list->items()), list_(std::move(list)), follower_(follower),
          will_(observe(List::willReloadNotification, &ManagedListRows::willChange)),
          did_(observe(List::didReloadNotification, &ManagedListRows::didChange)) {}
    ~ManagedListRows() override {
        center().removeObserver(will_);
        center().removeObserver(did_);
    }

    const IndexSet& selection() const override { return list_->selection(); }
    void select(const IndexSet& rows) override { list_->setSelection(rows); }
    void remove(const IndexSet& rows) override { list_->remove(rows); }
    void move(const IndexSet& rows, std::int64_t to) override { list_->move(rows, to); }
    /// As `ManagedList::sort`.
    void sort(typename ItemList<Item>::Order by) override { list_->sort(std::move(by)); }
    bool replace(Item changed, std::int64_t at) override {
        if (!(changed == this->items()[static_cast<std::size_t>(at)]))
            fatalError("A setter changed an item of a managed list, and not what the item stands "
                       "for.");
        return false;
    }

private:
    using Edition = typename List::Edition;
    using Kind = RowChange::Kind;

    static NSNotificationCenter& center() { return *NSNotificationCenter::defaultCenter(); }
    std::shared_ptr<NotificationObserver> observe(std::string_view name,
                                                  void (ManagedListRows::*told)(const Edition&)) {
        return center().addObserver(NSNotificationName(name), list_, nullptr,
                                    [this, told](const Notification& note) {
                                        if (const Edition* edition = List::edition(note))
                                            (this->*told)(*edition);
                                    });
    }

    static RowChange changeOf(const Edition& edition) {
        switch (edition.action) {
        case Edition::Action::insert:
            return rowsOr(Kind::insert, edition.insertedIndexes);
        case Edition::Action::remove:
            return rowsOr(Kind::remove, edition.removedIndexes);
        case Edition::Action::select:
            return {Kind::select};
        default:
            return {Kind::reorder};
        }
    }
    /// Under a filter, an insertion may show nothing, and still ends the selection.
    static RowChange rowsOr(Kind kind, const std::optional<IndexSet>& rows) {
        return rows && !rows->isEmpty() ? RowChange{kind, *rows} : RowChange{Kind::select};
    }

    void willChange(const Edition& edition) {
        // Another observer changes the list before we were told that a change has happened: that
        // one is what the list tells of still. Or it never happened.
        const std::weak_ptr<const bool> alive = alive_;
        if (pending_ && !list_->reordering())
            follower_.rowsWereLost(*std::exchange(pending_, std::nullopt));
        else
            tellPending();
        if (alive.expired()) // whoever was told has dropped the model
            return;
        pending_ = changeOf(edition);
        if (pending_->kind != Kind::select)
            follower_.rowsWillChange(*pending_);
    }
    void didChange(const Edition&) { tellPending(); }
    void tellPending() {
        if (const std::optional<RowChange> change = std::exchange(pending_, std::nullopt))
            follower_.rowsDidChange(*change, [this] { return list_->reordering().value(); });
    }

    const std::shared_ptr<List> list_;
    RowFollower& follower_;
    const std::shared_ptr<NotificationObserver> will_, did_;
    std::optional<RowChange> pending_;
    const std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

} // namespace zorvan
