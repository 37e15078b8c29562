// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraSdk.h"
#include "camera/ImageInfo.h"

#include <QCoreApplication>

/// One image buffer of the SDK, for as long as the object lives. GUI thread.
class ImageMemory final
{
    Q_DECLARE_TR_FUNCTIONS(ImageMemory)

public:
    /// @param sdk must outlive the buffer.
    /// @throws std::runtime_error "Can't allocate image memory."
    ImageMemory(CameraSdk& sdk, CameraSdk::Handle handle, const ImageInfo& info);
    ~ImageMemory();

    ImageMemory(const ImageMemory&) = delete;
    ImageMemory& operator=(const ImageMemory&) = delete;

    [[nodiscard]] char* pointer() const { return m_pointer; }
    [[nodiscard]] std::int32_t id() const { return m_id; }

private:
    CameraSdk& m_sdk;
    CameraSdk::Handle m_handle;
    std::int32_t m_id = 0;
    char* m_pointer = nullptr;
};
