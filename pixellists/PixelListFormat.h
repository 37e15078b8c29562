// SPDX-License-Identifier: MIT
#pragma once

#include "pixellists/PixelList.h"

#include <QByteArray>
#include <QSize>
#include <QString>
#include <QStringList>

#include <span>
#include <vector>

class PixelListInput;
struct PixelListContent;

/// What is known when a list is written.
struct PixelListWriteOptions
{
    QSize size;     ///< of the sensor in pixels; empty when nobody told it
    QString suffix; ///< of the file's name, which says of some formats what it is for
    QString camera; ///< its model, for formats that name it
};

/// One format of lists. Each is a source of its own, which defines
/// `PixelListFormat pixellists::formats::NAME()`, and a line in the table of PixelListFormat.cpp.
struct PixelListFormat
{
    QString name;         ///< how it is called on a command line
    QStringList suffixes; ///< of its files, in lower case; more than one format may have the same
    QString summary;      ///< one line that says whose it is
    QString entry;        ///< what a line has to hold, behind "expected"; empty for images

    bool keepsClasses = false; ///< or says itself what becomes of them
    bool keepsDefects = false; ///< tells hot from cold
    bool keepsValues = false;
    bool needsSize = false; ///< can't be written where the sensor's size is not known

    /// Reads the lines of @p input and adds their pixels to it. Null for images: pixellists/Mask.h.
    void (*read)(PixelListInput& input) = nullptr;

    /// Appends what the file holds, and what the format does to it. All of @p pixels lie on the
    /// sensor, where its size is known.
    /// @throws PixelListError when there is no such file.
    void (*write)(std::span<const ListedPixel> pixels, const PixelListWriteOptions& options,
                  PixelListContent& content) = nullptr;

    [[nodiscard]] bool isImage() const { return read == nullptr; }
};

namespace pixellists {

/// Every format that there is.
const std::vector<PixelListFormat>& allFormats();

/// The format of this name, or null.
const PixelListFormat* formatNamed(const QString& name);

/// The formats that a file of this name may have by its suffix: one where that is clear.
std::vector<const PixelListFormat*> formatsOfFile(const QString& fileName);

/// "editor, csv, ..."
QString formatNames();

} // namespace pixellists
