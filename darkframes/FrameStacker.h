// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/DarkStack.h"
#include "darkframes/Frame.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

/// Makes a stack of frames that come one after the other, and sees to it that they belong together.
/// It keeps a few frames back to add them at once: with the stack they never take more than 16
/// bytes a pixel and two frames of 16 bits.
class FrameStacker
{
public:
    /// @param told which colour filters there are; outweighs what the frames say, but for the
    /// colours of a pattern that was only told to be one
    explicit FrameStacker(std::optional<Mosaic> told = std::nullopt);

    /// @param name for messages
    /// @throws FrameError "NAME: " when it does not belong to those before: another size, depth or
    /// pattern; when there are more than DarkStack::MostFrames; when there is not enough memory.
    void add(const QString& name, Frame frame);

    /// How many were added.
    [[nodiscard]] std::uint32_t frameCount() const;
    /// The colour filters; nothing as long as nobody said.
    [[nodiscard]] const std::optional<Mosaic>& mosaic() const { return m_mosaic; }

    /// The stack of all frames that were added; there are none here any more then.
    /// @throws FrameError when there are fewer than @p least: "NAME: one frame only, ..." or "there
    /// are no frames".
    DarkStack finish(std::uint32_t least);

private:
    void checkSize(const QString& name, const ImageInfo& info) const;
    void takeMosaic(const QString& name, const std::optional<Mosaic>& said);
    void flush();

    std::optional<Mosaic> m_mosaic;
    bool m_toldMono;
    QString m_firstName;
    QString m_mosaicName; ///< of the frame that said which colours there are
    std::unique_ptr<DarkStack> m_stack;
    std::vector<QImage> m_pending;
};
