// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/BusDescription.h"

/// The clock of one sensor: pixel clock, frame time and exposure, each of which bounds the next.
///
/// A line takes width + blanking pixel clocks, and everything else is a whole number of lines: the
/// frame at least the sensor's lines + blanking, the exposure at most one line less than the frame.
/// So a slower clock makes frames longer, and a faster frame rate shortens the longest exposure.
/// A value type without locking.
class SensorTiming
{
public:
    struct Range
    {
        double minimum;
        double maximum;
        double step;
    };

    /// The timing of a camera as it is after opening: the description's default values.
    explicit SensorTiming(const CameraDescription& description);

    [[nodiscard]] int pixelClock() const { return m_pixelClock; }               ///< MHz
    [[nodiscard]] int pixelClockMin() const { return m_pixelClockMin; }         ///< MHz
    [[nodiscard]] int pixelClockMax() const { return m_pixelClockMax; }         ///< MHz
    [[nodiscard]] int pixelClockDefault() const { return m_pixelClockDefault; } ///< MHz

    /// Sets the pixel clock and keeps frame time and exposure as near as their new ranges allow.
    /// @return false, and nothing changed, for a clock outside the range
    bool setPixelClock(int megahertz);

    [[nodiscard]] double frameTime() const;     ///< seconds
    [[nodiscard]] Range frameTimeRange() const; ///< seconds

    /// Takes the frame rate nearest to @p framesPerSecond that the clock allows, and shortens the
    /// exposure when it no longer fits.
    void setFrameRate(double framesPerSecond);

    [[nodiscard]] double exposure() const;        ///< milliseconds
    [[nodiscard]] double defaultExposure() const; ///< milliseconds, as the current ranges allow
    [[nodiscard]] Range exposureRange() const;    ///< milliseconds

    /// Takes the exposure nearest to @p milliseconds that the frame time allows.
    void setExposure(double milliseconds);

private:
    [[nodiscard]] double lineTime() const;
    [[nodiscard]] double linesOf(double seconds, double least, double most) const;

    int m_pixelClockMin;
    int m_pixelClockMax;
    int m_pixelClockDefault;
    double m_pixelsPerLine;
    double m_leastFrameLines;
    double m_mostFrameLines;
    double m_defaultExposureMsec;

    int m_pixelClock;
    double m_frameLines = 0;
    double m_exposureLines = 1;
};
