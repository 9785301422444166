// An address book: a managed list in a table, a search field that filters it, and buttons.

#include <zorvan/collections/ManagedList.h>
#include <zorvan/hosts/QtWindowHost.h>
#include <zorvan/interface/DynamicToolbar.h>
#include <zorvan/interface/ManagedListViewReloader.h>
#include <zorvan/interface/NSButton.h>
#include <zorvan/interface/NSTableView.h>
#include <zorvan/interface/NSWindow.h>
#include <zorvan/observation/NoteSubscriber.h>
#include <zorvan/platform/appkit/NSScrollView.h>

#include <QApplication>
#include <QWidget>
#include <algorithm>
#include <string>

using namespace zorvan;

namespace {

struct Person {
    std::string name, town, mail;
    auto operator<=>(const Person&) const = default;

    const std::string& text(std::int64_t column) const {
        return column == 0 ? name : column == 1 ? town : mail;
    }
};

using People = ManagedList<Person>;

/// What the table shows, and what people do there.
struct AddressBook : NSTableViewDataSource, std::enable_shared_from_this<AddressBook> {
    std::shared_ptr<People> people =
        People::create({{"Ada Lovelace", "London", "ada@example.org"},
                        {"Blaise Pascal", "Paris", "bp@example.org"},
                        {"Emmy Noether", "Erlangen", "en@example.org"},
                        {"Leonhard Euler", "Basel", "le@example.org"},
                        {"Sophie Germain", "Paris", "sg@example.org"}});
    std::shared_ptr<NSTableView> table = NSTableView::create();
    std::shared_ptr<NSButton> removal;
    std::shared_ptr<NoteSubscriber> changes = subscriber(), selections = subscriber();

    static std::shared_ptr<NoteSubscriber> subscriber() {
        return NoteSubscriber::create(NSNotificationCenter::defaultCenter());
    }

    void start() {
        for (const char* title : {"Name", "Town", "Mail"}) {
            const auto column = NSTableColumn::create(title);
            column->setWidth(160);
            column->setSortable(true);
            table->addTableColumn(column);
        }
        table->setAccessibilityLabel("People");
        table->setDataSource(shared_from_this());
        // The list tells of each change, and the table shows it.
        changes->setName(NSNotificationName(People::didReloadNotification));
        changes->setObject(people);
        changes->subscribe(shared_from_this(), [](const auto& self, const Notification& note) {
            ManagedListViewReloader(*People::edition(note)).reload(*self->table);
            self->followSelection();
        });
        selections->setName(NSNotificationName(NSTableView::selectionDidChangeNotification));
        selections->setObject(table);
        selections->subscribe(shared_from_this(), [](const auto& self, const Notification&) {
            self->people->setSelection(self->table->selectedRowIndexes());
            self->followSelection();
        });
    }

    void followSelection() { removal->setEnabled(!people->selection().isEmpty()); }

    void search(NSSearchField& field) {
        const std::string wanted = field.stringValue();
        people->setFilter([wanted](const Person& person) {
            return person.name.find(wanted) != std::string::npos ||
                   person.town.find(wanted) != std::string::npos;
        });
    }

    void add() {
        people->append({{"New person", "", ""}});
        people->setSelection({people->count() - 1});
        table->selectOnlyRow(people->count() - 1);
        table->scrollToLastSelectedRow();
    }

    void remove() { people->removeSelectedItems(); }

    std::int64_t numberOfRows(const NSTableView&) const override { return people->count(); }
    std::string text(const NSTableView&, std::int64_t column, std::int64_t row) const override {
        return people->items()[static_cast<std::size_t>(row)].text(column);
    }
    void sortOrderDidChange(NSTableView&) override {
        const auto order = table->sortOrder();
        if (!order)
            return;
        const auto& columns = table->tableColumns();
        const auto column =
            std::find(columns.begin(), columns.end(), order->column) - columns.begin();
        people->sort([column, up = order->isAscending](const Person& a, const Person& b) {
            return up ? a.text(column) < b.text(column) : b.text(column) < a.text(column);
        });
    }
};

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const auto book = std::make_shared<AddressBook>();
    const auto toolbar = DynamicToolbar::create({"people"});
    toolbar->addItemSet();
    const auto addButton = [&](const char* title, const char* image, void (AddressBook::*act)()) {
        return toolbar->addItem({.createImageButton = [&](ImageButtonSettings& settings) {
            settings.displayName = title;
            settings.imageName = image;
            settings.action = Selector(title, act);
            settings.target = book;
        }});
    };
    addButton("Add", "plus", &AddressBook::add);
    book->removal = addButton("Remove", "trash", &AddressBook::remove);
    book->removal->setKeyEquivalent("\x7f"); // the Delete key
    toolbar->addItem({.identifier = NSToolbarFlexibleSpaceItemIdentifier});
    toolbar->addItem({.createSearchField = [&](SearchFieldSettings& settings) {
        settings.placeholderString = "Name or town";
        settings.action = Selector("search", &AddressBook::search);
        settings.target = book;
    }});
    toolbar->reloadDisplayedItems();

    const auto window = NSWindow::create({520, 300}, "Address book");
    window->setFrameAutosaveName("Address book");
    window->setToolbar(toolbar->toolbar());
    const auto scrollView = NSScrollView::create();
    scrollView->setDocumentView(book->table);
    window->setContentView(scrollView);
    book->start();
    book->followSelection();
    const auto host = QtWindowHost::show(window);
    if (argc > 1) // a file that the window is drawn into
        return host->widget().grab().save(argv[1]) ? 0 : 1;
    return QApplication::exec();
}
