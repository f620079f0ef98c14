// SPDX-License-Identifier: GPL-3.0-or-later
// The built-in pictures: distinct, visible, found by name and number, scaled to size.
#include <gtest/gtest.h>

#include <QImage>

#include "resources/QcbsXpmResource.hpp"

namespace {

// The numbered pictures the error list, the tree of blocks and the menus ask for.
const QList<int> kUsed{1, 7, 10, 11, 12, 18, 48, 49, 50, 51, 52, 56, 57};

int opaquePixels(const QPixmap& pixmap) {
    const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) count += qAlpha(image.pixel(x, y)) > 128;
    return count;
}

TEST(BuiltInImages, EveryImageIsADistinctVisiblePicture) {
    for (int number : kUsed) EXPECT_TRUE(QcbsXpmResource::numbers().contains(number)) << number;
    QList<QImage> seen;
    for (int number : QcbsXpmResource::numbers()) {
        const QPixmap pixmap = QcbsXpmResource::get_xpm(number);
        ASSERT_FALSE(pixmap.isNull()) << number;
        EXPECT_EQ(pixmap.deviceIndependentSize().toSize(), QSize(16, 16)) << number;
        EXPECT_GT(opaquePixels(pixmap), 30) << number;
        const QImage image = pixmap.toImage();
        for (const QImage& other : seen) EXPECT_NE(image, other) << number;
        seen << image;
    }
}

TEST(BuiltInImages, NameAndNumberGiveTheSamePicture) {
    for (int number : QcbsXpmResource::numbers()) {
        const QString name = QcbsXpmResource::name(number);
        ASSERT_FALSE(name.isEmpty()) << number;
        EXPECT_EQ(QcbsXpmResource::get_xpm(name).toImage(), QcbsXpmResource::get_xpm(number).toImage())
            << number;
    }
    EXPECT_EQ(QcbsXpmResource::name(QcbsXpmResource::Warning), "warning");
    EXPECT_EQ(QcbsXpmResource::name(QcbsXpmResource::Copy), "copy");
}

TEST(BuiltInImages, PicturesScaleToTheAskedSize) {
    const QPixmap large = QcbsXpmResource::get_xpm(QcbsXpmResource::Error, 48);
    EXPECT_EQ(large.deviceIndependentSize().toSize(), QSize(48, 48));
    EXPECT_GT(opaquePixels(large), 9 * 40);
    EXPECT_TRUE(QcbsXpmResource::get_xpm(QcbsXpmResource::Error, 0).isNull());
    EXPECT_TRUE(QcbsXpmResource::get_xpm(QcbsXpmResource::Error, -16).isNull());
}

TEST(BuiltInImages, UnknownImagesAreNullNotACrash) {
    for (int number : {-1, 0, 2, 13, 53, 999}) {
        EXPECT_TRUE(QcbsXpmResource::get_xpm(number).isNull()) << number;
        EXPECT_TRUE(QcbsXpmResource::name(number).isEmpty()) << number;
    }
    EXPECT_TRUE(QcbsXpmResource::get_xpm(QString("no such picture")).isNull());
    EXPECT_TRUE(QcbsXpmResource::get_xpm(QString()).isNull());
}

}  // namespace
