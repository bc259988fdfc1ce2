#include "gui/IconPainter.h"

#include "config/SettingsWrapper.h"
#include "presentation/UserIcons.h"

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

namespace {

QImage render(const QString& key, int size) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    IconPainter::paint(painter, QRectF(0, 0, size, size), key);
    return image;
}

int paintedPixels(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 0 ? 1 : 0;
    }
    return count;
}

TEST(IconPainterTest, EveryKeyOfTheListsHasItsOwnDrawing) {
    QList<QImage> seen;
    for (const QString& key : SmallIconKeys()) {
        ASSERT_TRUE(IconPainter::knows(key)) << key.toStdString();
        const QImage image = render(key, 16);
        EXPECT_GT(paintedPixels(image), 30) << key.toStdString();
        EXPECT_FALSE(seen.contains(image)) << key.toStdString() << " looks like another key";
        seen << image;
    }
    EXPECT_FALSE(IconPainter::knows(QStringLiteral("NoSuchKey")));
    EXPECT_EQ(paintedPixels(render(QStringLiteral("NoSuchKey"), 16)), 0);
    // An icon comes in the size and pixel ratio asked for.
    const QPixmap doubled = IconPainter::icon(QStringLiteral("WAR3")).pixmap(QSize(16, 16), 2.0);
    EXPECT_EQ(doubled.size(), QSize(32, 32));
    EXPECT_EQ(doubled.devicePixelRatio(), 2.0);
    EXPECT_GT(paintedPixels(doubled.toImage()), 4 * 30);
}

// The ping bars stand on whole grid units, so their edges fall on pixel
// edges: full cover at a bar's left edge, nothing in the gap beside it.
TEST(IconPainterTest, BarsAreSharpAtOneAndTwoPixelsPerUnit) {
    for (const int size : {16, 32}) {
        const int unit = size / 16;
        const QImage image = render(QStringLiteral("Green"), size);
        for (int bar = 0; bar < 5; ++bar) {
            const int left = (1 + 3 * bar) * unit;
            EXPECT_EQ(qAlpha(image.pixel(left, 13 * unit)), 255) << size << " px, bar " << bar;
            EXPECT_EQ(qAlpha(image.pixel(left + 2 * unit, 13 * unit)), 0)
                << size << " px, gap " << bar;
        }
    }
}

TEST(IconPainterTest, ANumberedIconShowsItsNumberOverItsBase) {
    SettingsWrapper::instance().setIconDraw(true);
    const QString key = DrawIconNumber(QStringLiteral("SCH"), QStringLiteral("1234"), 0xFFFF);
    SettingsWrapper::instance().setIconDraw(false);
    ASSERT_EQ(key, QStringLiteral("SCH_1234"));
    EXPECT_TRUE(IconPainter::knows(key));
    EXPECT_NE(render(key, 32), render(QStringLiteral("SCH"), 32));
}

} // namespace
