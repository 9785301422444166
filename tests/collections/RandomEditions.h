#pragma once

#include <tests/collections/ListModel.h>

#include <zorvan/collections/SelectableArray.h>

namespace zorvan {

/// Changes a list of numbers in one way or another.
class RandomEditions {
public:
    explicit RandomEditions(unsigned seed) : draw_{std::mt19937(seed)} {}

    void edit(SelectableArray<int>& list) {
        const IndexSet some = listmodel::indexSet(draw_.positions(list.count()));
        const std::int64_t place = draw_(list.elements().size() + 1);
        switch (draw_(6)) {
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
    listmodel::Lot draw_;
    int next_ = 0;
};

} // namespace zorvan
