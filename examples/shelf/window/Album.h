#pragma once

#include "PictureFile.h"
#include "ShelfSettings.h"
#include "Walk.h"

#include <zorvan/collections/ManagedList.h>

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

/// The pictures of a window: a managed list that is kept in an order and shows what is looked for.
class Album : public std::enable_shared_from_this<Album> {
public:
    using Pictures = zorvan::ManagedList<PictureFile::Pointer>;
    using Files = std::unordered_set<PictureFile::Pointer>;
    using Filter = std::function<bool(const PictureFile&)>;

    /// `didChange` is called when pictures, their order or their selection have changed, once for
    /// what belongs together.
    static std::shared_ptr<Album> create(std::function<void()> didChange);

    const std::shared_ptr<Pictures>& pictures() const { return pictures_; }
    std::vector<PictureFile::Pointer> selected() const { return pictures_->selectedItems(); }

    // What a walk finds. Files that have changed since an earlier walk are exchanged, and those
    // that it does not find any more taken out at its end.

    void beginWalk() { found_.clear(); }
    void add(const Walk::Batch& found);
    void endWalk();

    void remove(const Files& files);
    void setOrder(PictureOrder order, bool isAscending);
    /// Shows those that have the text in their name, in any case.
    void setSearch(std::string text);
    /// Shows those besides which the filter lets through; empty for all.
    void setFilter(Filter filter);

private:
    explicit Album(std::function<void()> didChange) : didChange_(std::move(didChange)) {}
    void change(const std::function<void()>& steps);
    void changeKeepingSelection(const std::function<void()>& steps);
    void sort();
    void refilter();
    void takeOut(const Files& files);

    const std::shared_ptr<Pictures> pictures_ = Pictures::create();
    const std::function<void()> didChange_;
    std::unordered_map<std::string, PictureFile::Pointer> byPath_;
    Files found_;
    PictureOrder order_ = PictureOrder::name;
    bool isAscending_ = true;
    std::string search_;
    Filter filter_;
    int depth_ = 0;
};
