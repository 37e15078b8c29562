// SPDX-License-Identifier: MIT
#include "camera/ImageSequence.h"

#include <stdexcept>
#include <utility>

ImageSequence::ImageSequence(CameraSdk& sdk)
    : m_sdk(sdk)
{}

ImageSequence::~ImageSequence()
{
    clear();
}

void ImageSequence::setUp(CameraSdk::Handle handle, std::size_t count, const ImageInfo& info)
{
    clear();
    m_handle = handle;
    m_info = info;
    m_buffers.reserve(count);
    while (m_buffers.size() < count) {
        auto buffer = std::make_unique<ImageMemory>(m_sdk, m_handle, m_info);
        if (m_sdk.addToSequence(m_handle, buffer->pointer(), buffer->id()) != 0) {
            throw std::runtime_error(tr("Can't add buffer to sequence.").toStdString());
        }
        m_buffers.push_back(std::move(buffer));
    }
}

void ImageSequence::clear()
{
    if (m_buffers.empty()) {
        return;
    }
    m_buffers.clear();
    m_sdk.clearSequence(m_handle);
}
