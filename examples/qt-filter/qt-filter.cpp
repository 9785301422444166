// A table of Qt over a managed list: type to filter, click a header to sort, drag rows, and tick
// them off; what is selected stays selected.

#include <zorvan/hosts/qtmodels/QtListModel.h>

#include <QApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QStatusBar>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>
#include <memory>

using namespace zorvan;

struct Plant {
    QString name, family;
    int height; // in centimetres
    bool isWatered = false;
};
using PlantPointer = std::shared_ptr<Plant>;

static std::vector<PlantPointer> plants() {
    const std::pair<const char*, const char*> kinds[] = {
        {"Aloe", "Asphodelaceae"}, {"Anemone", "Ranunculaceae"}, {"Basil", "Lamiaceae"},
        {"Clover", "Fabaceae"},    {"Fern", "Polypodiaceae"},    {"Mint", "Lamiaceae"},
        {"Rosemary", "Lamiaceae"}, {"Thyme", "Lamiaceae"},       {"Tulip", "Liliaceae"}};
    std::vector<PlantPointer> plants;
    for (int i = 0; i < 100'000; ++i) {
        const auto& [name, family] = kinds[static_cast<std::size_t>(i) % std::size(kinds)];
        plants.push_back(std::make_shared<Plant>(
            Plant{QString("%1 %2").arg(name).arg(i), family, 5 + i * 37 % 90}));
    }
    return plants;
}

int main(int count, char** arguments) {
    const QApplication application(count, arguments);
    const auto list = ManagedList<PlantPointer>::create(plants());

    const auto isTicked = [](const PlantPointer& p) {
        return p->isWatered ? Qt::Checked : Qt::Unchecked;
    };
    const auto tick = [](PlantPointer& p, const QVariant& value) {
        p->isWatered = value.toInt() == Qt::Checked;
        return true;
    };
    QtListModel<PlantPointer> model(
        list, std::vector<QtColumn<PlantPointer>>{
                  {.title = "Plant",
                   .roles = {{Qt::DisplayRole, [](const PlantPointer& p) { return p->name; }},
                             {Qt::CheckStateRole, isTicked}},
                   .setters = {{Qt::CheckStateRole, tick}},
                   .order = [](const auto& a, const auto& b) { return a->name < b->name; }},
                  {.title = "Family",
                   .roles = {{Qt::DisplayRole, [](const PlantPointer& p) { return p->family; }}},
                   .order = [](const auto& a, const auto& b) { return a->family < b->family; }},
                  {.title = "Height",
                   .roles = {{Qt::DisplayRole, [](const PlantPointer& p) { return p->height; }}},
                   .order = [](const auto& a, const auto& b) { return a->height < b->height; }}});

    QWidget window;
    QLineEdit search;
    QTableView table;
    QStatusBar status;
    search.setPlaceholderText("Filter");
    table.setModel(&model);
    table.setSelectionModel(model.selectionModel());
    table.setSelectionBehavior(QAbstractItemView::SelectRows);
    table.setDragDropMode(QAbstractItemView::InternalMove);
    table.horizontalHeader()->setStretchLastSection(true);
    table.horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder); // as they come
    table.setSortingEnabled(true);
    table.setColumnWidth(0, 180);
    auto* layout = new QVBoxLayout(&window);
    for (QWidget* widget : std::initializer_list<QWidget*>{&search, &table, &status})
        layout->addWidget(widget);

    const auto sayHowMany = [&] {
        status.showMessage(
            QString("%1 plants, %2 selected").arg(list->count()).arg(list->selection().count()));
    };
    QObject::connect(model.selectionModel(), &QItemSelectionModel::selectionChanged, sayHowMany);
    QObject::connect(&search, &QLineEdit::textChanged, [&](const QString& letters) {
        list->setFilter([letters](const PlantPointer& p) {
            return p->name.contains(letters) || p->family.contains(letters);
        });
        sayHowMany();
    });
    sayHowMany();
    window.resize(480, 400);
    window.show();

    // With the name of a picture: shows what the guide shows, draws it and ends.
    if (count > 1) {
        list->setSelection({4, 5, 6, 11});
        search.setText("Lamiaceae");
        list->items()[1]->isWatered = true; // changed in place, of which the model must be told
        model.itemsDidChange({1});
        QTimer::singleShot(
            200, [&] { QCoreApplication::exit(window.grab().save(arguments[1]) ? 0 : 1); });
    }
    return QApplication::exec();
}
