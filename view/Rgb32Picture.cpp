// SPDX-License-Identifier: MIT
#include "view/Rgb32Picture.h"

#include <QList>
#include <QRgb>

#include <algorithm>
#include <array>
#include <utility>

bool view::isReusable(const QImage& image, const QSize& size)
{
    return image.size() == size && image.format() == QImage::Format_RGB32 && image.isDetached();
}

QImage view::toRgb32(const QImage& image, QImage& memory)
{
    QImage result = std::exchange(memory, QImage());
    if (!isReusable(result, image.size())) {
        result = QImage();
        result = QImage(image.size(), QImage::Format_RGB32);
    }
    if (result.isNull()) {
        return result;
    }
    switch (image.format()) {
    case QImage::Format_Indexed8: {
        const QList<QRgb> colors = image.colorTable();
        // Without a table indexes are greys; those beyond a table are black.
        std::array<QRgb, 256> table = {};
        for (int i = 0; i < 256; ++i) {
            const QRgb black = qRgb(0, 0, 0);
            table[static_cast<std::size_t>(i)] =
                colors.isEmpty() ? qRgb(i, i, i) : black | (i < colors.size() ? colors[i] : 0U);
        }
        for (int y = 0; y < image.height(); ++y) {
            const uchar* const from = image.constScanLine(y);
            std::transform(from, from + image.width(), reinterpret_cast<QRgb*>(result.scanLine(y)),
                           [&table](uchar index) { return table[index]; });
        }
        break;
    }
    case QImage::Format_RGB32:
        for (int y = 0; y < image.height(); ++y) {
            std::copy_n(reinterpret_cast<const QRgb*>(image.constScanLine(y)), image.width(),
                        reinterpret_cast<QRgb*>(result.scanLine(y)));
        }
        break;
    default:
        result = image.convertToFormat(QImage::Format_RGB32);
        break;
    }
    return result;
}
