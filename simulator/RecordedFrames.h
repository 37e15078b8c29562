// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/SensorFrameSource.h"

#include <QByteArray>
#include <QString>

#include <vector>

/// Recorded frames of a real sensor, played in the order of their file names, around and around,
/// each with exactly its grey values. One thread at a time.
class RecordedFrames final : public SensorFrameSource
{
public:
    /// Reads every PNG and TIFF file in @p folder.
    /// @throws std::runtime_error "There are no recorded frames in %1.", or "%1: %2" with the file
    /// and what is wrong with it: unreadable, not 8-bit grey, not @p width × @p height pixels; or
    /// "The recorded frames in %1 take more than %2 MB."
    RecordedFrames(const QString& folder, int width, int height);

    void render(std::uint64_t frame, const SensorSettings& settings, std::uint8_t* pixels,
                std::size_t pitch) override;

private:
    std::size_t m_width;
    std::size_t m_height;
    std::vector<QByteArray> m_frames; ///< width × height bytes each
};
