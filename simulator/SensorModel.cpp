// SPDX-License-Identifier: MIT
#include "simulator/SensorModel.h"

#include "simulator/NoiseField.h"

#include <QByteArray>

#include <array>
#include <cmath>
#include <cstdlib>

namespace {

constexpr double ReferenceTemperature = 25.0;
constexpr double WhiteDn = 184.0; // above the pedestal, at the exposure below and gain 0
constexpr double WhiteExposureSeconds = 0.04;

// How far hot pixels stand above the ordinary ones in an exposure of one second at master gain 50
// and 25 °C. Nothing lies near the usual threshold of 40, so that each pixel is clearly a hit or
// clearly none.
struct Brightness
{
    double least;
    double most;
};
constexpr std::array<Brightness, 8> BrightnessClasses{{
    {60, 110},  // clear
    {110, 200}, // bright
    {8, 26},    // too faint to be reported
    {60, 110},
    {400, 1200}, // saturated
    {110, 200},
    {8, 26},
    {60, 110},
}};
constexpr double FaintestReportedDn = 50.0;

std::uint64_t seedOf(const CameraDescription& description)
{
    if (description.seed != 0) {
        return simulator::scramble(description.seed);
    }
    std::uint64_t seed = 0;
    for (const char letter : description.serial.toLatin1()) {
        seed = simulator::scramble(seed + static_cast<unsigned char>(letter) + 1);
    }
    return seed;
}

double gainFactor(int gain)
{
    return 1.0 + 0.03 * gain;
}

/// The distance that a new hot pixel keeps from the others, so that each has ordinary neighbours.
bool isApart(const std::vector<SimulatedHotPixel>& others, int x, int y)
{
    constexpr int Apart = 4;
    for (const SimulatedHotPixel& other : others) {
        if (std::abs(other.x - x) <= Apart && std::abs(other.y - y) <= Apart) {
            return false;
        }
    }
    return true;
}

} // namespace

SensorModel::SensorModel(const CameraDescription& description)
    : m_description(description)
    , m_seed(seedOf(description))
{
    placeHotPixels();
    fillNewLists();
}

double SensorModel::systemGain(int x, int y, const SensorSettings& settings) const
{
    const double gain = m_description.dnPerElectron * gainFactor(settings.masterGain);
    if (!m_description.bayer) {
        return gain;
    }
    const bool oddColumn = x % 2 != 0;
    const bool oddRow = y % 2 != 0;
    if (oddColumn != oddRow) {
        return gain * gainFactor(settings.greenGain);
    }
    return gain * gainFactor(oddRow ? settings.blueGain : settings.redGain);
}

double SensorModel::temperatureFactor(double temperature) const
{
    return std::exp2((temperature - ReferenceTemperature) / m_description.doublingKelvin);
}

double SensorModel::darkElectrons(const SensorSettings& settings) const
{
    return m_description.darkElectronsPerSecond * temperatureFactor(settings.temperature) *
           settings.exposureSeconds;
}

double SensorModel::darkElectrons(const SimulatedHotPixel& pixel,
                                  const SensorSettings& settings) const
{
    return (m_description.darkElectronsPerSecond + pixel.electronsPerSecond) *
           temperatureFactor(settings.temperature) * settings.exposureSeconds;
}

double SensorModel::whiteElectrons(const SensorSettings& settings) const
{
    if (settings.covered) {
        return 0;
    }
    return WhiteDn / m_description.dnPerElectron * settings.exposureSeconds / WhiteExposureSeconds;
}

double SensorModel::meanDn(double electrons, double systemGain) const
{
    return m_description.pedestalDn + systemGain * electrons;
}

double SensorModel::deviationDn(double electrons, double systemGain) const
{
    const double readNoise = m_description.readNoiseElectrons;
    constexpr double QuantisationVariance = 1.0 / 12.0;
    return std::sqrt(systemGain * systemGain * (readNoise * readNoise + electrons) +
                     QuantisationVariance);
}

void SensorModel::placeHotPixels()
{
    simulator::RandomSequence random(m_seed);
    const int width = m_description.width;
    const int height = m_description.height;
    const double dnPerElectron = m_description.dnPerElectron * gainFactor(50);

    // The places where an off-by-one shows come first, the rest is strewn.
    const std::array<std::array<int, 2>, 12> edges{{
        {0, 0},
        {width - 1, 0},
        {0, height - 1},
        {width - 1, height - 1},
        {0, height / 3},
        {0, height / 2 + 1},
        {width - 1, height / 3 + 1},
        {width - 1, height / 2},
        {width / 3, 0},
        {width / 2 + 1, 1},
        {width / 3 + 1, height - 1},
        {width / 2, height - 2},
    }};
    const auto count = static_cast<std::size_t>(m_description.hotPixels);
    std::size_t fruitless = 0;
    for (std::size_t tried = 0; m_hotPixels.size() < count && fruitless < 1000; ++tried) {
        const bool atEdge = tried < edges.size();
        const int x = atEdge ? edges[tried][0] : random.below(width);
        const int y = atEdge ? edges[tried][1] : random.below(height);
        if (!isApart(m_hotPixels, x, y)) {
            ++fruitless;
            continue;
        }
        fruitless = 0;
        const Brightness& brightness =
            BrightnessClasses[m_hotPixels.size() % BrightnessClasses.size()];
        const double dn =
            brightness.least + (brightness.most - brightness.least) * random.uniform();
        m_hotPixels.push_back(
            {static_cast<std::uint16_t>(x), static_cast<std::uint16_t>(y), dn / dnPerElectron});
    }
}

void SensorModel::fillNewLists()
{
    const double dnPerElectron = m_description.dnPerElectron * gainFactor(50);
    const auto factoryEntries = static_cast<std::size_t>(m_description.factoryEntries);
    const auto userEntries = static_cast<std::size_t>(m_description.userEntries);
    // From the end, so that the ones at the edges stay to be found.
    for (auto pixel = m_hotPixels.rbegin(); pixel != m_hotPixels.rend(); ++pixel) {
        if (pixel->electronsPerSecond * dnPerElectron < FaintestReportedDn) {
            continue;
        }
        if (m_factory.size() < factoryEntries) {
            m_factory.push_back(*pixel);
        } else if (m_user.size() < userEntries) {
            m_user.push_back(*pixel);
        }
    }
}
