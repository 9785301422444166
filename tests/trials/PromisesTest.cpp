// What is stored by a call that promises so is there after the end of the process, or of the power,
// at any moment; and what is found is always what there was at one moment.

#include "DiskRecord.h"
#include "Stores.h"

#include <csignal>

class Promises : public testing::TestWithParam<Store> {};

INSTANTIATE_TEST_SUITE_P(Stores, Promises, eachStore, nameOf);

// Tries every moment, and at each one disks where everything, nothing and something has survived of
// what was not waited for.
TEST_P(Promises, OutliveThePower) {
    const Store& store = GetParam();
    std::vector<DiskEvent> events;
    {
        const TemporaryFolder folder(TemporaryFolder::fastParent());
        events = recordDisk(folder.path(), [&] {
            for (int i = 0; i < std::max(6, store.slotCount * 3 / 2); ++i)
                if (store.step(folder.path(), i))
                    sayToRecorder(i);
        });
    }
    const auto seeds = static_cast<std::uint32_t>(2 + tries("ZORVAN_DISKS", 2));
    std::int64_t promised = nothing;
    std::size_t disks = 0;
    for (std::size_t after = 0; after <= events.size(); ++after) {
        if (after > 0 && events[after - 1].kind == DiskEvent::Kind::say)
            promised = static_cast<std::int64_t>(events[after - 1].offset);
        if (promised == nothing && std::string_view(store.name) == "copy")
            continue;
        for (std::uint32_t seed = 0; seed < seeds; ++seed, ++disks) {
            const TemporaryFolder left(TemporaryFolder::fastParent());
            restoreDisk(events, {.after = after, .seed = seed}, left.path());
            const pid_t child = startChild(
                [&] { store.step(left.path(), checkStore(store, left.path(), promised) + 1); });
            ASSERT_EQ(exitStatus(child), 0) << "after " << after << " of " << events.size()
                                            << ", disk " << seed << ", promised " << promised;
        }
    }
    EXPECT_GT(promised, 3);
    std::cout << store.name << ": " << events.size() << " moments, " << disks << " disks, "
              << promised + 1 << " promises, none broken\n";
}

TEST_P(Promises, OutliveTheProcess) {
    const Store& store = GetParam();
    const TemporaryFolder folder(TemporaryFolder::fastParent());
    std::mt19937 random(7);
    std::int64_t said = nothing;
    const int kills = tries("ZORVAN_KILLS", 60);
    for (int round = 0; round < kills; ++round) {
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        const pid_t writer = startChild([&] {
            for (std::int64_t i = checkStore(store, folder.path(), said) + 1;; ++i) {
                store.step(folder.path(), i);
                if (::write(ends[1], &i, sizeof i) != sizeof i)
                    return;
            }
        });
        ::close(ends[1]);
        const auto hear = [&] { return ::read(ends[0], &said, sizeof said) == sizeof said; };
        if (round % 2 == 0) // else while it opens
            hear();
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 16'000));
        ::kill(writer, SIGKILL);
        ASSERT_EQ(exitStatus(writer), -1) << "round " << round << ", promised " << said;
        while (hear()) {
        }
        ::close(ends[0]);
        const pid_t checker = startChild([&] { checkStore(store, folder.path(), said); });
        ASSERT_EQ(exitStatus(checker), 0) << "round " << round << ", promised " << said;
    }
    EXPECT_GT(said, 10);
    std::cout << store.name << ": " << kills << " kills, " << said + 1
              << " promises, none broken\n";
}
