// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/Frame.h"
#include "darkframes/FrameError.h"
#include "darkframes/FrameSize.h"
#include "fuzz/FuzzedFile.h"

#include <QString>

namespace fuzz {

/// Has @p read read a file with these bytes. It may refuse them with one line; what it takes has to
/// be a frame that the bytes can hold.
template <typename Read>
int readFrame(Read read, const std::uint8_t* data, std::size_t size)
{
    const FuzzedFile file(bytes(data, size));
    try {
        const Frame frame = read(file.name());
        expect(!frame.image.isNull(), "a frame has pixels");
        expect(frame.image.format() == QImage::Format_Grayscale8 ||
                   frame.image.format() == QImage::Format_Grayscale16,
               "a frame is grey");
        const auto pixels = static_cast<std::uint64_t>(frame.image.width()) *
                            static_cast<std::uint64_t>(frame.image.height());
        expect(pixels <= (size + 4096) * darkframes::CompressionRatio,
               "a frame is no larger than its file allows");
        // Reads all of it, which the sanitizers watch.
        std::uint64_t sum = 0;
        for (int y = 0; y < frame.image.height(); ++y) {
            sum += frame.image.constScanLine(y)[frame.image.width() - 1];
        }
        expect(sum <= pixels * 255, "pixels can be read");
    } catch (const FrameError& error) {
        const QString text = QString::fromUtf8(error.what());
        expect(text.startsWith(file.name() + QStringLiteral(": ")) && !text.contains(u'\n'),
               "a mistake is one line with the file's name");
    }
    return 0;
}

} // namespace fuzz
