// Every allocation in turn fails. What is asked for is then absent, or `std::bad_alloc` is thrown;
// nothing crashes, what was stored before is still there, and the next attempt succeeds.

#include "MemoryFailure.h"
#include "Stores.h"

#include <tests/bytesOf.h>

#include <zorvan/collections/ManagedList.h>
#include <zorvan/collections/SelectableArray.h>
#include <zorvan/media/CGImage.h>
#include <zorvan/media/CGImageSource.h>
#include <zorvan/observation/MultiNoteSubscriber.h>
#include <zorvan/observation/ValueLoader.h>
#include <zorvan/platform/dispatch/DispatchQueue.h>
#include <zorvan/platform/dispatch/DispatchSemaphore.h>
#include <zorvan/platform/dispatch/MainQueue.h>
#include <zorvan/platform/dispatch/NSOperationQueue.h>
#include <zorvan/platform/propertylist/PropertyListFile.h>
#include <zorvan/platform/settingsdatabase/SettingsDatabase.h>
#include <zorvan/platform/textservices/Characters.h>
#include <zorvan/platform/textservices/Locale.h>
#include <zorvan/platform/textservices/NSAttributedString.h>
#include <zorvan/text/Double.h>
#include <zorvan/text/String.h>

namespace {

constexpr int wasNotStruck = 77;

/// Calls the work in a process of its own, which begins otherwise, for each allocation that it
/// makes, which fails, and the check after it. At most some four hundred of them, spread over all,
/// unless a campaign asks for more.
void starve(
    const std::function<void()>& work, const std::function<void()>& check,
    const std::function<void()>& prepare = [] {}, const std::function<void()>& begin = [] {}) {
    const auto dense = static_cast<std::size_t>(tries("ZORVAN_ALLOCATIONS", 200));
    std::size_t tried = 0;
    for (std::size_t n = 0;; n += n < dense ? 1 : n / dense, ++tried) {
        prepare();
        const pid_t child = startChild([&] {
            begin();
            bool isStruck = true;
            try {
                const MemoryFailure failure(n);
                work();
                isStruck = MemoryFailure::hasCome();
            } catch (const std::bad_alloc&) {
            }
            if (!isStruck)
                ::_exit(wasNotStruck);
            check();
        });
        const int status = exitStatus(child);
        if (status == wasNotStruck)
            break;
        ASSERT_EQ(status, 0) << "when allocation " << n << " fails";
    }
    std::cout << tried << " allocations failed\n";
    EXPECT_GT(tried, 3u);
}

} // namespace

class StarvedStores : public StoreTest {};

INSTANTIATE_TEST_SUITE_P(Memory, StarvedStores, eachStore, nameOf);

TEST_P(StarvedStores, KeepWhatTheyHad) {
    starve([&] { takeStep(store_, folder_, 1); }, [&] { goOn(store_, folder_, 0); },
           [&] { restore(); });
}

// What comes later is stored all the same, also when the process ends before it closes anything.
TEST(Memory, FailsWhereTransactionsBegin) {
    const TemporaryFolder folder{TemporaryFolder::fastParent()};
    const std::string path = folder.path() / "a.settings";
    std::shared_ptr<SettingsDatabase> database;
    const auto prepare = [&] {
        EXPECT_TRUE(!fs::exists(path) || SettingsDatabase::open(path)->value("later"));
        SettingsDatabase::open(path)->removeAll();
    };
    starve([&] { database->transact([&] { database->set("key", 1); }); },
           [&] {
               EXPECT_TRUE(database->set("later", 1));
               ::_exit(testing::Test::HasFailure());
           },
           prepare, [&] { database = SettingsDatabase::open(path); });
}

TEST(Memory, FailsWhereRemovedRowsAreClearedAway) {
    const TemporaryFolder folder{TemporaryFolder::fastParent()};
    const std::string path = folder.path() / "a.settings";
    std::shared_ptr<SettingsDatabase> database;
    const auto begin = [&] {
        std::vector<SettingsDatabase::Change> all, some;
        for (int i = 0; i < 1600; ++i)
            all.emplace_back(std::to_string(i), i);
        for (int i = 0; i < 1000; ++i)
            some.emplace_back(std::to_string(i), std::nullopt);
        database = SettingsDatabase::open(path);
        EXPECT_TRUE(database->apply(all) && database->apply(some));
    };
    // The next one is more than are left in place.
    starve([&] { database->remove("1000"); },
           [&] {
               EXPECT_TRUE(database->value("1500"));
               EXPECT_TRUE(database->remove("1000"));
               EXPECT_EQ(database->contents().size(), 599u);
           },
           [] {}, begin);
}

