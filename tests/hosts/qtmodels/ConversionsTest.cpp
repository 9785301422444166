#include "tests/Testing.h"

#include <zorvan/hosts/qtmodels/QColor.h>
#include <zorvan/hosts/qtmodels/QDateTime.h>
#include <zorvan/hosts/qtmodels/QImage.h>
#include <zorvan/hosts/qtmodels/QKeySequence.h>
#include <zorvan/hosts/qtmodels/QRectF.h>
#include <zorvan/hosts/qtmodels/QUrl.h>
#include <zorvan/hosts/qtmodels/QVariant.h>

#include <QBitArray>

namespace {

/// 3 by 2 pixels, each byte another value, no colour above its alpha.
Bitmap picture(BitmapLayout layout) {
    Bitmap bitmap = *Bitmap::make(3, 2, layout);
    for (int i = 0; i < 6; ++i) {
        std::array<int, 4> pixel{i * 20, i * 20 + 1, i * 20 + 2, i * 20 + 100};
        if (layout == BitmapLayout::argb)
            std::rotate(pixel.begin(), pixel.begin() + 3, pixel.end());
        std::copy(pixel.begin(), pixel.end(), bitmap.data() + i * 4);
    }
    return bitmap;
}

TEST(QtConversions, PicturesAreSharedWhereTheFormatAllows) {
    const auto image = CGImage::create(picture(BitmapLayout::rgba));
    const QImage shared = toQImage(image);
    EXPECT_EQ(shared.constBits(), image->uint8Data());
    EXPECT_EQ(shared.pixelColor(2, 1).alpha(), 200);
    QImage turned = toQImage(CGImage::create(picture(BitmapLayout::argb)));
    EXPECT_EQ(turned, shared);
    Bitmap own = picture(BitmapLayout::rgba);
    const std::uint8_t* place = own.data();
    QImage handedOver = toQImage(std::move(own));
    EXPECT_EQ(handedOver.bits(), place); // also for writing
    auto back = toCGImage(turned);
    EXPECT_EQ(back->uint8Data(), turned.constBits());
    turned.fill(0); // which copies first
    EXPECT_EQ(toQImage(toBitmap(toQImage(back)).value()), shared);
    // They outlive each other.
    const QImage again = toQImage(back);
    turned = {};
    back = nullptr;
    EXPECT_EQ(again, toQImage(picture(BitmapLayout::argb)));
    QImage grey(5, 3, QImage::Format_Grayscale8); // with padded rows
    grey.fill(QColor(7, 7, 7));
    const Bitmap converted = toBitmap(grey).value();
    EXPECT_EQ(converted.bytesPerRow(), 20);
    EXPECT_THAT(std::vector(converted.row(2) + 16, converted.row(2) + 20),
                ElementsAre(7, 7, 7, 255));
    const std::vector<uchar> pixels{9, 9, 9, 9, 0, 0, 0, 0, 7, 7, 7, 7, 0, 0, 0, 0};
    const QImage padded(pixels.data(), 1, 2, 8, QImage::Format_RGBA8888_Premultiplied);
    EXPECT_EQ(toCGImage(padded)->uint8Data()[4], 7);
    EXPECT_FALSE(toBitmap(QImage()).has_value());
    EXPECT_TRUE(toQImage(CGImage::Pointer()).isNull());
}

TEST(QtConversions, Colours) {
    for (const int value : {0, 1, 127, 128, 254, 255}) {
        const double part = value / 255.0;
        EXPECT_EQ(toRGBA(QColor(value, 3, 4, value)), RGBA(part, 3 / 255.0, 4 / 255.0, part));
        EXPECT_EQ(toQColor(RGBA(part, 0, 1, part)), QColor(value, 0, 255, value));
    }
    EXPECT_EQ(toQColor(RGBA(2, -1, std::nan(""), 1)), QColor(255, 0, 0));
    EXPECT_EQ(toNSColor(QColor::fromHsv(0, 255, 255)), NSColor::red);
    EXPECT_EQ(toRGBA(QColor::fromRgbF(1.5f, 0, 0))->r, 1.5);
    EXPECT_EQ(toNSColor(QColor()), std::nullopt);
}

TEST(QtConversions, Addresses) {
    const URL file({.fileURLWithPath = "/tmp/a b/ü%25#?"});
    EXPECT_EQ(toQUrl(file).toLocalFile(), QString("/tmp/a b/ü%25#?"));
    EXPECT_EQ(toURL(QUrl::fromLocalFile("/tmp/a b/ü%25#?")), file);
    const URL bytes({.fileURLWithPath = "/tmp/\xff.jpg"});
    EXPECT_EQ(toURL(toQUrl(bytes)), bytes);
    const URL page = *URL::make({.string = "https://example.org/a%20b?c=d%26#e"});
    EXPECT_EQ(toURL(toQUrl(page)), page);
    EXPECT_EQ(toURL(QUrl("pictures/a.png")), std::nullopt);
    EXPECT_EQ(toURL(QUrl()), std::nullopt);
    EXPECT_EQ(toURL(QUrl("file://server/a.png")), std::nullopt);
}

TEST(QtConversions, Geometry) {
    EXPECT_EQ(toQRectF(CGRect(1, 2, -3, 4)), QRectF(1, 2, -3, 4));
    EXPECT_EQ(toCGRect(QRectF(1, 2, -3, 4)), CGRect(1, 2, -3, 4));
    EXPECT_TRUE(toQRectF(CGRect::null).isNull());
    EXPECT_EQ(toCGPoint(toQPointF({1.5, 2.5})), CGPoint(1.5, 2.5));
    EXPECT_EQ(toCGSize(toQSizeF({1.5, 2.5})), CGSize(1.5, 2.5));
    EXPECT_EQ(toQMarginsF(NSEdgeInsets(1, 2, 3, 4)), QMarginsF(2, 1, 4, 3));
    EXPECT_EQ(toNSEdgeInsets(QMarginsF(2, 1, 4, 3)).right, 4);
    const CGAffineTransform t(2, 3, 5, 7, 11, 13);
    EXPECT_EQ(toQTransform(t).map(QPointF(1, 10)), QPointF(63, 86)); // 2 + 50 + 11, 3 + 70 + 13
    EXPECT_EQ(toCGAffineTransform(toQTransform(t)), t);
    EXPECT_EQ(toCGAffineTransform(QTransform(1, 0, 0.5, 0, 1, 0, 0, 0, 1)), std::nullopt);
}

TEST(QtConversions, Moments) {
    const Date before = Date(-1ns); // the millisecond it lies in began before 1970
    EXPECT_EQ(toQDateTime(before).toMSecsSinceEpoch(), -1);
    const Date moment = Date(1'700'000'000'123ms);
    EXPECT_EQ(toQDateTime(moment).toString(Qt::ISODateWithMs), QString("2023-11-14T22:13:20.123Z"));
    EXPECT_EQ(toDate(toQDateTime(moment).toLocalTime()), moment);
    for (const Date end : {Date::min() + 1ms, Date::max() - 1ms})
        EXPECT_LT(std::chrono::abs(*toDate(toQDateTime(end)) - end), 1ms);
    EXPECT_EQ(toDate(QDateTime()), std::nullopt);
    EXPECT_EQ(toDate(QDateTime(QDate(2300, 1, 1), QTime(0, 0))), std::nullopt);
    EXPECT_EQ(toDate(QDateTime(QDate(1600, 1, 1), QTime(0, 0))), std::nullopt);
}

TEST(QtConversions, Keys) {
    EXPECT_EQ(toQKeySequence(EventKeyCode::letterA), QKeySequence(Qt::Key_A));
    EXPECT_EQ(toQKeySequence(EventKeyCode::delete_, Qt::ControlModifier | Qt::ShiftModifier),
              QKeySequence("Ctrl+Shift+Backspace"));
    EXPECT_EQ(toEventKeyCode(QKeySequence("Ctrl+Return")), EventKeyCode::enter);
    EXPECT_EQ(toEventKeyCode(QKeySequence("Ctrl+K, Ctrl+C")), std::nullopt);
    EXPECT_EQ(toEventKeyCode(QKeySequence()), std::nullopt);
    EXPECT_EQ(toEventKeyCode(Qt::Key_F1), std::nullopt);
    EXPECT_TRUE(toQKeySequence(EventKeyCode(999)).isEmpty());
    const EventKeyCode before = std::exchange(EventKeyCode::letterA, EventKeyCode(999));
    EXPECT_EQ(toEventKeyCode(Qt::Key_A), EventKeyCode(999));
    EventKeyCode::letterA = before;
}

TEST(QtConversions, PropertyLists) {
    const PropertyList list =
        PropertyList::Dictionary{{"truth", true},
                                 {"numbers", PropertyList::Array{-1, std::uint64_t{1} << 63, 0.5}},
                                 {"text", "grün"},
                                 {"date", Date(1ms)},
                                 {"bytes", Data{std::byte{0}, std::byte{255}}},
                                 {"nothing", PropertyList::Array{}}};
    const QVariantMap map = toQVariant(list).toMap();
    EXPECT_EQ(map["truth"].typeId(), QMetaType::Bool);
    EXPECT_EQ(map["numbers"].toList()[1].toULongLong(), 9223372036854775808u);
    EXPECT_EQ(toPropertyList(map), list);

    EXPECT_EQ(toPropertyList(QVariant::fromValue(short{-3})), PropertyList(-3));
    EXPECT_EQ(toPropertyList(7u), PropertyList(7));
    EXPECT_EQ(toPropertyList(0.5f), PropertyList(0.5));
    EXPECT_EQ(toPropertyList(QStringList{"a"}), PropertyList(PropertyList::Array{"a"}));
    EXPECT_EQ(toPropertyList(QVariantHash{{"a", 1}}),
              PropertyList(PropertyList::Dictionary{{"a", 1}}));
    for (const QVariant& none :
         {QVariant(), QVariant(QBitArray(3)), QVariant(QVariantList{QVariant()}),
          QVariant(QVariantMap{{"a", QVariant()}}), QVariant(QDateTime())})
        EXPECT_EQ(toPropertyList(none), std::nullopt);
}

} // namespace
