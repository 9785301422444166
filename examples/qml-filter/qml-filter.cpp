// A ListView of QML over a managed list: type to filter, click to select; what is selected stays
// selected.

#include <zorvan/hosts/qtmodels/QtListModel.h>

#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickView>
#include <QTimer>
#include <memory>
#include <vector>

using namespace zorvan;

/// What the window shows, and asks for.
class Garden : public QObject {
    Q_OBJECT
    Q_PROPERTY(QAbstractItemModel* plants READ plants CONSTANT)

public:
    Garden() { model_.setRoleNames({{Qt::DisplayRole, "name"}}); }

    QAbstractItemModel* plants() { return &model_; }

    Q_INVOKABLE void filter(const QString& letters) {
        list_->setFilter([letters](const QString& name) { return name.contains(letters); });
    }
    Q_INVOKABLE void toggle(int row) { list_->setSelection(list_->selection().toggling(row)); }

private:
    static std::vector<QString> names() {
        std::vector<QString> names;
        for (int i = 0; i < 20'000; ++i)
            for (const char* name : {"Anemone", "Basil", "Clover", "Fern", "Mint"})
                names.push_back(QString("%1 %2").arg(name).arg(i));
        return names;
    }
    static QVariant text(const QString& name) { return name; }

    const std::shared_ptr<ManagedList<QString>> list_ = ManagedList<QString>::create(names());
    QtListModel<QString> model_{list_, QtListModel<QString>::Roles{{Qt::DisplayRole, text}}};
};

int main(int count, char** arguments) {
    const QGuiApplication application(count, arguments);
    Garden garden;
    QQuickView view;
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.setInitialProperties({{"garden", QVariant::fromValue(&garden)}});
    view.setSource(QUrl("qrc:/Filter.qml"));
    if (view.status() != QQuickView::Ready)
        return 1;
    view.resize(320, 360);
    view.show();

    // With the name of a picture: shows what the guide shows, draws it and ends.
    if (count > 1) {
        for (const int row : {3, 8, 14})
            garden.toggle(row);
        view.rootObject()->setProperty("letters", "n");
        QTimer::singleShot(500, &view, [&] {
            QCoreApplication::exit(view.grabWindow().save(arguments[1]) ? 0 : 1);
        });
    }
    return QGuiApplication::exec();
}

#include "qml-filter.moc"
