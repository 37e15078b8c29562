// SPDX-License-Identifier: MIT
#include "pixellists/PixelListFormat.h"

#include <QFileInfo>

#include <algorithm>

// The formats, in the order of the help: pixellists::formats::NAME() of each is in a source of its
// own.
#define VORN_PIXEL_LIST_FORMATS(FORMAT)                                                            \
    FORMAT(editor)                                                                                 \
    FORMAT(csv)                                                                                    \
    FORMAT(dcraw)                                                                                  \
    FORMAT(rawtherapee)                                                                            \
    FORMAT(siril)                                                                                  \
    FORMAT(phd2)                                                                                   \
    FORMAT(kstars)                                                                                 \
    FORMAT(mlvapp)                                                                                 \
    FORMAT(imperx)                                                                                 \
    FORMAT(fixpix)                                                                                 \
    FORMAT(mask)

namespace pixellists {
namespace formats {

#define VORN_DECLARE(name) PixelListFormat name();
VORN_PIXEL_LIST_FORMATS(VORN_DECLARE)
#undef VORN_DECLARE

} // namespace formats

const std::vector<PixelListFormat>& allFormats()
{
#define VORN_CALL(name) formats::name(),
    static const std::vector<PixelListFormat> All{VORN_PIXEL_LIST_FORMATS(VORN_CALL)};
#undef VORN_CALL
    return All;
}

const PixelListFormat* formatNamed(const QString& name)
{
    const auto found = std::ranges::find(allFormats(), name, &PixelListFormat::name);
    return found != allFormats().end() ? &*found : nullptr;
}

std::vector<const PixelListFormat*> formatsOfFile(const QString& fileName)
{
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    std::vector<const PixelListFormat*> formats;
    for (const PixelListFormat& format : allFormats()) {
        if (format.suffixes.contains(suffix)) {
            formats.push_back(&format);
        }
    }
    return formats;
}

QString formatNames()
{
    QStringList names;
    for (const PixelListFormat& format : allFormats()) {
        names.append(format.name);
    }
    return names.join(QStringLiteral(", "));
}

} // namespace pixellists
