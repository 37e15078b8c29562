// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/SensorFrameSource.h"
#include "simulator/TestScene.h"

#include <array>
#include <memory>
#include <vector>

/// The frames of a SensorModel: the scene's light and the dark current with their noise, the hot
/// pixels on top. The same frame number under the same settings gives the same frame.
///
/// No deviate is drawn while a frame is made. Each row reads the noise field from a place that
/// frame and row number scramble; for a covered sensor, whose ordinary pixels are all alike, the
/// field is turned into grey values once and rows are copied from it. One thread at a time.
class ModelledFrames final : public SensorFrameSource
{
public:
    /// @p model must outlive this object.
    explicit ModelledFrames(const SensorModel& model);

    void render(std::uint64_t frame, const SensorSettings& settings, std::uint8_t* pixels,
                std::size_t pitch) override;

private:
    struct Response
    {
        std::int16_t mean;      ///< in 1/64 DN
        std::int16_t deviation; ///< in 1/64 DN
    };
    using ResponseTable = std::array<Response, 256>; ///< by reflectance

    void prepare(const SensorSettings& settings);
    void renderDark(std::uint64_t frame, std::uint8_t* pixels, std::size_t pitch) const;
    void renderLit(std::uint64_t frame, std::uint8_t* pixels, std::size_t pitch) const;
    void renderHotPixels(std::uint64_t frame, const SensorSettings& settings, std::uint8_t* pixels,
                         std::size_t pitch) const;
    [[nodiscard]] Response responseOf(double electrons, double systemGain) const;
    [[nodiscard]] static std::uint8_t greyValue(Response response, int noise);

    const SensorModel& m_model;
    SensorSettings m_prepared;
    bool m_isPrepared = false;
    std::array<ResponseTable, 4> m_tables{}; ///< by (y & 1) * 2 + (x & 1)
    bool m_uniform = false;                  ///< dark, and all sites respond alike
    std::vector<std::uint8_t> m_darkField;   ///< grey values of the noise field
    std::unique_ptr<TestScene> m_scene;
};
