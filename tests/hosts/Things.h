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

inline std::vector<int> selvesOf(const std::vector<Thing>& things) {
    std::vector<int> selves;
    for (const Thing& thing : things)
        selves.push_back(thing.self);
    return selves;
}

inline bool byName(const Thing& a, const Thing& b) { return a.name < b.name; }

/// Random changes of a list; the names are few, so that most things have equals.
class Changes {
public:
    explicit Changes(unsigned seed, int nameCount = 7) : random_(seed), nameCount_(nameCount) {}

    std::int64_t below(std::int64_t end) {
        return std::uniform_int_distribution<std::int64_t>(0, end - 1)(random_);
    }
    std::vector<Thing> things(std::int64_t count) {
        std::vector<Thing> made;
        for (std::int64_t i = 0; i < count; ++i)
            made.push_back({static_cast<int>(below(nameCount_)), next_++});
        return made;
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
    bool areMistaken(const ManagedList<Thing>& list) const {
        return nameCount_ < 100 && list.filter();
    }
    bool areMistaken(const SelectableArray<Thing>&) const { return false; }

private:
    std::mt19937 random_;
    const int nameCount_;
    int next_ = 0;
};

/// One change, of seven kinds, of those that lists of both kinds have.
template <class List>
void change(List& list, Changes& changes, std::int64_t kind) {
    const std::int64_t count = list.count();
    switch (kind) {
    case 0:
    case 1:
        return list.insert(changes.things(changes.below(12)), changes.below(count + 1));
    case 2:
        return list.remove(changes.some(count));
    case 3:
        return list.move(changes.some(count), changes.below(count + 1));
    case 4:
        return list.sort(byName);
    case 5:
        return list.sort([](const Thing& a, const Thing& b) { return a.self % 5 < b.self % 5; });
    default:
        return list.select(changes.some(count));
    }
}

/// One of those that lists of one kind have.
inline void changeOtherwise(ManagedList<Thing>& list, Changes& changes, std::int64_t kind) {
    if (kind == 7)
        list.reverseOrder();
    else if (kind == 8)
        list.setFilter([rest = changes.below(3)](const Thing& t) { return t.self % 3 != rest; });
    else
        list.setFilter({});
}
inline void changeOtherwise(SelectableArray<Thing>& array, Changes& changes, std::int64_t kind) {
    if (kind == 7)
        array.reverseElementsOrder();
    else if (kind == 8 && array.count() > 0)
        // Another name for the same thing.
        array.replace({1000 + changes.things(1)[0].self, array.elements()[0].self}, 0);
    else if (kind == 9 && changes.below(10) == 0)
        array.setEntries({{true, changes.things(1)[0]}, {false, changes.things(1)[0]}});
}

inline const std::vector<Thing>& shownItems(const ManagedList<Thing>& list) { return list.items(); }
inline const std::vector<Thing>& shownItems(const SelectableArray<Thing>& array) {
    return array.elements();
}

inline void empty(ManagedList<Thing>& list) {
    list.setFilter({});
    list.removeAllItems();
}
inline void empty(SelectableArray<Thing>& array) { array.removeAllElements(); }

/// Thousands of changes; of each, `expect` is given what `remember` gave before it.
template <class List, class Remember, class Expect>
void changeThousandsOfTimes(List& list, Changes& changes, const Remember& remember,
                            const Expect& expect) {
    for (int i = 0; i < 3000; ++i) {
        SCOPED_TRACE(i);
        const auto before = remember();
        const std::int64_t kind = changes.below(10);
        if (kind >= 7)
            changeOtherwise(list, changes, kind);
        else if (!changes.areMistaken(list) || (kind != 2 && kind != 3))
            change(list, changes, kind);
        ASSERT_NO_FATAL_FAILURE(expect(before));
        if (shownItems(list).size() > 100)
            empty(list);
    }
}
