#include <zorvan/hosts/internal/SearchFieldWidget.h>

#include <zorvan/hosts/internal/viewGeometry.h>

#include <QKeyEvent>

namespace zorvan::internal {

SearchFieldWidget::SearchFieldWidget(const std::shared_ptr<NSSearchField>& field, QWidget* parent)
    : HostedWidget(field, parent) {
    setClearButtonEnabled(true);
    follow();
    needsDisplay(field->bounds());
    connect(this, &QLineEdit::textEdited, this, [this](const QString& text) noexcept {
        const auto keptAlive = view_;
        QString line = text; // what is pasted may have several
        line.replace(QLatin1Char('\n'), QLatin1Char(' '));
        keptAlive->enterText(line.toStdString());
    });
    // The clear button is no edit to Qt.
    connect(this, &QLineEdit::textChanged, this, [this](const QString& text) noexcept {
        const EventInProgress inProgress;
        const auto keptAlive = view_;
        if (text.isEmpty())
            keptAlive->enterText("");
    });
}

QSize SearchFieldWidget::sizeHint() const {
    return {wholeLength(view_->fittingSize().width), QLineEdit::sizeHint().height()};
}

void SearchFieldWidget::needsDisplay(const CGRect&) {
    setEnabled(view_->isEnabled());
    setPlaceholderText(toQString(view_->placeholderString().value_or("")));
    setAccessibleName(toQString(view_->accessibilityLabel()));
    // What was just typed comes back as it is; caret and undo must stay.
    if (const QString shown = toQString(view_->stringValue()); text() != shown)
        setText(shown);
    view_->setNeedsDisplay(false);
}

void SearchFieldWidget::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape || text().isEmpty())
        return QLineEdit::keyPressEvent(event);
    setText({});
    event->accept();
}

} // namespace zorvan::internal
