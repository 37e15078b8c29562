// SPDX-License-Identifier: MIT
// The reader of one format of lists, VORN_FORMAT: fuzz/CMakeLists.txt makes a program of each.

#include "fuzz/FuzzedFile.h"
#include "pixellists/PixelListError.h"
#include "pixellists/PixelListReading.h"
#include "pixellists/PixelListWriting.h"

#include <QBuffer>

#include <algorithm>
#include <tuple>

namespace {

constexpr QSize Size(48, 32);

PixelListReading readBytes(QByteArray content, const PixelListFormat& format, bool lenient)
{
    QBuffer device(&content);
    device.open(QIODevice::ReadOnly);
    return pixellists::readPixelList(device, QStringLiteral("LIST"), format,
                                     {.size = Size, .lenient = lenient});
}

std::vector<std::tuple<int, int, PixelDefect>> placesOf(const PixelList& pixels,
                                                        const PixelListFormat& format)
{
    std::vector<std::tuple<int, int, PixelDefect>> places;
    for (const ListedPixel& pixel : pixels) {
        const bool cold = format.keepsDefects && pixel.defect == PixelDefect::Cold;
        places.emplace_back(pixel.y, pixel.x, cold ? PixelDefect::Cold : PixelDefect::Hot);
    }
    std::ranges::sort(places);
    return places;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const PixelListFormat& format = *pixellists::formatNamed(QStringLiteral(VORN_FORMAT));
    const QByteArray content = fuzz::bytes(data, size);
    const auto lenient = readBytes(content, format, true);
    fuzz::expect(lenient.firstBadLines.size() ==
                     std::min<qsizetype>(static_cast<qsizetype>(lenient.badLines),
                                         pixellists::MostBadLinesTold),
                 "the first bad lines are told");
    PixelList pixels;
    try {
        pixels = readBytes(content, format, false).pixels;
        fuzz::expect(lenient.badLines == 0 && lenient.pixels == pixels,
                     "without bad lines both ways read the same");
    } catch (const PixelListError& error) {
        const QString text = QString::fromUtf8(error.what());
        fuzz::expect(text.startsWith(QStringLiteral("LIST, line ")) && !text.contains(u'\n'),
                     "a mistake is one line with the file's name and the line");
        fuzz::expect(lenient.badLines > 0 && text == lenient.firstBadLines.first(),
                     "it is the first that the lenient way tells of");
        pixels = lenient.pixels;
    }
    try {
        const PixelListContent written = pixellists::pixelListContent(
            pixels, format, {.size = {65536, 65536}, .suffix = {}, .camera = {}});
        const PixelListReading again = readBytes(written.bytes, format, false);
        fuzz::expect(again.pixels.size() == written.written, "what is written can be read");
        if (written.written == pixels.size()) {
            fuzz::expect(placesOf(again.pixels, format) == placesOf(pixels, format),
                         "it is read as it was");
        }
    } catch (const PixelListError& error) {
        fuzz::expect(QByteArray(error.what()).contains("at most"),
                     "only too many can't be written");
    }
    return 0;
}
