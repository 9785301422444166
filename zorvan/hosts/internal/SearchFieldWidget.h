#pragma once

#include <zorvan/interface/NSSearchField.h>

#include <QLineEdit>
#include <memory>

namespace zorvan::internal {

/// A search field: a line edit, whose text is that of the view.
class SearchFieldWidget : public QLineEdit {
public:
    SearchFieldWidget(const std::shared_ptr<NSSearchField>& field, QWidget* parent);

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) noexcept override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    class Mirror;

    const std::shared_ptr<NSSearchField> field_;
};

} // namespace zorvan::internal
