#pragma once

#include <zorvan/hosts/internal/HostedWidget.h>
#include <zorvan/interface/NSSearchField.h>

#include <QLineEdit>

namespace zorvan::internal {

/// A search field: a line edit, whose text is that of the view.
class SearchFieldWidget : public HostedWidget<QLineEdit, NSSearchField> {
public:
    SearchFieldWidget(const std::shared_ptr<NSSearchField>& field, QWidget* parent);

    QSize sizeHint() const override;
    void needsDisplay(const CGRect& rect) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace zorvan::internal
