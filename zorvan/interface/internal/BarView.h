#pragma once

#include <zorvan/platform/appkit/NSView.h>

#include <memory>
#include <vector>

namespace zorvan {

/// Holds the views of a bar's items, so that they are in the window: side by side, each as large as
/// it would like to be; in a touch bar all are 30 points high. Whoever shows the window shows them
/// where its bar has them.
class BarView : public NSView {
public:
    using Views = std::vector<std::shared_ptr<NSView>>;

    enum class Kind { toolbar, touchBar };
    static std::shared_ptr<BarView> create(Kind kind) {
        auto made = std::make_shared<BarView>(Key{}, CGRect());
        made->kind_ = kind;
        return made;
    }
    using NSView::NSView;

    /// Takes these in, those that another bar has taken too, and lets go of others.
    void hold(const Views& views);
    Kind kind() const noexcept { return kind_; }

private:
    Kind kind_ = Kind::toolbar;
};

/// Whether light things are to be drawn where the view stands: on a dark desktop, and in a touch
/// bar.
bool isOnDarkGround(const NSView& view);

} // namespace zorvan
