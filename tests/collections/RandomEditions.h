#pragma once

#include <zorvan/collections/SelectableArray.h>

#include <random>

namespace zorvan {

/// Changes a list of numbers in one way or another.
class RandomEditions {
public:
    explicit RandomEditions(unsigned seed) : random_(seed) {}

    void edit(SelectableArray<int>& list) {
        IndexSet some;
        for (std::int64_t i = 0; i < list.count(); ++i)
            if (random_() % 3 == 0)
                some.insert(i);
        const auto place =
            static_cast<std::int64_t>(random_() % static_cast<unsigned>(list.count() + 1));
        switch (random_() % 6) {
        case 0:
        case 1:
            list.insert({next_, next_ + 1, next_ + 2}, place);
            next_ += 3;
            break;
        case 2:
            list.remove(some);
            break;
        case 3:
            list.move(some, place);
            break;
        case 4:
            list.select(some);
            break;
        case 5:
            if (place < list.count())
                list.replace(next_++, place);
            break;
        }
    }

private:
    std::mt19937 random_;
    int next_ = 0;
};

} // namespace zorvan
