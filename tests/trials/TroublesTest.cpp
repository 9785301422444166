// What a machine does to a store: system calls that fail, disks that are full or may only be read,
// a clock that is set. The store says so, keeps what it had, and goes on as soon as it can.

#include "ClockOffset.h"
#include "SmallDisk.h"
#include "Stores.h"
#include <tests/files/TracedProcess.h>

#include <zorvan/colour/NSValueTransformer.h>
#include <zorvan/media/NSImage.h>
#include <zorvan/platform/textservices/Locale.h>

#include <sys/mman.h>
#include <sys/resource.h>

namespace {

constexpr int pageSize = 4096;

void expectInChild(const std::function<void()>& work) {
    EXPECT_EQ(exitStatus(startChild(work)), 0);
}

/// Leaves so much of a small disk; or, where none is mounted, lets no file become larger.
void fill(const fs::path& disk, bool isMounted, int freePages) {
    if (isMounted) {
        std::ofstream(disk / "filler") << std::string(2 << 20, 'f');
        const auto size = fs::file_size(disk / "filler");
        const auto wanted = static_cast<std::uintmax_t>(freePages) * pageSize;
        fs::resize_file(disk / "filler", size - std::min(size, wanted));
    } else {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{rlim_t(freePages) * pageSize, RLIM_INFINITY};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
}

} // namespace

using Troubles = StoreTest;

INSTANTIATE_TEST_SUITE_P(Stores, Troubles, eachStore, nameOf);

#if defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

// Each call of a step in turn, or, unless a campaign asks for all, every twelfth or so.
TEST_P(Troubles, OfAnyCallAreTold) {
    const auto apart = static_cast<std::size_t>(tries("ZORVAN_CALLS_APART", 12));
    constexpr std::array errors{EIO, ENOSPC, ENOMEM, EINTR};
    struct Found {
        bool isStored;
        std::ptrdiff_t descriptors;
    };
    auto* const found = static_cast<Found*>(
        ::mmap(nullptr, sizeof(Found), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    const auto strike = [&](TracedProcess& process) {
        restore();
        return process.run([&] {
            const bool isStored = takeStep(store_, folder_, 1);
            TracedProcess::goOnUnharmed();
            goOn(store_, folder_, isStored ? 1 : 0);
            *found = {isStored, openDescriptors()};
        });
    };
    TracedProcess undisturbed(~std::size_t{0}, TracedProcess::Fate::fails);
    strike(undisturbed);
    ASSERT_TRUE(undisturbed.exitStatus() == 0 && found->isStored);
    const std::ptrdiff_t usual = found->descriptors;

    std::size_t failed = 0, told = 0;
    std::ostringstream problems; // told at the end: a child takes a failure before it for its own
    for (std::size_t kind = 0; kind < errors.size(); ++kind)
        for (std::size_t call = kind * apart / errors.size();; call += apart, ++failed) {
            TracedProcess process(call, TracedProcess::Fate::fails, errors[kind]);
            if (strike(process) == TracedProcess::End::hadFewerCalls)
                break;
            told += !found->isStored;
            const int other = exitStatus(startChild([&] { goOn(store_, folder_, 1); }));
            if (process.exitStatus() != 0 || other != 0 || found->descriptors > usual)
                problems << "call " << call << " (" << process.struckCall() << ") with "
                         << std::strerror(errors[kind]) << ": ends with " << process.exitStatus()
                         << ", another process with " << other << ", " << found->descriptors - usual
                         << " descriptors too many\n";
        }
    EXPECT_EQ(problems.str(), "");
    ::munmap(found, sizeof(Found));
    EXPECT_GT(told, 0u);
    std::cout << store_.name << ": " << failed << " calls failed, " << told << " told\n";
}

#endif

// With every number of pages left, until it has room.
TEST_P(Troubles, OfAFullDiskAreTold) {
    constexpr int hadRoom = 77;
    fs::create_directory(folder_);
    int refused = 0;
    for (int pages = 0, stored = 0; stored < 3; ++pages) {
        ASSERT_LT(pages, 200);
        const int status = exitStatus(startChild([&] {
            const bool isMounted = mountSmallDisk(folder_);
            if (isMounted)
                fs::copy(before_, folder_, fs::copy_options::recursive);
            else
                restore();
            fill(folder_, isMounted, pages);
            const bool isStored = takeStep(store_, folder_, 1);
            fill(folder_, isMounted, 1000);
            goOn(store_, folder_, isStored ? 1 : 0);
            expectInChild([&] { goOn(store_, folder_, 1); });
            if (isStored && !testing::Test::HasFailure())
                ::_exit(hadRoom);
        }));
        ASSERT_TRUE(status == 0 || status == hadRoom) << "with " << pages << " pages left";
        stored += status == hadRoom;
        refused += status == 0;
    }
    EXPECT_GT(refused, 0);
}

TEST_P(Troubles, OfADiskThatMayOnlyBeReadAreTold) {
    fs::create_directory(folder_);
    const int status = exitStatus(startChild([&] {
        if (!mountSmallDisk(folder_))
            ::_exit(77);
        fs::copy(before_, folder_, fs::copy_options::recursive);
        ASSERT_TRUE(setWritable(folder_, false));
        expectInChild([&] {
            EXPECT_EQ(checkStore(store_, folder_, 0), 0);
            EXPECT_FALSE(takeStep(store_, folder_, 1));
        });
        ASSERT_TRUE(setWritable(folder_, true));
        expectInChild([&] { goOn(store_, folder_, 0); });
    }));
    if (status == 77)
        GTEST_SKIP() << "no mounts of one's own";
    EXPECT_EQ(status, 0);
}

TEST_P(Troubles, OfTheClockAreNone) {
    using namespace std::chrono_literals;
    using std::chrono::system_clock;
    expectInChild([&] {
        const auto real = system_clock::now();
        setClockOffset(-24h);
        ASSERT_LT(system_clock::now(), real - 23h);
        for (std::int64_t i = 1; i < 2 * store_.slotCount + 4; ++i) {
            setClockOffset((i % 3 == 0 ? 1 : -i) * 24h * 365 * 10);
            store_.step(before_, i);
            ASSERT_EQ(checkStore(store_, before_, i), i);
        }
    });
}

// What is locked for moments alone is nobody's in a child, whatever the threads of its parent do.
TEST(Forks, FindNothingHalfDone) {
    const Locale locale = Locale::current();
    const auto image = NSImage::create(CGSize(1, 1));
    const std::function<void()> uses[] = {
        [&] { Locale::setCurrent(locale); },
        [] { EXPECT_FALSE(NSValueTransformer::valueTransformer("none")); },
        [&] { EXPECT_EQ(image->name(), ""); },
    };
    for (const auto& use : uses) {
        std::atomic<bool> isDone = false;
        std::thread other([&] {
            while (!isDone)
                use();
        });
        for (int i = 0; i < 100 && !testing::Test::HasFailure(); ++i)
            expectInChild([&] {
                ::alarm(10);
                use();
            });
        isDone = true;
        other.join();
    }
}
