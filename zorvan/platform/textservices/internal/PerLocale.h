#pragma once

#include <zorvan/platform/textservices/Locale.h>

#include <cstddef>
#include <cstdint>
#include <list>

namespace zorvan::internal {

/// Keeps what is costly to open for a locale; one per thread, so that nothing is locked.
/// `Service` is made from a `Locale`.
template <class Service>
class PerLocale {
public:
    Service& forLocale(const Locale& locale) {
        for (auto entry = entries_.begin(); entry != entries_.end(); ++entry)
            if (entry->locale == locale) {
                entries_.splice(entries_.begin(), entries_, entry);
                return entries_.front().service;
            }
        if (entries_.size() == capacity)
            entries_.pop_back();
        current_ = nullptr;
        entries_.emplace_front(locale);
        return entries_.front().service;
    }

    Service& forCurrentLocale() {
        const std::uint64_t generation = Locale::generation();
        if (!current_ || generation != generation_) {
            current_ = &forLocale(Locale::current());
            generation_ = generation;
        }
        return *current_;
    }

private:
    static constexpr std::size_t capacity = 8;

    struct Entry {
        explicit Entry(const Locale& l) : locale(l), service(l) {}
        Locale locale;
        Service service;
    };

    std::list<Entry> entries_; // the last used first
    Service* current_ = nullptr;
    std::uint64_t generation_ = 0;
};

} // namespace zorvan::internal