TEST(Memory, FailsInPropertyLists) {
    const PropertyList list =
        PropertyList::Dictionary{{"text", "a text longer than what a string holds within itself"},
                                 {"list", PropertyList::Array{1, 2.5, true, Data(100)}}};
    for (const auto format : {propertylist::Format::xml, propertylist::Format::binary}) {
        const Data encoded = propertylist::encode(list, format).value();
        const auto check = [&] { EXPECT_EQ(propertylist::decode(encoded), list); };
        starve([&] { EXPECT_EQ(propertylist::decode(encoded).value_or(list), list); }, check);
        starve([&] { EXPECT_EQ(propertylist::encode(list, format).value_or(encoded), encoded); },
               check);
    }
}

// Where the libraries for a format bear it: libtiff 4.5 crashes by itself.
TEST(StarvedPictures, AreAbsent) {
    for (const char* name : {"palette.png", "progressive.jpg"}) {
        const Data bytes = bytesOf(text(fs::path(SAMPLES) / name));
        const auto read = [&] {
            const auto source = CGImageSource::create(bytes);
            const auto properties = source->properties(0);
            const auto image = source->image(0);
            return properties && image ? image->width() : 0;
        };
        starve([&] { (void)read(); }, [&] { EXPECT_GT(read(), 0); });
    }
}

/// Work for which there may be no thread.
std::function<void()> withThreads(const std::function<void()>& work) {
    return [work] {
        try {
            work();
        } catch (const std::system_error&) {
        }
    };
}

TEST(Memory, FailsInQueues) {
    const auto serial = DispatchQueue::create("serial");
    const auto operations = NSOperationQueue::create();
    const auto use = withThreads([&] {
        serial->async([] {});
        serial->sync([&] { serial->async([] {}); });
        operations->addOperation([] {});
    });
    starve(use, [&] {
        use();
        bool hasRun = false;
        serial->sync([&] { hasRun = true; });
        EXPECT_TRUE(hasRun);
        operations->waitUntilAllOperationsAreFinished();
    });
}

TEST(Memory, FailsWhereMoreOperationsMayOverlap) {
    const auto queue = NSOperationQueue::create();
    const auto gate = DispatchSemaphore::create(0);
    std::atomic<int> ran = 0;
    const auto begin = [&] {
        queue->setMaxConcurrentOperationCount(1);
        queue->addOperation([&] { gate->wait(); });
        for (int i = 0; i < 4; ++i)
            queue->addOperation([&] { ++ran; });
    };
    const auto check = [&] {
        gate->signal();
        queue->waitUntilAllOperationsAreFinished();
        EXPECT_EQ(ran, 4);
    };
    starve(
        withThreads([&] { queue->setMaxConcurrentOperationCount(5); }), check, [] {}, begin);
}

TEST(Memory, FailsWhereAValueIsAskedFor) {
    const auto loader =
        ValueLoader<int>::create(NSOperationQueue::create(), [] { return std::optional(7); });
    int completed = 0;
    starve(withThreads([&] { loader->request([&] { ++completed; }); }), [&] {
        loader->request([] { MainQueue::stop(); });
        MainQueue::runUntil(std::chrono::steady_clock::now() + 10s);
        EXPECT_EQ(loader->value(), 7);
        EXPECT_EQ(completed, 0) << "that of the request that failed";
    });
}

TEST(Memory, FailsWhereSeveralNotificationsAreObserved) {
    const auto center = NSNotificationCenter::create();
    const auto subscriber = MultiNoteSubscriber::create(center);
    const NSNotificationName name("name");
    subscriber->setNames({name, NSNotificationName("another")});
    subscriber->setObjects({OpaqueWeakValue()});
    const auto target = std::make_shared<int>();
    const auto handler = [](const auto&, const auto&) { ADD_FAILURE() << "after the end"; };
    starve([&] { subscriber->subscribe(target, handler); },
           [&] {
               subscriber->unsubscribe();
               center->post(name);
           });
}

