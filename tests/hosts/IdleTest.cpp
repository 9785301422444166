// A program that has opened everything and waits for its user sleeps until something happens: no
// thread of it looks around from time to time, for which a laptop would have to wake up.

#include <tests/Testing.h>
#include <tests/Variable.h>
#include <tests/files/ChildProcess.h>
#include <tests/files/TemporaryFolder.h>

#include <zorvan/hosts/QtWindowHost.h>
#include <zorvan/interface/DynamicToolbar.h>
#include <zorvan/interface/NSTableView.h>
#include <zorvan/observation/DistributedNoteSubscriber.h>
#include <zorvan/observation/ValueLoader.h>
#include <zorvan/platform/appkit/NSScrollView.h>
#include <zorvan/settings/NSUserDefaults.h>
#include <zorvan/settings/UserKeychain.h>

#include <QApplication>
#include <csignal>

namespace {

/// Longer than worker threads without work stay, and than Qt keeps its own threads and the pictures
/// that it no longer needs, which is half a minute.
constexpr int quietSeconds = 35;

/// How often each thread of a process has gone to sleep.
using Sleeps = std::map<std::string, std::int64_t>;

/// A process of its own that runs a function which does not return.
class Process {
public:
    explicit Process(void (*run)()) : id_(startChild(run)) {}
    ~Process() {
        ::kill(id_, SIGKILL);
        exitStatus(id_);
    }

    Sleeps sleeps() const {
        Sleeps sleeps;
        std::error_code gone;
        const std::string tasks = "/proc/" + std::to_string(id_) + "/task";
        for (const auto& thread : fs::directory_iterator(tasks, gone)) {
            std::ifstream status(thread.path() / "status");
            for (std::string word; status >> word;)
                if (word == "voluntary_ctxt_switches:")
                    status >> sleeps[thread.path().filename()];
        }
        return sleeps;
    }
    /// False when it does not come to rest within minutes.
    bool comesToRest() const {
        Sleeps before;
        for (int seconds = 0, quiet = 0; seconds < 5 * quietSeconds; ++seconds) {
            Sleeps now = sleeps();
            quiet = now == before ? quiet + 1 : 0;
            if (quiet == quietSeconds)
                return true;
            before = std::move(now);
            std::this_thread::sleep_for(1s);
        }
        return false;
    }

private:
    const pid_t id_;
};

/// What the program makes when it has opened everything.
std::string readyFile() { return std::getenv("XDG_DATA_HOME") + std::string("/ready"); }

void runProgram() {
    static int count = 1;
    static char name[] = "idle";
    static char* arguments[] = {name, nullptr};
    const QApplication application(count, arguments);

    const auto target = std::make_shared<int>();
    const auto subscriber =
        DistributedNoteSubscriber::create(NSDistributedNotificationCenter::defaultCenter());
    subscriber->setName("IdleNotification");
    subscriber->subscribe(target, [](const std::shared_ptr<int>&, const Notification&) {});

    const auto settings = NSUserDefaults::create({.suiteName = "idle"});
    settings->setInteger(1, "key");
    const auto keychain = UserKeychain::create({.serviceName = "idle"});
    const bool isSecretKept = keychain->set("secret", UserKeychain::Key("key"));

    const auto scrollView = NSScrollView::create();
    scrollView->setDocumentView(NSTableView::create());
    const auto bar = DynamicToolbar::create({"IdleToolbar"});
    bar->addItemSet();
    bar->addItem({.createSearchField = [](SearchFieldSettings&) {}});
    const auto window = NSWindow::create({600, 400});
    window->setToolbar(bar->toolbar());
    window->setContentView(scrollView);
    bar->reloadDisplayedItems();
    const auto host = QtWindowHost::show(window);
    const auto loader =
        ValueLoader<int>::create(NSOperationQueue::create(), [] { return std::optional(1); });
    bool isLoaded = false;
    loader->request([&] { isLoaded = true; });
    while (!isLoaded)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    if (isSecretKept)
        std::ofstream(readyFile()).flush();
    QApplication::exec();
}

TEST(IdleProgram, IsNeverWoken) {
    const TemporaryFolder home;
    const char* const folder = home.path().c_str();
    const Variable settings("XDG_CONFIG_HOME", folder), data("XDG_DATA_HOME", folder),
        runtime("XDG_RUNTIME_DIR", folder);
    const Variable bus("DBUS_SESSION_BUS_ADDRESS", nullptr);
    const Variable platform("QT_QPA_PLATFORM", "offscreen");
    const Process program(runProgram);
    ASSERT_TRUE(program.comesToRest());
    const Sleeps before = program.sleeps();
    ASSERT_TRUE(fs::exists(readyFile()));
    ASSERT_FALSE(before.empty());
    const char* const seconds = std::getenv("ZORVAN_IDLE_SECONDS"); // `./run idle` asks for more
    std::this_thread::sleep_for(std::chrono::seconds(seconds ? std::atoi(seconds) : 3));
    EXPECT_EQ(program.sleeps(), before);
    // One that is woken is told from it.
    const Process ticking([] {
        for (;;)
            std::this_thread::sleep_for(100ms);
    });
    const Sleeps early = ticking.sleeps();
    std::this_thread::sleep_for(2s);
    EXPECT_NE(ticking.sleeps(), early);
}

} // namespace
