#pragma once

#include <zorvan/collections/SelectableArray.h>
#include <zorvan/hosts/rows/RowList.h>

#include <memory>
#include <utility>

namespace zorvan {

/// The rows of a selectable array. It puts itself before the edition handler that the array has,
/// which goes on running the changes; a handler that is set later takes its place.
template <class Element>
class SelectableArrayRows final : public ItemList<Element> {
    using Array = SelectableArray<Element>;

public:
    /// `follower` must outlive the rows.
    SelectableArrayRows(std::shared_ptr<Array> array, RowFollower& follower)
        : ItemList<Element>(array->elements()), array_(std::move(array)), follower_(follower) {
        array_->setEditionHandler(Handler{withoutGone(array_->editionHandler()), self_});
    }
    ~SelectableArrayRows() override {
        const auto* handler = array_->editionHandler().template target<Handler>();
        if (handler && handler->rows.lock() == self_)
            array_->setEditionHandler(withoutGone(handler->before));
    }

    const IndexSet& selection() const override { return array_->selection(); }
    void select(const IndexSet& rows) override { array_->select(rows); }
    void remove(const IndexSet& rows) override { array_->remove(rows); }
    void move(const IndexSet& rows, std::int64_t to) override { array_->move(rows, to); }
    /// As `SelectableArray::sort`.
    void sort(typename ItemList<Element>::Order by) override { array_->sort(std::move(by)); }
    bool replace(Element changed, std::int64_t at) override {
        array_->replace(std::move(changed), at);
        return true;
    }

private:
    using Kind = RowChange::Kind;
    using Edition = SelectableArrayEdition;

    /// The model may go while a handler still holds a change.
    struct Handler {
        typename Array::EditionHandler before;
        std::weak_ptr<SelectableArrayRows*> rows;

        void operator()(const typename Array::Action& action) const {
            before([action, owner = rows] {
                Edition edition = action();
                if (const auto there = owner.lock())
                    (*there)->didChange(edition);
                return edition;
            });
        }
    };

    /// A handler without those of models that have gone since, when others stood before them.
    static typename Array::EditionHandler
    withoutGone(const typename Array::EditionHandler& handler) {
        const Handler* const own = handler.template target<Handler>();
        if (!own)
            return handler;
        auto before = withoutGone(own->before);
        return own->rows.expired() ? before : Handler{std::move(before), own->rows};
    }

    static RowChange changeOf(const Edition& edition) {
        if (const auto* insert = edition.as<Edition::Insert>())
            return {Kind::insert, IndexSet({.loc = insert->at, .len = insert->count})};
        if (const auto* remove = edition.as<Edition::Remove>())
            return {Kind::remove, remove->at};
        if (const auto* replace = edition.as<Edition::Replace>())
            return {Kind::replace, {replace->at}};
        return {edition.as<Edition::Select>() ? Kind::select : Kind::reorder};
    }
    void didChange(const Edition& edition) {
        follower_.rowsDidChange(changeOf(edition), [this] { return array_->reordering().value(); });
    }

    const std::shared_ptr<Array> array_;
    RowFollower& follower_;
    const std::shared_ptr<SelectableArrayRows*> self_ =
        std::make_shared<SelectableArrayRows*>(this);
};

} // namespace zorvan