// ICU keeps it for good that its first use failed: no answer then, but no wrong one.
TEST(Memory, FailsInTexts) {
    const std::string marks = "\u0323\u0301\u0302\u0303\u0304\u0306";
    const auto compare = [&] {
        EXPECT_FALSE(charactersAreEqual("\u00E9" + marks, "\u00E8" + marks));
        EXPECT_TRUE(charactersAreEqual("\u00E9" + marks, "e\u0323\u0301" + marks.substr(2)));
    };
    starve(compare, [&] {
        try {
            compare();
        } catch (const std::bad_alloc&) {
        }
    });
}

TEST(Memory, FailsInWhatIsKeptForALocale) {
    const auto use = [] {
        Locale::setCurrent(Locale("sv"));
        EXPECT_EQ(finderCompare("\u00E9file2", "efile10"), ComparisonResult::orderedAscending);
        EXPECT_EQ(formatPercent(0.5), "50\u00A0%");
    };
    std::thread(use).join(); // what is kept for each thread is then still to be made, ICU's is not
    starve(use, use);
}

TEST(Memory, FailsInAttributedTexts) {
    NSMutableAttributedString before("words of an attributed text",
                                     {{"address", std::string("one that takes memory")}});
    before.setAttributes({}, {6, 2});
    static constexpr NSRange part{3, 9};
    using Edit = void (*)(NSMutableAttributedString&);
    const Edit edits[] = {[](auto& text) { text.addAttribute("x", true, part); },
                          [](auto& text) { text.replaceCharacters(part, text); },
                          [](auto& text) { text.append(text); }};
    for (const Edit edit : edits) {
        NSMutableAttributedString text = before, after = before;
        edit(after);
        starve([&] { edit(text); }, [&] { EXPECT_TRUE(text == before || text == after); });
    }
}

TEST(Memory, FailsInLists) {
    const auto make = [] {
        std::vector<std::string> items;
        for (int i = 0; i < 50; ++i)
            items.push_back("an item with a long name, number " + std::to_string(i * 37 % 50));
        return items;
    };
    const auto list = ManagedList<std::string>::create();
    const auto change = [&] {
        list->insert(make(), 0);
        list->setSelection({3, 7, 9, 30});
        list->setFilter([](const std::string& item) { return item.back() % 2 == 0; });
        list->move({1, 9}, 5);
        list->sort(std::less<>());
        list->remove(IndexSet{1, 4, 6});
        list->reverseOrder();
        list->setFilter({});
    };
    starve(change, [&] {
        // Whatever came of it, the list is whole.
        for (const std::int64_t position : list->selection())
            EXPECT_LT(position, list->count());
        for (const std::string& item : list->items())
            EXPECT_TRUE(std::ranges::count(make(), item) == 1 &&
                        std::ranges::count(list->allItems(), item) == 1);
        if (list->count() > 5) {
            const std::string gone = list->items()[5];
            list->remove({5});
            EXPECT_EQ(std::ranges::count(list->allItems(), gone), 0);
        }
        list->setFilter({});
        list->removeAllItems();
        change();
        EXPECT_EQ(list->count(), 47);
    });
}

TEST(Memory, FailsInIndexSets) {
    IndexSet set(IndexSet::Range{0, 40});
    set.insert(80);
    const auto change = [&] {
        for (std::int64_t i = 1; i < 40; i += 2)
            set.remove(i), set.insert(i + 40);
    };
    starve(change, [&] { EXPECT_EQ(set.count(), std::distance(set.begin(), set.end())); });
}

TEST(Memory, FailsInASelectableArray) {
    const auto list = SelectableArray<std::string>::create();
    list->insert({"a", "b", "c", "d", "e", "f", "an element that takes memory when it is copied"},
                 0);
    list->select({1, 3, 5});
    bool isTold = false;
    list->setEditionHandler([&](const auto& action) {
        action();
        isTold = true;
    });
    for (const bool removes : {true, false}) {
        const auto change = [&] {
            removes ? list->remove({0, 2, 3, 6}) : list->sort(std::greater<>());
        };
        starve(change, [&] {
            EXPECT_TRUE(isTold || (list->count() == 7 && list->selection() == IndexSet({1, 3, 5})));
            EXPECT_FALSE(list->reordering());
        });
    }
}
