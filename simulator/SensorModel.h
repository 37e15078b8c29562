// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/BusDescription.h"

#include <cstdint>
#include <vector>

/// A pixel whose dark current stands out.
struct SimulatedHotPixel
{
    std::uint16_t x;
    std::uint16_t y;
    double electronsPerSecond; ///< beyond the ordinary dark current, at 25 °C
};

/// What a frame depends on besides the sensor.
struct SensorSettings
{
    double exposureSeconds = 0;
    int masterGain = 0; ///< 0 to 100
    int redGain = 0;    ///< 0 to 100, as the other two; without effect on a mono sensor
    int greenGain = 0;
    int blueGain = 0;
    double temperature = 25.0; ///< °C
    bool covered = false;      ///< no light reaches the sensor

    friend bool operator==(const SensorSettings&, const SensorSettings&) = default;
};

/// The linear camera model of EMVA standard 1288 for one sensor: how many grey values (DN) a pixel
/// shows in the mean, and how far it scatters.
///
///     electrons = (dark + hot) · 2^((T - 25 °C) / doubling) · t + photoelectrons · t
///     mean      = pedestal + K · electrons
///     variance  = K² · (readNoise² + electrons) + 1/12
///
/// with the system gain K in DN per electron, the exposure time t and the temperature T. The README
/// names the source of each term. Positions and rates of the hot pixels follow from the seed alone.
/// Immutable; any thread.
class SensorModel
{
public:
    explicit SensorModel(const CameraDescription& description);

    [[nodiscard]] const std::vector<SimulatedHotPixel>& hotPixels() const { return m_hotPixels; }

    /// The positions that a new camera has in its factory and in its user list.
    [[nodiscard]] const std::vector<SimulatedHotPixel>& factoryPixels() const { return m_factory; }
    [[nodiscard]] const std::vector<SimulatedHotPixel>& userPixels() const { return m_user; }

    /// The system gain at the site (@p x, @p y), DN per electron.
    [[nodiscard]] double systemGain(int x, int y, const SensorSettings& settings) const;

    /// Dark electrons of an ordinary pixel in one exposure.
    [[nodiscard]] double darkElectrons(const SensorSettings& settings) const;

    /// Dark electrons of @p pixel in one exposure, the ordinary ones included.
    [[nodiscard]] double darkElectrons(const SimulatedHotPixel& pixel,
                                       const SensorSettings& settings) const;

    /// Photoelectrons of a white surface in one exposure; 0 under the cover.
    [[nodiscard]] double whiteElectrons(const SensorSettings& settings) const;

    /// The mean that @p electrons show, in DN, not clipped.
    [[nodiscard]] double meanDn(double electrons, double systemGain) const;

    /// The standard deviation of that, in DN.
    [[nodiscard]] double deviationDn(double electrons, double systemGain) const;

    [[nodiscard]] const CameraDescription& description() const { return m_description; }
    [[nodiscard]] std::uint64_t seed() const { return m_seed; }

private:
    void placeHotPixels();
    void fillNewLists();
    [[nodiscard]] double temperatureFactor(double temperature) const;

    CameraDescription m_description;
    std::uint64_t m_seed;
    std::vector<SimulatedHotPixel> m_hotPixels;
    std::vector<SimulatedHotPixel> m_factory;
    std::vector<SimulatedHotPixel> m_user;
};
