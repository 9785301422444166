#pragma once

#include <functional>
#include <memory>
#include <vector>

namespace zorvan {

/// Those who are told of what changes in an object. They are not kept alive; one that has gone is
/// told no more.
template <class Observer>
class ObserverList {
public:
    /// Told from the next change on; one that is added twice is told twice.
    void add(const std::shared_ptr<Observer>& observer) {
        std::erase_if(observers_, [](const auto& other) { return other.expired(); });
        observers_.push_back(observer);
    }
    /// Calls `change`, a function of theirs or one that takes one of them, with each in the order
    /// in which they came.
    template <class Change, class... Arguments>
    void tell(const Change& change, const Arguments&... arguments) const {
        // Whoever is told may add another.
        const auto observers = observers_;
        for (const auto& weak : observers)
            if (const auto observer = weak.lock())
                std::invoke(change, *observer, arguments...);
    }

private:
    std::vector<std::weak_ptr<Observer>> observers_;
};

} // namespace zorvan
