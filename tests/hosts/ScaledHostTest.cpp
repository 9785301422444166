// On a screen where a point is no whole number of pixels.

#include "HostTest.h"

namespace {

class ScaledHostTest : public HostTest {
protected:
    static void SetUpTestSuite() {
        ::setenv("QT_SCALE_FACTOR", "1.25", 1);
        start("offscreen");
    }
};

struct Plain : NSView {
    explicit Plain(const CGRect& frame) : NSView(Key{}, frame) {}
    void draw(Canvas& canvas) const override { canvas.fill(bounds(), {10, 200, 30}); }
};

TEST_F(ScaledHostTest, ViewsAreDrawnToTheirEdges) {
    const auto view = std::make_shared<Plain>(CGRect(20, 20, 80, 60));
    content->addSubview(view);
    for (const QRect part : {QRect(0, 0, 80, 60), QRect(4, 8, 16, 12)}) {
        const QImage shown = widgetFor(*view)->grab(part).toImage();
        ASSERT_EQ(shown.size(), part.size() * 1.25);
        for (int y = 0; y < shown.height(); ++y)
            for (int x = 0; x < shown.width(); ++x)
                ASSERT_EQ(shown.pixelColor(x, y), QColor(10, 200, 30)) << x << ", " << y;
    }
}

} // namespace
