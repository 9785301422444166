#include "desktop.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>
#include <utility>

namespace desktop {

namespace {

/// Plain text: a file may be called "<b>".
QMessageBox* makeBox(QMessageBox::Icon icon, const std::string& text) {
    auto* const box =
        new QMessageBox(icon, QApplication::applicationDisplayName(), QString::fromStdString(text),
                        QMessageBox::NoButton, QApplication::activeWindow());
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    return box;
}

} // namespace

void ask(const std::string& question, const std::string& details, const std::string& yes,
         std::function<void()> confirmed) {
    QMessageBox* const box = makeBox(QMessageBox::Question, question);
    box->setInformativeText(QString::fromStdString(details));
    const auto* const button = box->addButton(QString::fromStdString(yes), QMessageBox::AcceptRole);
    box->addButton(QMessageBox::Cancel);
    QObject::connect(button, &QPushButton::clicked, box,
                     [confirmed = std::move(confirmed)]() noexcept { confirmed(); });
    box->open();
}

void complain(const std::string& text) {
    QMessageBox* const box = makeBox(QMessageBox::Warning, text);
    box->addButton(QMessageBox::Close);
    box->open();
}

void chooseFolder(const std::string& title, std::function<void(const std::string&)> chosen) {
    auto* const dialog =
        new QFileDialog(QApplication::activeWindow(), QString::fromStdString(title));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    QObject::connect(dialog, &QFileDialog::fileSelected, dialog,
                     [chosen = std::move(chosen)](const QString& path) noexcept {
                         chosen(QFile::encodeName(path).toStdString());
                     });
    dialog->open();
}

bool moveToTrash(const std::string& path) {
    const QString home = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const QString trash = home + "/Trash";
    // Qt makes the trash where it is missing, but not the folder that it stands in; and where it
    // can make none, the one that the program was started in would become it.
    QDir().mkpath(home);
    const QFileInfo place(QFileInfo::exists(trash) ? trash : home);
    return place.isDir() && place.isWritable() &&
           QFile::moveToTrash(QFile::decodeName(QByteArray::fromStdString(path)));
}

} // namespace desktop
