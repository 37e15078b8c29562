// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <span>
#include <utility>
#include <vector>

/// A diagram with a linear axis to the right and a logarithmic one of counts upwards, as an SVG
/// element whose colours come from the classes of the page that it stands in.
class SvgChart
{
public:
    static constexpr double Width = 420; ///< of the viewport, in which a letter is 12 high
    static constexpr double Height = 250;

    /// @param left, right the ends of the axis
    /// @param greatestCount where the axis of counts ends
    /// @param what for those who do not see it
    SvgChart(double left, double right, double greatestCount, QString xTitle, QString what);

    /// A filled stair: counts[i] from left + i × step to left + (i + 1) × step.
    void addBars(double left, double step, std::span<const double> counts);
    /// A line through points (x, count); it is interrupted where the count is below 1.
    /// @param style class of the line; it gets an entry in the legend unless @p name is empty
    void addLine(std::span<const std::pair<double, double>> points, const QString& style,
                 const QString& name);
    /// A line from the bottom to the top, named at its top.
    void addLimit(double x, const QString& name);
    /// A line from the left to the right, named in the legend.
    void addLevel(double count, const QString& name);

    [[nodiscard]] QString svg() const;

private:
    [[nodiscard]] double xOf(double x) const;
    [[nodiscard]] double yOf(double count) const;
    [[nodiscard]] QString axes() const;
    [[nodiscard]] QString legend() const;

    double m_left;
    double m_right;
    double m_decades;
    QString m_xTitle;
    QString m_what;
    QString m_content;
    std::vector<std::pair<QString, QString>> m_legend; ///< style and name
};

namespace darkframes {

/// @p value with one digit behind the point, and none where it is 0.
QString svgNumber(double value);

/// A step of 1, 2 or 5 times a power of ten that makes at most @p most steps of @p range.
double niceStep(double range, int most);

} // namespace darkframes
