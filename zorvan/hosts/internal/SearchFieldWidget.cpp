#include <zorvan/hosts/internal/SearchFieldWidget.h>

#include <zorvan/hosts/internal/ViewMirror.h>
#include <zorvan/hosts/internal/viewGeometry.h>
#include <zorvan/interface/NSWindow.h>
#include <zorvan/media/NSImage.h>

#include <QAction>
#include <QKeyEvent>
#include <QStyle>

namespace zorvan::internal {

class SearchFieldWidget::Mirror : public ViewMirror {
public:
    Mirror(const std::shared_ptr<NSSearchField>& field, SearchFieldWidget& widget)
        : ViewMirror(field, widget) {}

    void needsDisplay(const CGRect&) override {
        auto* const own = static_cast<SearchFieldWidget*>(widget());
        if (!own)
            return;
        const NSSearchField& field = *own->field_;
        own->setEnabled(field.isEnabled());
        own->setPlaceholderText(toQString(field.placeholderString().value_or("")));
        own->setAccessibleName(toQString(field.accessibilityLabel()));
        // What was just typed comes back as it is; caret and undo must stay.
        if (const QString text = toQString(field.stringValue()); own->text() != text)
            own->setText(text);
        own->field_->setNeedsDisplay(false);
    }

protected:
    void followAll() override {
        ViewMirror::followAll();
        needsDisplay(view()->bounds());
    }
};

SearchFieldWidget::SearchFieldWidget(const std::shared_ptr<NSSearchField>& field, QWidget* parent)
    : QLineEdit(parent), field_(field) {
    setClearButtonEnabled(true);
    ViewMirror::attach(std::make_shared<Mirror>(field, *this));
    connect(this, &QLineEdit::textEdited, this, [this](const QString& text) noexcept {
        const auto keptAlive = field_;
        QString line = text; // what is pasted may have several
        line.replace(QLatin1Char('\n'), QLatin1Char(' '));
        keptAlive->enterText(line.toStdString());
    });
    // The clear button is no edit to Qt.
    connect(this, &QLineEdit::textChanged, this, [this](const QString& text) noexcept {
        const auto keptAlive = field_;
        if (text.isEmpty())
            keptAlive->enterText("");
    });
}

QSize SearchFieldWidget::sizeHint() const {
    return {wholeLength(field_->fittingSize().width), QLineEdit::sizeHint().height()};
}

bool SearchFieldWidget::event(QEvent* event) noexcept { return QLineEdit::event(event); }

void SearchFieldWidget::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape || text().isEmpty())
        return QLineEdit::keyPressEvent(event);
    setText({});
    event->accept();
}

void SearchFieldWidget::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    if (const auto window = field_->window())
        window->makeFirstResponder(field_);
}

} // namespace zorvan::internal
