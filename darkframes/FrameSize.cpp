// SPDX-License-Identifier: MIT
#include "darkframes/FrameSize.h"

#include "darkframes/FrameError.h"

#include <QCoreApplication>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(FrameSize)
};

} // namespace

namespace darkframes {

void checkClaimedSize(const QString& fileName, std::int64_t width, std::int64_t height,
                      std::uint64_t bytesPerPixel, std::uint64_t fileBytes, std::uint64_t ratio)
{
    if (width < 1 || height < 1) {
        refuse(fileName, Text::tr("an image without pixels"));
    }
    const auto columns = static_cast<std::uint64_t>(width);
    const auto rows = static_cast<std::uint64_t>(height);
    if (columns > MostColumns || rows > MostColumns || columns * rows > MostPixels) {
        refuse(fileName, Text::tr("says that it has %1 × %2 pixels, which is more than a list of "
                                  "hotpixels can be made for")
                             .arg(width)
                             .arg(height));
    }
    // A small file may be all header; the few bytes that this allows too much do no harm.
    constexpr std::uint64_t Slack = 4096;
    if (columns * rows * bytesPerPixel > fileBytes * ratio + (ratio > 1 ? Slack : 0)) {
        refuse(fileName,
               Text::tr("truncated: it says that it has %1 × %2 pixels, which do not fit into its "
                        "%3 bytes")
                   .arg(width)
                   .arg(height)
                   .arg(fileBytes));
    }
}

} // namespace darkframes
