// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <cstddef>
#include <vector>

/// The truncated means of the bytes of several frames, a run of bytes at a time, of which each
/// frame is read once. Sums of a block of bytes stay in registers over all frames; the two colour
/// sites of a mosaic's line are the even and the odd bytes of the same loads.
class FrameMeans
{
public:
    /// What a run of means holds.
    struct Run
    {
        quint32 evenSum = 0; ///< of the means at even places of the run, from 0
        quint32 oddSum = 0;
        quint8 greatest = 0;
    };

    /// @param frames where the bytes of each frame begin, at least one; borrowed
    explicit FrameMeans(std::vector<const quint8*> frames);

    /// Writes the means of the bytes @p first … @p first + @p count − 1 of all frames to @p means.
    Run run(std::size_t first, std::size_t count, quint8* means) const;

private:
    void runEnd(std::size_t first, std::size_t begin, std::size_t end, quint8* means,
                Run& run) const;

    std::vector<const quint8*> m_frames;
    unsigned int m_count;
    // A sum s of n bytes, n at most MaxFramesInVectors, divided by n is (s * m_factor >> 16) >>
    // m_shift.
    quint16 m_factor = 0;
    int m_shift = 0;
};
