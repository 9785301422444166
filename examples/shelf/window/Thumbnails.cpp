#include "Thumbnails.h"

#include "Picture.h"

#include <algorithm>
#include <exception>
#include <utility>

using namespace zorvan;

namespace {

std::int64_t bytesOf(const Thumbnails::Image& image) {
    return image ? static_cast<std::int64_t>(image->size().area() * 4) : 0;
}

Thumbnails::Image decode(const PictureFile& file, std::int64_t side) {
    try {
        const auto image = Picture(file.url).thumbnail(side);
        return image ? NSImage::create(image) : nullptr;
    } catch (const std::exception&) { // there is not enough memory for it
        return nullptr;
    }
}

} // namespace

std::shared_ptr<Thumbnails> Thumbnails::create(std::int64_t mostBytes) {
    return std::shared_ptr<Thumbnails>(new Thumbnails(mostBytes));
}

std::shared_ptr<Thumbnails::Loader> Thumbnails::loader(const PictureFile::Pointer& file,
                                                       std::int64_t side,
                                                       std::function<void(const Image&)> made) {
    static const auto queue = NSOperationQueue::create();
    return Loader::create(queue, [file, side, made = std::move(made)]() -> std::optional<Image> {
        Image image = decode(*file, side);
        if (made)
            made(image);
        return image;
    });
}

void Thumbnails::setSide(std::int64_t side) {
    if (side == side_)
        return;
    side_ = side;
    kept_.clear();
    lastUsed_.clear();
    byteCount_ = 0;
}

Thumbnails::Kept& Thumbnails::kept(const PictureFile::Pointer& file) {
    const auto [found, isNew] = kept_.try_emplace(file);
    Kept& kept = found->second;
    if (!isNew) {
        lastUsed_.splice(lastUsed_.begin(), lastUsed_, kept.place);
        return kept;
    }
    kept.place = lastUsed_.insert(lastUsed_.begin(), file);
    // Counted also when everybody who asked for it has gone meanwhile.
    kept.loader = loader(file, side_, [self = weak_from_this(), file, side = side_](auto& image) {
        DispatchQueue::main()->async([self, file, side, byteCount = bytesOf(image)] {
            if (const auto thumbnails = self.lock())
                thumbnails->count(file, side, byteCount);
        });
    });
    return kept;
}

void Thumbnails::count(const PictureFile::Pointer& file, std::int64_t side,
                       std::int64_t byteCount) {
    const auto found = kept_.find(file);
    if (found == kept_.end() || side != side_)
        return;
    byteCount_ += byteCount - std::exchange(found->second.byteCount, byteCount);
    while (byteCount_ > mostBytes_) {
        byteCount_ -= kept_.at(lastUsed_.back()).byteCount;
        kept_.erase(lastUsed_.back());
        lastUsed_.pop_back();
    }
}

std::shared_ptr<Thumbnails::Request> Thumbnails::request(const PictureFile::Pointer& file,
                                                         Completion completion) {
    const auto loader = kept(file).loader;
    return loader->request([loader, completion = std::move(completion)] {
        completion(loader->value().value_or(nullptr));
    });
}

Thumbnails::Image Thumbnails::loaded(const PictureFile::Pointer& file) const {
    const auto found = kept_.find(file);
    return found == kept_.end() ? nullptr : found->second.loader->value().value_or(nullptr);
}

bool Thumbnails::isLoading() const {
    return std::any_of(kept_.begin(), kept_.end(), [](const auto& entry) {
        return entry.second.loader->state() == ValueLoaderState::isLoading;
    });
}
