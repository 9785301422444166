// The window of shelf, as a person has it: keys, mouse and questions, without a screen.

#include "window/ShelfWindow.h"
#include <tests/Outcome.h>
#include <tests/hosts/HostTest.h>

#include <zorvan/files/NSPasteboard.h>

#include <QHeaderView>
#include <QListView>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QTableView>
#include <QTreeView>

namespace {

using Names = std::vector<std::string>;

class ShelfWindowTest : public HostTest {
protected:
    ShelfWindowTest() {
        host = nullptr;
        QApplication::setQuitOnLastWindowClosed(false);
        for (const auto& key : NSUserDefaults::standardUserDefaults()->dictionaryRepresentation())
            NSUserDefaults::standardUserDefaults()->removeObjectForKey(key.first);
    }
    ~ShelfWindowTest() override { end(); }

    void picture(const std::string& name, std::int64_t width = 60, std::int64_t height = 40) {
        const Data bytes = *CGImage::empty(width, height)->data(ImageExportFormat::png);
        folder.file(name, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }

    void begin() {
        Options options;
        options.paths = {folder.path()};
        options.recursive = true;
        shelf = ShelfWindow::create(options);
        host = QtWindowHost::show(shelf->window());
        host->widget().activateWindow();
    }
    void waitForWalk() {
        ASSERT_TRUE(comes([&] { return !shelf->isWalking(); }));
    }
    /// Shows the window and waits for all that is in the folder, to which these pictures come.
    void open(const Names& pictures = {}) {
        for (const std::string& name : pictures)
            picture(name);
        begin();
        waitForWalk();
    }
    void reload() {
        choose("Reload");
        waitForWalk();
    }
    void end() {
        host = nullptr;
        shelf = nullptr;
        settle();
    }

    /// Whether it comes to hold while events are processed.
    static bool comes(const std::function<bool()>& condition) {
        const bool held = QTest::qWaitFor(condition, 20000);
        settle();
        return held;
    }

    /// The view of the pictures that is shown.
    template <class View = QAbstractItemView>
    View& view() const {
        for (auto* const found : host->widget().findChildren<View*>())
            if (!qobject_cast<QTreeView*>(found))
                return *found;
        throw std::runtime_error("no such view");
    }
    void click(int row, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(view().viewport(), Qt::LeftButton, modifiers,
                          view().visualRect(view().model()->index(row, 0)).center());
        settle();
    }
    void choose(const char* title) {
        for (std::int64_t i = 0; i < shelf->menu()->numberOfItems(); ++i)
            if (shelf->menu()->item(i)->title() == title)
                shelf->menu()->performActionForItem(i);
        settle();
    }
    /// Presses a button of the question that is asked, and gives the question. Without a desktop
    /// nobody brings the window back to the front then.
    std::string answer(const QString& button) const {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        for (auto* const shown : box ? box->buttons() : QList<QAbstractButton*>())
            if (shown->text().remove(QLatin1Char('&')) == button) {
                const std::string question = box->text().toStdString();
                shown->click();
                host->widget().activateWindow();
                settle();
                return question;
            }
        return "nothing is asked";
    }

    static Names titlesOf(const std::vector<PictureFile::Pointer>& files) {
        Names all;
        for (const auto& file : files)
            all.push_back(file->title);
        return all;
    }
    Names titles() const { return titlesOf(shelf->album()->pictures()->items()); }
    /// What the list, the view that is shown and Qt agree on.
    Names selected() const {
        const Names list = titlesOf(shelf->album()->selected());
        Names shown;
        QModelIndexList indexes = view().selectionModel()->selectedIndexes();
        std::sort(indexes.begin(), indexes.end());
        for (const QModelIndex& index : indexes)
            if (index.column() == 0)
                shown.push_back(index.data().toString().toStdString());
        EXPECT_EQ(list, shown);
        return list;
    }
    std::string status() const {
        for (const auto& inner : shelf->window()->contentView()->subviews()[1]->subviews())
            if (inner->accessibilityLabel() == "Status")
                return inner->accessibilityValue();
        return {};
    }
    std::set<std::string> tools() const {
        std::set<std::string> labels;
        for (const auto& item : shelf->window()->toolbar()->items())
            labels.insert(item->label());
        return labels;
    }

    const fs::path trash = std::getenv("XDG_DATA_HOME") + std::string("/Trash/files");
    TemporaryFolder folder;
    std::shared_ptr<ShelfWindow> shelf;
};

} // namespace

TEST_F(ShelfWindowTest, IsThereBeforeTheWalkIsDone) {
    constexpr int many = 10000;
    (*NSUserDefaults::standardUserDefaults())[ShelfSettings::cacheMegabytes] = 1;
    picture("0.png", 512, 512);
    for (int i = 1; i < many; ++i)
        fs::create_hard_link(folder.path() / "0.png", folder.path() / (std::to_string(i) + ".png"));
    begin();
    EXPECT_TRUE(host->widget().isVisible() && shelf->isWalking());
    EXPECT_EQ(shelf->album()->pictures()->count(), 0);
    waitForWalk();
    EXPECT_EQ(view().model()->rowCount(), many);
    EXPECT_EQ(titles()[9], "9.png") << "numbers by their value";
    EXPECT_EQ(status(), "10000 pictures");
    EXPECT_TRUE(view().hasFocus());
    // Only what is in sight is looked at.
    const auto cells = [&] { return view().viewport()->findChildren<QWidget*>().size(); };
    EXPECT_GT(cells(), 0);
    EXPECT_LT(cells(), 60);
    const Thumbnails& thumbnails = *shelf->thumbnails();
    EXPECT_TRUE(comes([&] { return !thumbnails.isLoading() && thumbnails.byteCount() > 1 << 19; }));
    EXPECT_LE(thumbnails.byteCount(), 1 << 20) << "the bound";
    press(Qt::Key_Home);
    press(Qt::Key_End);
    EXPECT_EQ(selected(), Names{"9999.png"});
    EXPECT_LT(cells(), 60);
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(status(), "10000 pictures, 10000 selected");
    end(); // also while pictures are being decoded
}

TEST_F(ShelfWindowTest, SelectionSurvivesSearchOrderAndSwitch) {
    picture("b.png");
    fs::last_write_time(folder.path() / "b.png",
                        fs::file_time_type::clock::now() + std::chrono::hours(1));
    open({"a.png", "Bc d.png", "d.png", "sub/be.jpg", "sub/f.jpg"});
    EXPECT_EQ(titles(), (Names{"a.png", "b.png", "Bc d.png", "d.png", "be.jpg", "f.jpg"}));
    EXPECT_FALSE(tools().contains("Export") || shelf->menu()->item(0)->isEnabled());
    click(1);
    EXPECT_TRUE(tools().contains("Open"));
    click(3, Qt::ShiftModifier);
    EXPECT_TRUE(tools().contains("Export") && shelf->menu()->item(0)->isEnabled());
    EXPECT_FALSE(tools().contains("Open")) << "only one is opened";
    const auto expectSelected = [&] {
        const Names names{"b.png", "Bc d.png", "d.png"};
        EXPECT_EQ(selected(), names);
        press(Qt::Key_C, Qt::ControlModifier);
        EXPECT_EQ(folder.relative(NSPasteboard::generalPasteboard()->fileURLs()), names);
        const std::unique_ptr<QMimeData> dragged(
            view().model()->mimeData(view().selectionModel()->selectedIndexes()));
        EXPECT_EQ(dragged->urls().value(1).toLocalFile().toStdString(), folder.path() / names[1]);
    };
    expectSelected();
    press(Qt::Key_2, Qt::ControlModifier);
    EXPECT_TRUE(view<QTableView>().hasFocus());
    expectSelected();
    click(5, Qt::ControlModifier);
    choose("Copy");
    EXPECT_EQ(NSPasteboard::generalPasteboard()->fileURLs().size(), 4u);
    press(Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(QApplication::focusWidget(), "B");
    settle();
    EXPECT_EQ(titles(), (Names{"b.png", "Bc d.png", "be.jpg"}));
    EXPECT_EQ(selected(), (Names{"b.png", "Bc d.png"}));
    EXPECT_EQ(status(), "3 pictures of 6, 2 selected");
    shelf->setOrder(PictureOrder::date, false);
    settle();
    EXPECT_EQ(selected()[0], "b.png");
    press(Qt::Key_Backspace); // the keyboard is still in the field
    press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(view<QListView>().model()->rowCount(), 6);
    // What comes later takes nothing away.
    picture("later.png");
    fs::remove(folder.path() / "a.png");
    reload();
    EXPECT_EQ(titles().size(), 6u);
    EXPECT_EQ(selected().size(), 2u);
}

TEST_F(ShelfWindowTest, TheSidebarChooses) {
    open({"a.png", "b.jpg", "x/c.png", "x/y/d.png"});
    auto& tree = *host->widget().findChild<QTreeView*>();
    const auto line = [&](const QString& text) {
        const auto found = tree.model()->match(tree.model()->index(0, 0), Qt::DisplayRole, text, 1,
                                               Qt::MatchExactly | Qt::MatchRecursive);
        return found.empty() ? QModelIndex() : found.front();
    };
    const std::pair<const char*, Names> table[] = {
        {"x/y (1)", {"d.png"}},
        {"At the top (2)", {"a.png", "b.jpg"}},
        {"JPEG (1)", {"b.jpg"}},
        {"Kinds", {"a.png", "b.jpg", "c.png", "d.png"}},
        {"All pictures (4)", {"a.png", "b.jpg", "c.png", "d.png"}},
        {"PNG (3)", {"a.png", "c.png", "d.png"}},
    };
    for (const auto& [text, shown] : table) {
        QTest::mouseClick(tree.viewport(), Qt::LeftButton, {},
                          tree.visualRect(line(text)).center());
        settle();
        EXPECT_EQ(titles(), shown) << text;
    }
    fs::remove_all(folder.path() / "x");
    fs::remove(folder.path() / "a.png");
    reload();
    EXPECT_EQ(titles(), Names{"b.jpg"}) << "what was chosen is not there any more";
}

TEST_F(ShelfWindowTest, OpensAPictureLarge) {
    folder.file("3.png", "no picture");
    open({"1.png", "2.png"});
    click(0);
    press(Qt::Key_Return);
    const auto& large = *shelf->largePicture();
    ASSERT_TRUE(large.file());
    EXPECT_TRUE(comes([&] { return !large.isLoading(); }));
    EXPECT_TRUE(large.image());
    EXPECT_TRUE(tools().contains("Back"));
    press(Qt::Key_Left);
    EXPECT_EQ(large.file()->title, "1.png") << "there is none before";
    press(Qt::Key_Right);
    press(Qt::Key_Right);
    press(Qt::Key_Right);
    EXPECT_EQ(large.file()->title, "3.png");
    EXPECT_TRUE(comes([&] { return !large.isLoading(); }));
    EXPECT_FALSE(large.image());
    press(Qt::Key_Escape);
    EXPECT_FALSE(large.file());
    EXPECT_EQ(selected(), Names{"3.png"});
    EXPECT_TRUE(view().hasFocus());
    shelf->setView(ViewKind::table);
    settle();
    QTest::mouseDClick(view().viewport(), Qt::LeftButton, {},
                       view().visualRect(view().model()->index(1, 0)).center());
    settle();
    ASSERT_TRUE(large.file());
    EXPECT_EQ(large.file()->title, "2.png");
    press(Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(QApplication::focusWidget(), "1");
    settle();
    EXPECT_FALSE(large.file()) << "it is not among what is found";
    click(0);
    press(Qt::Key_Return);
    EXPECT_TRUE(large.file());
    press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_FALSE(large.file());
    EXPECT_TRUE(view<QListView>().hasFocus());
}

TEST_F(ShelfWindowTest, MovesToTheTrashAfterAsking) {
    open({"a.png", "b.png", "c.png", "d.png"});
    press(Qt::Key_Delete);
    EXPECT_EQ(answer("Move to Trash"), "nothing is asked") << "nothing is selected";
    click(1);
    press(Qt::Key_Delete);
    EXPECT_EQ(answer("Cancel"), "Move “b.png” to the trash?");
    EXPECT_TRUE(fs::exists(folder.path() / "b.png"));
    click(2, Qt::ShiftModifier);
    press(Qt::Key_Delete);
    EXPECT_EQ(answer("Move to Trash"), "Move 2 pictures to the trash?");
    ASSERT_TRUE(comes([&] { return titles().size() == 2; }));
    EXPECT_EQ(titles(), (Names{"a.png", "d.png"}));
    for (const char* name : {"b.png", "c.png"}) {
        EXPECT_FALSE(fs::exists(folder.path() / name));
        EXPECT_TRUE(fs::exists(trash / name)) << trash / name;
    }
    // Of one that is shown large the next is shown then, and nothing after the last.
    click(0);
    press(Qt::Key_Return);
    for (const char* next : {"d.png", ""}) {
        press(Qt::Key_Delete);
        answer("Move to Trash");
        const auto& large = *shelf->largePicture();
        EXPECT_TRUE(comes([&] { return (large.file() ? large.file()->title : "") == next; }));
    }
    EXPECT_EQ(titles(), Names{});
}

TEST_F(ShelfWindowTest, ExportsAndCancels) {
    picture("large.png", 3000, 2000);
    picture("small.png", 30, 20);
    folder.file("broken.png", "no picture");
    open();
    press(Qt::Key_A, Qt::ControlModifier);
    const std::string out = folder.path() / "out";
    folder.folder("out");
    shelf->exportTo(out);
    EXPECT_TRUE(shelf->isExporting());
    ASSERT_TRUE(comes([&] { return !shelf->isExporting(); }));
    EXPECT_EQ(status(), "2 pictures exported");
    EXPECT_TRUE(answer("Close").starts_with("broken.png: "));
    const auto sizeOf = [&](const char* name) {
        return CGImage::imageSize(folder.url(std::string("out/") + name)).value_or(CGSize());
    };
    EXPECT_EQ(sizeOf("large.jpg"), CGSize(1024, 683));
    EXPECT_EQ(sizeOf("small.jpg"), CGSize(30, 20));

    constexpr int many = 64; // seconds of work
    for (int i = 0; i < many; ++i)
        fs::create_hard_link(folder.path() / "large.png",
                             folder.path() / ("many" + std::to_string(i) + ".png"));
    reload();
    press(Qt::Key_A, Qt::ControlModifier);
    shelf->exportTo(out);
    for (auto* const button : host->widget().findChildren<QAbstractButton*>())
        if (button->accessibleName() == "Cancel")
            button->click();
    ASSERT_TRUE(comes([&] { return !shelf->isExporting(); }));
    const auto written = std::distance(fs::directory_iterator(out), {}) - 2;
    EXPECT_LT(written, many);
    EXPECT_EQ(status(), std::to_string(written) + (written == 1 ? " picture" : " pictures") +
                            " exported, then cancelled");
    answer("Close");
}

TEST_F(ShelfWindowTest, FollowsTheSettingsOfAnotherProcess) {
    open({"a.png", "b.png"});
    click(1);
    const Outcome outcome =
        run({SETTINGS_PROGRAM, NSUserDefaults::standardUserDefaults()->domainName()});
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_TRUE(comes([&] { return titles() == Names{"b.png", "a.png"}; }));
    EXPECT_EQ(selected(), Names{"b.png"});
    EXPECT_TRUE(view<QTableView>().isVisible());
    const auto sidebarWidth = [&] { return host->widget().findChild<QSplitter*>()->sizes()[0]; };
    EXPECT_EQ(sidebarWidth(), 0);
    // They are kept for the next start, and so are those of this window.
    view<QTableView>().horizontalHeader()->sectionClicked(1);
    choose("Sidebar");
    EXPECT_GT(sidebarWidth(), 0);
    shelf->window()->close();
    end();
    open();
    EXPECT_TRUE(view<QTableView>().isVisible());
    EXPECT_GT(sidebarWidth(), 0);
    // Dragged shut it stays so until it is asked for.
    static_cast<NSSplitView&>(*shelf->window()->contentView()).setPosition(0, 0);
    shelf->setView(ViewKind::grid);
    settle();
    EXPECT_EQ(sidebarWidth(), 0);
    choose("Sidebar");
    EXPECT_GT(sidebarWidth(), 0);
    EXPECT_EQ(NSUserDefaults::standardUserDefaults()->value(ShelfSettings::order),
              PictureOrder::date);
}

TEST_F(ShelfWindowTest, TheProgramNeedsNoDisplayToSayWhatItIs) {
    picture("in/a.png");
    folder.file("in/broken.jpg", "x");
    const std::string in = folder.path() / "in", written = folder.path() / "in/window.png";
    const std::tuple<Names, int, std::string, std::string> table[] = {
        {{"--help"}, 0, "Usage: shelf-window [OPTIONS] PATH...\n", ""},
        {{"--json", in}, 2, "", "shelf-window: unknown option '--json'\n"},
        {{"/no\nfolder"}, 2, "", "shelf-window: /no\\nfolder: no such file or folder\n"},
        {{in, "--screenshot", "a.jpg"}, 2, "", "shelf-window: --screenshot writes png only\n"},
        {{in, "--screenshot", "/no/a.png"}, 1, "", "/no/a.png: the screenshot cannot be written\n"},
        {{in, "--screenshot", written}, 0, "", ""},
    };
    for (const auto& [arguments, status, output, errors] : table) {
        Names command{"env",
                      "-u",
                      "DISPLAY",
                      "-u",
                      "WAYLAND_DISPLAY",
                      "-u",
                      "QT_QPA_PLATFORM",
                      SHELF_WINDOW_PROGRAM};
        command.insert(command.end(), arguments.begin(), arguments.end());
        const Outcome outcome = run(command);
        EXPECT_EQ(outcome.status, status) << outcome.errors;
        EXPECT_NE(outcome.output.find(output), std::string::npos) << outcome.output;
        EXPECT_NE(outcome.errors.find(errors), std::string::npos) << outcome.errors;
    }
    EXPECT_EQ(CGImage::imageSize(folder.url("in/window.png")).value_or(CGSize()).width, 1920);
}
