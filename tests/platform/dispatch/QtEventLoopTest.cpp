// The main queue beside Qt's event loop, which watches its descriptor.

#include <tests/Testing.h>

#include <zorvan/platform/dispatch/DispatchQueue.h>
#include <zorvan/platform/dispatch/MainQueue.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QSocketNotifier>
#include <QTimer>

namespace {

/// Runs Qt's loop on the main thread until a block of ours quits it.
class QtEventLoop : public testing::Test {
protected:
    QtEventLoop() {
        QObject::connect(&notifier, &QSocketNotifier::activated, [] { MainQueue::drain(); });
        QObject::connect(&overdue, &QTimer::timeout, [] { QCoreApplication::exit(1); });
        overdue.start(20s);
    }

    static void quit() { QCoreApplication::exit(0); }

    int argc = 1;
    std::string name = "test";
    char* argv[2] = {name.data(), nullptr};
    QCoreApplication application{argc, argv};
    QSocketNotifier notifier{MainQueue::fileDescriptor(), QSocketNotifier::Read};
    QTimer overdue;
};

TEST_F(QtEventLoop, RunsBlocksOfOtherThreadsInTheirOrder) {
    constexpr int count = 10'000;
    int seen = 0;
    bool inOrder = true;
    std::thread other([&] {
        for (int i = 0; i < count; ++i)
            DispatchQueue::main()->async([&, i] { inOrder = inOrder && seen++ == i; });
        EXPECT_EQ(DispatchQueue::main()->sync([] { return 7; }), 7);
        DispatchQueue::main()->async(quit);
    });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    other.join();
    EXPECT_EQ(seen, count);
    EXPECT_TRUE(inOrder);
}

TEST_F(QtEventLoop, GetsItsTurnWhileBlocksQueueBlocks) {
    int blocks = 0;
    int ticks = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] { ++ticks; });
    ticker.start(0ms);
    std::function<void()> again = [&] {
        ++blocks;
        if (ticks < 10)
            DispatchQueue::main()->async(again);
        else
            quit();
    };
    DispatchQueue::main()->async(again);
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_GE(blocks, 10);
}

TEST_F(QtEventLoop, ServesADialogueThatABlockOpens) {
    std::string seen;
    DispatchQueue::main()->async([&] {
        QEventLoop dialogue;
        seen += '(';
        DispatchQueue::main()->async([&] { seen += 'a'; });
        DispatchQueue::main()->asyncAfter(20ms, [&] {
            seen += 'b';
            dialogue.quit();
        });
        dialogue.exec();
        seen += ')';
        quit();
    });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_EQ(seen, "(ab)");
}

} // namespace
