// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelListModel.h"

#include <QDebug>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QPixmap>
#include <QScrollArea>
#include <QStringList>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <ostream>

/// What the view's tests share: pictures, lists and what can be asked of them.
namespace viewtest {

/// A list with the entries of `lines`, each "x y class".
inline void fillList(BadpixelListModel& model, const QByteArray& lines)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("list.txt")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(lines);
    file.close();
    model.loadFromFile(file.fileName());
}

/// One grey level everywhere.
inline QImage plainImage(int width, int height, int level)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(qRgb(level, level, level));
    return image;
}

/// A colour of its own for each pixel, as long as the sides are at most 256.
inline QRgb patternAt(int x, int y)
{
    return qRgb(x, y, (x * 7 + y * 13) % 256);
}

inline QImage patternImage(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            image.setPixel(x, y, patternAt(x, y));
        }
    }
    return image;
}

/// The smallest rectangle around the pixels in which two pictures of one size differ.
inline QRect difference(const QImage& one, const QImage& other)
{
    QRect changed;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            if (one.pixel(x, y) != other.pixel(x, y)) {
                changed |= QRect(x, y, 1, 1);
            }
        }
    }
    return changed;
}

inline QLabel* labelOf(const QScrollArea& display)
{
    return qobject_cast<QLabel*>(display.widget());
}

/// The picture that a label shows.
inline QImage pictureOf(const QLabel& label)
{
    return label.pixmap().toImage();
}

inline QImage pictureOf(const QScrollArea& display)
{
    return pictureOf(*labelOf(display));
}

/// Names a case of a table in the test's output, value by value.
template <typename... Values>
void print(std::ostream* out, const Values&... values)
{
    QStringList words;
    (words.append(QDebug::toString(values)), ...);
    *out << words.join(QLatin1Char(' ')).toStdString();
}

} // namespace viewtest
