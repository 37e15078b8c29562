// SPDX-License-Identifier: MIT
#include "darkframes/FrameStacker.h"

#include "darkframes/FrameError.h"

#include <QCoreApplication>

#include <new>
#include <utility>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(FrameStacker)
};

using darkframes::refuse;

/// A stack of 8 bits leaves room for eight frames under its limit, one of 16 bits for two.
std::size_t mostPending(const ImageInfo& info)
{
    return info.bitsPerPixel == 16 ? 2 : 8;
}

QString sizeText(const ImageInfo& info)
{
    return Text::tr("%1 × %2 pixels of %3 bits")
        .arg(info.width)
        .arg(info.height)
        .arg(info.bitsPerPixel);
}

QString mosaicText(const Mosaic& mosaic)
{
    return mosaic.isBayer() ? Text::tr("Bayer, %1").arg(mosaic.colours()) : Text::tr("monochrome");
}

} // namespace

FrameStacker::FrameStacker(std::optional<Mosaic> told)
    : m_mosaic(std::move(told))
    , m_toldMono(m_mosaic && !m_mosaic->isBayer())
{}

std::uint32_t FrameStacker::frameCount() const
{
    return (m_stack ? m_stack->frameCount() : 0) + static_cast<std::uint32_t>(m_pending.size());
}

void FrameStacker::checkSize(const QString& name, const ImageInfo& info) const
{
    const ImageInfo& first = m_stack->info();
    if (info.width != first.width || info.height != first.height ||
        info.bitsPerPixel != first.bitsPerPixel) {
        refuse(name,
               Text::tr("%1, and not %2 as %3").arg(sizeText(info), sizeText(first), m_firstName));
    }
}

void FrameStacker::takeMosaic(const QString& name, const std::optional<Mosaic>& said)
{
    if (!said || m_toldMono || said == m_mosaic) {
        return;
    }
    const bool bayerIsKnown = m_mosaic && m_mosaic->isBayer();
    if (bayerIsKnown && m_mosaicName.isEmpty()) {
        // Told to be a pattern: a file may say of which colours, and can't say otherwise.
        if (said->isBayer()) {
            m_mosaic = said;
            m_mosaicName = name;
        }
        return;
    }
    if (m_mosaic) {
        if (bayerIsKnown && said->isBayer() && said->colours().isEmpty()) {
            return;
        }
        refuse(name, Text::tr("%1, and not %2 as %3")
                         .arg(mosaicText(*said), mosaicText(*m_mosaic), m_mosaicName));
    }
    m_mosaic = said;
    m_mosaicName = name;
}

void FrameStacker::add(const QString& name, Frame frame)
{
    if (frameCount() >= DarkStack::MostFrames) {
        refuse(name, Text::tr("more than %1 frames can't be added up").arg(DarkStack::MostFrames));
    }
    const ImageInfo info = darkframes::imageInfo(frame.image);
    try {
        if (!m_stack) {
            m_stack = std::make_unique<DarkStack>(info);
            m_firstName = name;
        }
        checkSize(name, info);
        takeMosaic(name, frame.mosaic);
        m_pending.push_back(std::move(frame.image));
    } catch (const std::bad_alloc&) {
        refuse(name, Text::tr("not enough memory"));
    }
    if (m_pending.size() == mostPending(info)) {
        flush();
    }
}

void FrameStacker::flush()
{
    m_stack->add(m_pending);
    m_pending.clear();
}

DarkStack FrameStacker::finish(std::uint32_t least)
{
    if (frameCount() < least || !m_stack) {
        if (!m_stack) {
            throw FrameError(Text::tr("there are no frames"));
        }
        refuse(m_firstName, Text::tr("one frame only; at least %1 are necessary").arg(least));
    }
    if (!m_pending.empty()) {
        flush();
    }
    const auto stack = std::exchange(m_stack, nullptr);
    return std::move(*stack);
}
