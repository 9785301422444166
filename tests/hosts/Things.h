#pragma once

// Lists whose items are told from their equals, and random changes of them.

#include "tests/Testing.h"

#include <zorvan/collections/ManagedList.h>
#include <zorvan/collections/SelectableArray.h>

/// Equal to others of its name, and still itself.
struct Thing {
    int name;
    int self;
    friend bool operator==(const Thing& a, const Thing& b) { return a.name == b.name; }
};

inline bool byName(const Thing& a, const Thing& b) { return a.name < b.name; }

template <class List>
const std::vector<Thing>& shownItems(const List& list) {
    if constexpr (requires { list.items(); })
        return list.items();
    else
        return list.elements();
}

/// Random changes of a list of things; the names are few, so that most have equals.
class Changes {
public:
    explicit Changes(unsigned seed, int nameCount = 7) : random_(seed), nameCount_(nameCount) {}

    std::vector<Thing> things(std::int64_t count) {
        std::vector<Thing> made;
        for (std::int64_t i = 0; i < count; ++i)
            made.push_back({static_cast<int>(below(nameCount_)), next_++});
        return made;
    }

    /// One change, of ten kinds.
    template <class List>
    void change(List& list, std::int64_t kind) {
        const std::int64_t count = list.count();
        if (kind < 2)
            list.insert(things(below(12)), below(count + 1));
        else if (kind < 4 && isMistaken(list))
            return;
        else if (kind == 2)
            list.remove(some(count));
        else if (kind == 3)
            list.move(some(count), below(count + 1));
        else if (kind == 4)
            list.sort(byName);
        else if (kind == 5)
            list.sort([](const Thing& a, const Thing& b) { return a.self % 5 < b.self % 5; });
        else if (kind == 6)
            list.select(some(count));
        else if constexpr (requires { list.items(); }) {
            if (kind == 7)
                list.reverseOrder();
            else if (kind == 8)
                list.setFilter([rest = below(3)](const Thing& t) { return t.self % 3 != rest; });
            else
                list.setFilter({});
        } else if (kind == 7)
            list.reverseElementsOrder();
        else if (kind == 8 && count > 0)
            list.replace({1000 + next_++, list.elements()[0].self}, 0); // of another name
        else if (kind == 9 && below(10) == 0)
            list.setEntries({{true, things(1)[0]}, {false, things(1)[0]}});
    }

    /// Thousands of changes; of each, `expect` is given what `remember` gave before it.
    template <class List, class Remember, class Expect>
    void changeThousandsOfTimes(List& list, const Remember& remember, const Expect& expect) {
        for (int i = 0; i < 3000; ++i) {
            SCOPED_TRACE(i);
            const auto before = remember();
            change(list, below(10));
            ASSERT_NO_FATAL_FAILURE(expect(before));
            if (list.count() > 100)
                list.remove(IndexSet(IndexSet::Range{0, list.count()}));
        }
    }

private:
    std::int64_t below(std::int64_t end) {
        return std::uniform_int_distribution<std::int64_t>(0, end - 1)(random_);
    }
    IndexSet some(std::int64_t count) {
        IndexSet positions;
        const std::int64_t step = 1 + below(8);
        for (std::int64_t i = below(step); i < count; i += 1 + below(step))
            positions.insert(i);
        return positions;
    }

    /// Where equal things are hidden, a removal or a move through a filter takes the first of them
    /// in the full list: which of them come back is another question.
    bool isMistaken(const ManagedList<Thing>& list) const {
        return nameCount_ < 100 && list.filter();
    }
    bool isMistaken(const SelectableArray<Thing>&) const { return false; }

    std::mt19937 random_;
    const int nameCount_;
    int next_ = 0;
};
