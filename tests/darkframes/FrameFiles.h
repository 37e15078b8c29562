// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/Frame.h"
#include "darkframes/FrameError.h"

#include <QByteArray>
#include <QImage>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

/// Files of frames as other programs write them, in a folder of the test's own.
class FrameFiles : public testing::Test
{
protected:
    [[nodiscard]] QString path(const QString& name) const { return m_folder.filePath(name); }
    QString write(const QString& name, const QByteArray& content) const;
    QString save(const QString& name, const QImage& image) const;
    /// A copy without the last bytes.
    QString truncate(const QString& fileName, qint64 bytes) const;
    [[nodiscard]] static QByteArray contentOf(const QString& fileName);

    /// A PGM file of bytes. @param greatest the greatest value that its header names
    static QByteArray pgm(const QImage& image, int greatest);

    /// A FITS file of one image.
    /// @param bitpix 8, 16, 32, 64, -32 or -64
    /// @param values as they are stored, row 0 first
    /// @param cards further ones, like "BZERO   =                32768"
    static QByteArray fits(int width, int height, int bitpix, const std::vector<double>& values,
                           const QStringList& cards = {});
    /// The header of an image without its data.
    static QByteArray fitsHeader(qint64 width, qint64 height, int bitpix,
                                 const QStringList& cards = {});
    /// The way in which 16-bit cameras store their values.
    static QByteArray fits16(const QImage& image, const QStringList& cards = {});

    /// What a reader says about a file; "FILE" in place of its path.
    template <typename Read>
    std::string errorOf(Read read, const QString& fileName) const
    {
        try {
            read(fileName);
        } catch (const FrameError& error) {
            return QString::fromUtf8(error.what()).replace(fileName, "FILE").toStdString();
        }
        return "no error";
    }

private:
    QTemporaryDir m_folder;
};

/// The values of a frame, row by row.
std::vector<std::uint16_t> valuesOf(const QImage& image);

/// A frame of 16 bits whose values are all different up to 65536 pixels.
QImage wideFrame(int width, int height);
/// A frame of 8 bits.
QImage narrowFrame(int width, int height);
