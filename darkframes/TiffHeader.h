// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <optional>

class QIODevice;

/// What a TIFF file says about its first image. The toolkit reads the pixels; it does not say
/// whether they are signed, whether there are further images, or that a camera's raw file is one.
struct TiffHeader
{
    qint64 width = 0;
    qint64 height = 0;
    quint32 bitsPerSample = 1;
    quint32 samplesPerPixel = 1;
    quint32 photometric = 0;  ///< 0 white is zero, 1 black is zero, 2 RGB, 3 palette
    quint32 compression = 1;  ///< 1 is none
    quint32 sampleFormat = 1; ///< 1 unsigned, 2 signed, 3 floating point
    int images = 1;           ///< that are not a smaller version of another; counted up to 64
    bool isDng = false;
    bool cameraRaw = false; ///< a DNG file, or a mosaic of colours
    bool complete = true;   ///< all that belongs to the first image lies in the file
    quint64 dataBytes = 0;  ///< of its strips or tiles together

    /// @param file open, sequential reading is not enough. @return nothing for what is no TIFF
    /// file, or one whose first directory does not lie in it.
    static std::optional<TiffHeader> read(QIODevice& file);
};
