// SPDX-License-Identifier: MIT
#include "camera/ImageMemory.h"

#include <stdexcept>

ImageMemory::ImageMemory(CameraSdk& sdk, CameraSdk::Handle handle, const ImageInfo& info)
    : m_sdk(sdk)
    , m_handle(handle)
{
    const std::int32_t result = m_sdk.allocImageMemory(
        m_handle, static_cast<std::int32_t>(info.width), static_cast<std::int32_t>(info.height),
        static_cast<std::int32_t>(info.bitsPerPixel), &m_pointer, &m_id);
    if (result != 0) {
        throw std::runtime_error(tr("Can't allocate image memory.").toStdString());
    }
}

ImageMemory::~ImageMemory()
{
    m_sdk.freeImageMemory(m_handle, m_pointer, m_id);
}
