// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraSdk.h"
#include "camera/ImageInfo.h"
#include "camera/ImageMemory.h"

#include <QCoreApplication>

#include <memory>
#include <vector>

/// The capture ring: the image buffers that live capture fills in turn. GUI thread.
class ImageSequence final
{
    Q_DECLARE_TR_FUNCTIONS(ImageSequence)

public:
    /// @param sdk must outlive the ring.
    explicit ImageSequence(CameraSdk& sdk);

    /// Empties the ring.
    ~ImageSequence();

    ImageSequence(const ImageSequence&) = delete;
    ImageSequence& operator=(const ImageSequence&) = delete;

    /// Empties the ring and fills it with @p count new buffers of the camera @p handle. After an
    /// exception the buffers that were added before are still in the ring.
    /// @throws std::runtime_error "Can't allocate image memory."
    /// @throws std::runtime_error "Can't add buffer to sequence."
    void setUp(CameraSdk::Handle handle, std::size_t count, const ImageInfo& info);

    /// Gives all buffers back to the SDK and clears the SDK's sequence; an empty ring is left alone
    /// without a call. Images over the buffers must not be read any more.
    void clear();

private:
    CameraSdk& m_sdk;
    CameraSdk::Handle m_handle = 0;
    ImageInfo m_info;
    std::vector<std::unique_ptr<ImageMemory>> m_buffers;
};
