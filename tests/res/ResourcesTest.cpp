// SPDX-License-Identifier: MIT
#include "res/Resources.h"

#include <QDir>
#include <QImage>
#include <QImageReader>
#include <QPixmap>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <string>

namespace {

/// Every picture that an action or a dock of the window names.
constexpr const char* Icons[] = {"addBadpixel",    "badpixelCorrection", "badpixelList",
                                 "camclose",       "cameraList",         "cameraproperties",
                                 "deleteBadpixel", "detectBadpixel",     "exit",
                                 "help",           "highlight",          "information",
                                 "openList",       "openplay",           "window_view",
                                 "writeBadpixel",  "writeList",          "zoom"};

class Icon : public testing::TestWithParam<const char*>
{
protected:
    Icon() { res::load(); }

    [[nodiscard]] static QString path(const char* suffix = ".png")
    {
        return QStringLiteral(":/res/") + GetParam() + suffix;
    }
};

/// How far a colour lies from a background: the ratio of their luminances.
double contrast(const QColor& colour, const QColor& background)
{
    const auto luminance = [](const QColor& c) {
        return 0.2126 * std::pow(c.redF(), 2.2) + 0.7152 * std::pow(c.greenF(), 2.2) +
               0.0722 * std::pow(c.blueF(), 2.2) + 0.05;
    };
    const double ratio = luminance(colour) / luminance(background);
    return std::max(ratio, 1 / ratio);
}

} // namespace

TEST_P(Icon, HasItsTwoDensities)
{
    const QImage single(path());
    EXPECT_EQ(single.size(), QSize(32, 32));
    EXPECT_TRUE(single.hasAlphaChannel());
    const QImage twice(path("@2x.png"));
    EXPECT_EQ(twice.size(), QSize(64, 64));
    EXPECT_EQ(twice.devicePixelRatio(), 2.0);
}

TEST_P(Icon, KeepsAFreeEdgeAndFillsItsSquare)
{
    const QImage image = QImage(path()).convertToFormat(QImage::Format_ARGB32);
    QRect covered;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) > 127) {
                covered |= QRect(x, y, 1, 1);
            }
        }
    }
    EXPECT_TRUE(QRect(1, 1, 30, 30).contains(covered)) << "clipped";
    EXPECT_GE(std::max(covered.width(), covered.height()), 26) << "too small";
}

TEST_P(Icon, StandsOutFromLightAndDarkBackgrounds)
{
    const QImage image = QImage(path()).convertToFormat(QImage::Format_ARGB32);
    for (const QColor background : {QColor(255, 255, 255), QColor(35, 35, 35)}) {
        int visible = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor colour = image.pixelColor(x, y);
                visible += colour.alpha() > 200 && contrast(colour, background) >= 2 ? 1 : 0;
            }
        }
        EXPECT_GE(visible, 150) << background.name().toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(, Icon, testing::ValuesIn(Icons),
                         [](const auto& icon) { return std::string(icon.param); });

TEST(Resources, HoldNothingButThePicturesInUse)
{
    res::load();
    std::set<QString> expected = {"Vorn.ico", "QEM_LOGO_GREY_93_40.bmp"};
    for (const char* icon : Icons) {
        expected.insert(icon + QStringLiteral(".png"));
        expected.insert(icon + QStringLiteral("@2x.png"));
    }
    const QStringList files = QDir(":/res").entryList();
    EXPECT_EQ(std::set<QString>(files.begin(), files.end()), expected);
}

TEST(Resources, HaveAWindowIconOfManySizes)
{
    res::load();
    QImageReader reader(":/res/Vorn.ico");
    std::set<int> sizes;
    for (int image = 0; image < reader.imageCount(); ++image) {
        ASSERT_TRUE(reader.jumpToImage(image));
        const QImage picture = reader.read();
        EXPECT_EQ(picture.width(), picture.height());
        sizes.insert(picture.width());
    }
    EXPECT_EQ(sizes, (std::set<int>{16, 24, 32, 48, 64, 128, 256}));
}

TEST(Resources, HaveALogoInGreys)
{
    res::load();
    const QImage logo(":/res/QEM_LOGO_GREY_93_40.bmp");
    EXPECT_EQ(logo.size(), QSize(93, 40));
    EXPECT_TRUE(logo.allGray());
    std::set<QRgb> greys;
    for (int y = 0; y < logo.height(); ++y) {
        for (int x = 0; x < logo.width(); ++x) {
            greys.insert(logo.pixel(x, y));
        }
    }
    EXPECT_GT(greys.size(), 2U) << "more than black and white";
}

TEST(Resources, MayBeLoadedTwice)
{
    res::load();
    res::load();
    EXPECT_FALSE(QPixmap(":/res/zoom.png").isNull());
}
