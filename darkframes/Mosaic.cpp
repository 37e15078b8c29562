// SPDX-License-Identifier: MIT
#include "darkframes/Mosaic.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <utility>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(Mosaic)
};

constexpr qsizetype ColourCount = 4;

/// The name of the colour in column @p x and row @p y of the pattern. A colour that occurs twice is
/// told apart by its neighbour in the row: "Gr" is the green beside red.
QString colourName(const QString& colours, qsizetype x, qsizetype y)
{
    const QChar colour = colours[2 * y + x];
    if (colours.count(colour) == 1) {
        return colour;
    }
    return QString(colour) + colours[2 * y + 1 - x].toLower();
}

std::uint32_t countOf(std::uint32_t size, std::uint32_t start, std::uint32_t step)
{
    return start < size ? (size - start + step - 1) / step : 0;
}

} // namespace

QString SensorPlane::title() const
{
    return step == 1 ? Text::tr("all") : name;
}

std::uint32_t SensorPlane::columns(std::uint32_t width) const
{
    return countOf(width, x, step);
}

std::uint32_t SensorPlane::rows(std::uint32_t height) const
{
    return countOf(height, y, step);
}

Mosaic::Mosaic(bool bayer, QString colours)
    : m_bayer(bayer)
    , m_colours(std::move(colours))
{}

Mosaic Mosaic::mono()
{
    return {false, QString()};
}

Mosaic Mosaic::bayer()
{
    return {true, QString()};
}

std::optional<Mosaic> Mosaic::fromColours(const QString& colours)
{
    static const QString Known = QStringLiteral("RGBCMYE");
    const bool valid = colours.size() == ColourCount &&
                       std::ranges::all_of(colours, [](QChar c) { return Known.contains(c); });
    return valid ? std::optional(Mosaic(true, colours)) : std::nullopt;
}

SensorPlane Mosaic::wholeSensor()
{
    return {QStringLiteral("all"), 0, 0, 1};
}

std::vector<SensorPlane> Mosaic::planes() const
{
    if (!m_bayer) {
        return {wholeSensor()};
    }
    std::vector<SensorPlane> planes;
    for (const std::uint32_t x : {0U, 1U}) {
        for (const std::uint32_t y : {0U, 1U}) {
            planes.push_back({m_colours.isEmpty() ? QStringLiteral("x%1y%2").arg(x).arg(y)
                                                  : colourName(m_colours, x, y),
                              x, y, 2});
        }
    }
    return planes;
}
