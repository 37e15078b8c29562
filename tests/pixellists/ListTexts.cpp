// SPDX-License-Identifier: MIT
#include "tests/pixellists/ListTexts.h"

#include "pixellists/PixelListError.h"

#include <QBuffer>
#include <gtest/gtest.h>

#include <ostream>
#include <random>

namespace {

const PixelListFormat& formatCalled(const char* name)
{
    const PixelListFormat* format = pixellists::formatNamed(QLatin1String(name));
    EXPECT_NE(format, nullptr) << name;
    return *format;
}

} // namespace

PixelListReading readText(const char* format, const QByteArray& text,
                          const PixelListReadOptions& options)
{
    QByteArray content = text;
    QBuffer device(&content);
    device.open(QIODevice::ReadOnly);
    return pixellists::readPixelList(device, QStringLiteral("LIST"), formatCalled(format), options);
}

QString refusal(const char* format, const QByteArray& text, const PixelListReadOptions& options)
{
    try {
        readText(format, text, options);
    } catch (const PixelListError& error) {
        return QString::fromUtf8(error.what());
    }
    return {};
}

PixelListContent contentOf(const char* format, const PixelList& pixels,
                           const PixelListWriteOptions& options)
{
    return pixellists::pixelListContent(pixels, formatCalled(format), options);
}

PixelList pixelsAt(std::initializer_list<std::pair<int, int>> places)
{
    PixelList pixels;
    for (const auto& [x, y] : places) {
        pixels.push_back({.x = static_cast<std::uint16_t>(x), .y = static_cast<std::uint16_t>(y)});
    }
    return pixels;
}

PixelList randomPixels(std::uint32_t seed, std::size_t count, const QSize& size,
                       const PixelListFormat& format)
{
    std::mt19937 random(seed);
    const auto below = [&random](int end) {
        return static_cast<int>(random() % static_cast<unsigned>(end));
    };
    PixelList pixels;
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0 && below(50) == 0) {
            pixels.push_back(pixels[random() % i]);
            continue;
        }
        ListedPixel pixel{.x = static_cast<std::uint16_t>(below(size.width())),
                          .y = static_cast<std::uint16_t>(below(size.height()))};
        if (format.keepsDefects) {
            pixel.defect = below(2) == 0 ? PixelDefect::Cold : PixelDefect::Hot;
        }
        if (format.keepsClasses) {
            pixel.listClass = PixelListClass::User;
        }
        if (format.keepsValues) {
            pixel.value = static_cast<float>(below(655350)) / 10;
        }
        pixels.push_back(pixel);
    }
    return pixels;
}

void PrintTo(const ListedPixel& pixel, std::ostream* stream)
{
    *stream << '(' << pixel.x << ", " << pixel.y << ", defect " << static_cast<int>(pixel.defect)
            << ", class " << static_cast<int>(pixel.listClass);
    if (pixel.value) {
        *stream << ", value " << *pixel.value;
    }
    *stream << ')';
}
