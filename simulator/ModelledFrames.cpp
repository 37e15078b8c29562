// SPDX-License-Identifier: MIT
#include "simulator/ModelledFrames.h"

#include "simulator/NoiseField.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr int FractionBits = 6; // means and deviations are counted in 1/64 DN

std::size_t placeOf(std::uint64_t seed, std::uint64_t frame, std::uint64_t row)
{
    return simulator::scramble(seed + simulator::scramble(frame + 1) + row * 0x9e3779b97f4a7c15U) %
           NoiseField::Size;
}

} // namespace

ModelledFrames::ModelledFrames(const SensorModel& model)
    : m_model(model)
{}

void ModelledFrames::render(std::uint64_t frame, const SensorSettings& settings,
                            std::uint8_t* pixels, std::size_t pitch)
{
    if (!m_isPrepared || m_prepared != settings) {
        prepare(settings);
        m_prepared = settings;
        m_isPrepared = true;
    }
    if (m_uniform) {
        renderDark(frame, pixels, pitch);
    } else {
        renderLit(frame, pixels, pitch);
    }
    renderHotPixels(frame, settings, pixels, pitch);
}

ModelledFrames::Response ModelledFrames::responseOf(double electrons, double systemGain) const
{
    // Far beyond saturation the noise cannot bring a pixel back, so the mean need not go on.
    constexpr double HighestDn = 400.0;
    const double unit = 1 << FractionBits;
    const double mean = std::min(m_model.meanDn(electrons, systemGain), HighestDn);
    const double deviation = std::min(m_model.deviationDn(electrons, systemGain), HighestDn / 8);
    return {static_cast<std::int16_t>(std::lround(mean * unit)),
            static_cast<std::int16_t>(std::lround(deviation * unit))};
}

std::uint8_t ModelledFrames::greyValue(Response response, int noise)
{
    const int scatter = (response.deviation * noise) >> NoiseField::UnitBits;
    const int rounded = (response.mean + scatter + (1 << (FractionBits - 1))) >> FractionBits;
    return static_cast<std::uint8_t>(std::clamp(rounded, 0, 255));
}

void ModelledFrames::prepare(const SensorSettings& settings)
{
    const double dark = m_model.darkElectrons(settings);
    const double white = m_model.whiteElectrons(settings);
    for (std::size_t site = 0; site < m_tables.size(); ++site) {
        const double gain =
            m_model.systemGain(static_cast<int>(site % 2), static_cast<int>(site / 2), settings);
        for (std::size_t reflectance = 0; reflectance < 256; ++reflectance) {
            m_tables[site][reflectance] =
                responseOf(dark + white * static_cast<double>(reflectance) / 255.0, gain);
        }
    }

    const bool alike =
        settings.redGain == settings.greenGain && settings.greenGain == settings.blueGain;
    m_uniform = settings.covered && (alike || !m_model.description().bayer);
    if (m_uniform) {
        const NoiseField& field = NoiseField::instance();
        m_darkField.resize(NoiseField::Size + NoiseField::LongestRow);
        std::transform(
            field.values(), field.values() + m_darkField.size(), m_darkField.begin(),
            [response = m_tables[0][0]](int noise) { return greyValue(response, noise); });
    } else if (!m_scene) {
        const CameraDescription& camera = m_model.description();
        m_scene = std::make_unique<TestScene>(camera.width, camera.height, camera.bayer,
                                              camera.model + ' ' + camera.serial);
    }
}

void ModelledFrames::renderDark(std::uint64_t frame, std::uint8_t* pixels, std::size_t pitch) const
{
    const auto width = static_cast<std::size_t>(m_model.description().width);
    const auto height = static_cast<std::size_t>(m_model.description().height);
    for (std::size_t y = 0; y < height; ++y) {
        std::memcpy(pixels + y * pitch, m_darkField.data() + placeOf(m_model.seed(), frame, y),
                    width);
    }
}

void ModelledFrames::renderLit(std::uint64_t frame, std::uint8_t* pixels, std::size_t pitch) const
{
    const auto width = static_cast<std::size_t>(m_model.description().width);
    const auto height = static_cast<std::size_t>(m_model.description().height);
    std::vector<std::uint8_t> reflectances(width);
    for (std::size_t y = 0; y < height; ++y) {
        m_scene->copyRow(static_cast<int>(y), frame, reflectances.data());
        const ResponseTable& even = m_tables[(y % 2) * 2];
        const ResponseTable& odd = m_tables[(y % 2) * 2 + 1];
        const std::int16_t* noise =
            NoiseField::instance().values() + placeOf(m_model.seed(), frame, y);
        std::uint8_t* line = pixels + y * pitch;
        std::size_t x = 0;
        for (; x + 1 < width; x += 2) {
            line[x] = greyValue(even[reflectances[x]], noise[x]);
            line[x + 1] = greyValue(odd[reflectances[x + 1]], noise[x + 1]);
        }
        if (x < width) {
            line[x] = greyValue(even[reflectances[x]], noise[x]);
        }
    }
}

void ModelledFrames::renderHotPixels(std::uint64_t frame, const SensorSettings& settings,
                                     std::uint8_t* pixels, std::size_t pitch) const
{
    const double white = m_model.whiteElectrons(settings);
    const auto rows = static_cast<std::uint64_t>(m_model.description().height);
    std::uint64_t index = 0;
    for (const SimulatedHotPixel& pixel : m_model.hotPixels()) {
        double electrons = m_model.darkElectrons(pixel, settings);
        if (white > 0) {
            electrons += white * m_scene->reflectance(pixel.x, pixel.y, frame) / 255.0;
        }
        const double gain = m_model.systemGain(pixel.x, pixel.y, settings);
        // Numbers behind those of the rows, so that no hot pixel shares its noise with a row.
        const std::size_t place = placeOf(m_model.seed(), frame, rows + index++);
        pixels[pixel.y * pitch + pixel.x] =
            greyValue(responseOf(electrons, gain), NoiseField::instance().values()[place]);
    }
}
