// SPDX-License-Identifier: MIT
#include "simulator/SensorTiming.h"

#include <algorithm>
#include <cmath>

SensorTiming::SensorTiming(const CameraDescription& description)
    : m_pixelClockMin(description.pixelClockMin)
    , m_pixelClockMax(description.pixelClockMax)
    , m_pixelClockDefault(description.pixelClockDefault)
    , m_pixelsPerLine(description.width + description.lineBlanking)
    , m_leastFrameLines(description.height + description.frameBlanking)
    , m_mostFrameLines(m_leastFrameLines * description.slowestFrame)
    , m_defaultExposureMsec(description.exposureMsec)
    , m_pixelClock(description.pixelClockDefault)
{
    setFrameRate(description.frameRate);
    setExposure(description.exposureMsec);
}

double SensorTiming::lineTime() const
{
    return m_pixelsPerLine / (m_pixelClock * 1e6);
}

double SensorTiming::linesOf(double seconds, double least, double most) const
{
    return std::clamp(std::round(seconds / lineTime()), least, most);
}

bool SensorTiming::setPixelClock(int megahertz)
{
    if (megahertz < m_pixelClockMin || megahertz > m_pixelClockMax) {
        return false;
    }
    const double frameSeconds = frameTime();
    const double exposureMsec = exposure();
    m_pixelClock = megahertz;
    m_frameLines = linesOf(frameSeconds, m_leastFrameLines, m_mostFrameLines);
    setExposure(exposureMsec);
    return true;
}

double SensorTiming::frameTime() const
{
    return m_frameLines * lineTime();
}

SensorTiming::Range SensorTiming::frameTimeRange() const
{
    return {m_leastFrameLines * lineTime(), m_mostFrameLines * lineTime(), lineTime()};
}

void SensorTiming::setFrameRate(double framesPerSecond)
{
    const double exposureMsec = exposure();
    m_frameLines = linesOf(1.0 / framesPerSecond, m_leastFrameLines, m_mostFrameLines);
    setExposure(exposureMsec);
}

double SensorTiming::exposure() const
{
    return m_exposureLines * lineTime() * 1000.0;
}

double SensorTiming::defaultExposure() const
{
    return linesOf(m_defaultExposureMsec / 1000.0, 1.0, m_frameLines - 1.0) * lineTime() * 1000.0;
}

SensorTiming::Range SensorTiming::exposureRange() const
{
    const double lineMsec = lineTime() * 1000.0;
    return {lineMsec, (m_frameLines - 1.0) * lineMsec, lineMsec};
}

void SensorTiming::setExposure(double milliseconds)
{
    m_exposureLines = linesOf(milliseconds / 1000.0, 1.0, m_frameLines - 1.0);
}
