// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

/// The pixels of a sensor that are judged together: every step-th one from (x, y) on, in both
/// directions.
struct SensorPlane
{
    QString name; ///< "all", the colour ("R", "Gr", "Gb", "B"), or the place ("x0y1")
    std::uint32_t x = 0;
    std::uint32_t y = 0;
    std::uint32_t step = 1;

    /// The name for people, who read "all" in their language.
    [[nodiscard]] QString title() const;
    /// How many columns of a sensor of this width lie in the plane; 0 when the plane begins beyond
    /// it.
    [[nodiscard]] std::uint32_t columns(std::uint32_t width) const;
    /// How many rows of a sensor of this height lie in the plane.
    [[nodiscard]] std::uint32_t rows(std::uint32_t height) const;
};

/// The colour filters on a sensor's pixels: none, or a pattern of 2 × 2 pixels that repeats.
class Mosaic
{
public:
    /// No filters.
    static Mosaic mono();
    /// A pattern of 2 × 2 pixels of which nobody says which colours it has.
    static Mosaic bayer();
    /// @param colours four letters, those of the pixels (0, 0), (1, 0), (0, 1) and (1, 1).
    /// @return nothing unless each letter is one of "RGBCMYE".
    static std::optional<Mosaic> fromColours(const QString& colours);

    [[nodiscard]] bool isBayer() const { return m_bayer; }
    /// The four letters; empty when they are not known or there are none.
    [[nodiscard]] const QString& colours() const { return m_colours; }
    /// How far two neighbours of the same colour lie apart in a row or a column: 1 or 2.
    [[nodiscard]] std::uint32_t step() const { return m_bayer ? 2 : 1; }

    /// The whole sensor as one plane.
    static SensorPlane wholeSensor();
    /// The planes that a search goes through, each with a mean of its own: the whole sensor, or
    /// those of (x, y) = (0, 0), (0, 1), (1, 0) and (1, 1), in this order.
    [[nodiscard]] std::vector<SensorPlane> planes() const;
    /// The index in planes() of the plane in which a pixel lies.
    [[nodiscard]] std::size_t planeOf(std::uint32_t x, std::uint32_t y) const
    {
        return m_bayer ? 2 * (x % 2) + y % 2 : 0;
    }

    bool operator==(const Mosaic&) const = default;

private:
    Mosaic(bool bayer, QString colours);

    bool m_bayer;
    QString m_colours;
};
