#include "Album.h"

#include "displayText.h"
#include "observe.h"

#include <zorvan/platform/textservices/Unicode.h>

#include <utility>

using namespace zorvan;

namespace {

bool comesByName(const PictureFile::Pointer& a, const PictureFile::Pointer& b) {
    return comesBefore(a->name, b->name);
}

bool comesByDate(const PictureFile::Pointer& a, const PictureFile::Pointer& b) {
    return a->modified != b->modified ? a->modified < b->modified : comesByName(a, b);
}

IndexSet positions(const std::vector<PictureFile::Pointer>& list, const Album::Files& of) {
    IndexSet found;
    for (std::size_t i = 0; !of.empty() && i < list.size(); ++i)
        if (of.contains(list[i]))
            found.insert(static_cast<std::int64_t>(i));
    return found;
}

} // namespace

std::shared_ptr<Album> Album::create(std::function<void()> didChange) {
    const std::shared_ptr<Album> album(new Album(std::move(didChange)));
    observe(Pictures::didReloadNotification, album->pictures_, album,
            [](const auto& self, const Notification&) {
                if (self->depth_ == 0)
                    self->didChange_();
            });
    return album;
}

/// Told of as one change, once the views have followed all of it.
void Album::change(const std::function<void()>& steps) {
    ++depth_;
    steps();
    if (--depth_ == 0)
        didChange_();
}

void Album::changeKeepingSelection(const std::function<void()>& steps) {
    change([&] {
        const auto before = selected();
        steps();
        pictures_->setSelection(positions(pictures_->items(), Files(before.begin(), before.end())));
    });
}

void Album::add(const Walk::Batch& found) {
    Files gone;
    Walk::Batch come;
    for (const PictureFile::Pointer& file : found) {
        PictureFile::Pointer& known = byPath_[file->url.path()];
        if (!known || *known != *file) {
            if (known)
                gone.insert(known);
            known = file;
            come.push_back(file);
        }
        found_.insert(known);
    }
    if (come.empty())
        return;
    changeKeepingSelection([&] {
        takeOut(gone);
        pictures_->append(std::move(come));
        sort();
    });
}

void Album::endWalk() {
    Files gone;
    for (const auto& [path, file] : byPath_)
        if (!found_.contains(file))
            gone.insert(file);
    remove(gone);
}

void Album::remove(const Files& files) {
    for (const PictureFile::Pointer& file : files)
        byPath_.erase(file->url.path());
    if (!files.empty())
        change([&] { takeOut(files); });
}

void Album::takeOut(const Files& files) {
    pictures_->remove(positions(pictures_->items(), files));
    // Those that are not shown can be got at only when they are.
    if (positions(pictures_->allItems(), files).isEmpty())
        return;
    changeKeepingSelection([&] {
        pictures_->setFilter({});
        pictures_->remove(positions(pictures_->items(), files));
        refilter();
    });
}

void Album::setOrder(PictureOrder order, bool isAscending) {
    if (order == order_ && isAscending == isAscending_)
        return;
    order_ = order;
    isAscending_ = isAscending;
    change([this] { sort(); });
}

void Album::sort() {
    const auto comes = order_ == PictureOrder::name ? comesByName : comesByDate;
    pictures_->sort([comes, isAscending = isAscending_](const auto& a, const auto& b) {
        return isAscending ? comes(a, b) : comes(b, a);
    });
}

void Album::setSearch(std::string text) {
    search_ = lowercased(text);
    change([this] { refilter(); });
}

void Album::setFilter(Filter filter) {
    filter_ = std::move(filter);
    change([this] { refilter(); });
}

void Album::refilter() {
    if (search_.empty() && !filter_)
        return pictures_->setFilter({});
    pictures_->setFilter([search = search_, filter = filter_](const PictureFile::Pointer& file) {
        return (!filter || filter(*file)) &&
               lowercased(file->title).find(search) != std::string::npos;
    });
}
