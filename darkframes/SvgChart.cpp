// SPDX-License-Identifier: MIT
#include "darkframes/SvgChart.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

using darkframes::svgNumber;

// What the axes and their numbers take of the viewport.
constexpr double LeftMargin = 44;
constexpr double RightMargin = 12;
constexpr double TopMargin = 24;
constexpr double BottomMargin = 40;
constexpr double Bottom = SvgChart::Height - BottomMargin;

/// The bottom line lies below a count of 1, so that single pixels are seen.
constexpr double BelowOne = 0.25;

QString countName(int decade)
{
    static const std::array Names{QStringLiteral("1"),    QStringLiteral("10"),
                                  QStringLiteral("100"),  QStringLiteral("1k"),
                                  QStringLiteral("10k"),  QStringLiteral("100k"),
                                  QStringLiteral("1M"),   QStringLiteral("10M"),
                                  QStringLiteral("100M"), QStringLiteral("1G")};
    return Names[static_cast<std::size_t>(std::clamp(decade, 0, 9))];
}

QString line(double x1, double y1, double x2, double y2, const char* style)
{
    return QStringLiteral("<line class=\"%1\" x1=\"%2\" y1=\"%3\" x2=\"%4\" y2=\"%5\"/>")
        .arg(QLatin1String(style), svgNumber(x1), svgNumber(y1), svgNumber(x2), svgNumber(y2));
}

QString text(double x, double y, const char* anchor, const QString& content)
{
    return QStringLiteral("<text x=\"%1\" y=\"%2\" text-anchor=\"%3\">")
               .arg(svgNumber(x), svgNumber(y), QLatin1String(anchor)) +
           content.toHtmlEscaped() + QStringLiteral("</text>");
}

} // namespace

QString darkframes::svgNumber(double value)
{
    QString number = QString::number(value, 'f', 1);
    if (number.endsWith(QLatin1String(".0"))) {
        number.chop(2);
    }
    return number == QLatin1String("-0") ? QStringLiteral("0") : number;
}

double darkframes::niceStep(double range, int most)
{
    const double least = range / most;
    const double power = std::pow(10, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= least) {
            return factor * power;
        }
    }
    return 10 * power;
}

SvgChart::SvgChart(double left, double right, double greatestCount, QString xTitle, QString what)
    : m_left(left)
    , m_right(std::max(right, left + 1))
    , m_decades(std::max(1.0, std::log10(std::max(1.0, greatestCount)) + 0.1))
    , m_xTitle(std::move(xTitle))
    , m_what(std::move(what))
{}

double SvgChart::xOf(double x) const
{
    const double share = std::clamp((x - m_left) / (m_right - m_left), 0.0, 1.0);
    return LeftMargin + share * (Width - LeftMargin - RightMargin);
}

double SvgChart::yOf(double count) const
{
    const double decade = count > 0 ? std::log10(count) : -BelowOne;
    const double share = std::clamp((decade + BelowOne) / (m_decades + BelowOne), 0.0, 1.0);
    return Bottom - share * (Bottom - TopMargin);
}

void SvgChart::addBars(double left, double step, std::span<const double> counts)
{
    QString path;
    bool isUp = false;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const double x = xOf(left + static_cast<double>(i) * step);
        if (counts[i] > 0) {
            if (!isUp) {
                path += u'M' + svgNumber(x) + u' ' + svgNumber(Bottom);
            }
            path += u'V' + svgNumber(yOf(counts[i])) + u'H' +
                    svgNumber(xOf(left + static_cast<double>(i + 1) * step));
        } else if (isUp) {
            path += u'V' + svgNumber(Bottom) + u'z';
        }
        isUp = counts[i] > 0;
    }
    if (isUp) {
        path += u'V' + svgNumber(Bottom) + u'z';
    }
    m_content += QStringLiteral("<path class=\"bars\" d=\"%1\"/>").arg(path);
}

void SvgChart::addLine(std::span<const std::pair<double, double>> points, const QString& style,
                       const QString& name)
{
    QString path;
    bool isDrawn = false;
    for (const auto& [x, count] : points) {
        const bool isVisible = count >= 0.5 && x >= m_left && x <= m_right;
        if (isVisible) {
            path += QChar(isDrawn ? u'L' : u'M') + svgNumber(xOf(x)) + u' ' + svgNumber(yOf(count));
        }
        isDrawn = isVisible;
    }
    m_content += QStringLiteral("<path class=\"line %1\" d=\"%2\"/>").arg(style, path);
    if (!name.isEmpty()) {
        m_legend.emplace_back(style, name);
    }
}

void SvgChart::addLimit(double x, const QString& name)
{
    const double at = xOf(x);
    m_content += line(at, TopMargin - 4, at, Bottom, "limit");
    const bool isRight = at > Width * 0.7;
    m_content += text(at, TopMargin - 8, isRight ? "end" : "middle", name);
}

void SvgChart::addLevel(double count, const QString& name)
{
    const double at = yOf(count);
    m_content += line(LeftMargin, at, Width - RightMargin, at, "limit");
    m_legend.emplace_back(QStringLiteral("limit"), name);
}

QString SvgChart::axes() const
{
    QString axes;
    for (int decade = 0; decade <= static_cast<int>(m_decades); ++decade) {
        const double y = yOf(std::pow(10, decade));
        axes += line(LeftMargin, y, Width - RightMargin, y, "grid");
        axes += text(LeftMargin - 5, y + 4, "end", countName(decade));
    }
    constexpr int MostTicks = 6;
    const double step = darkframes::niceStep(m_right - m_left, MostTicks);
    const auto firstTick = static_cast<int>(std::ceil(m_left / step));
    const auto lastTick = static_cast<int>(std::floor(m_right / step));
    for (int tick = firstTick; tick <= lastTick; ++tick) {
        const double x = tick * step;
        axes += line(xOf(x), Bottom, xOf(x), Bottom + 4, "axis");
        axes += text(xOf(x), Bottom + 16, "middle", QString::number(x, 'g', 6));
    }
    axes += line(LeftMargin, Bottom, Width - RightMargin, Bottom, "axis");
    axes += text((LeftMargin + Width - RightMargin) / 2, Height - 8, "middle", m_xTitle);
    return axes;
}

QString SvgChart::legend() const
{
    if (m_legend.empty()) {
        return {};
    }
    constexpr double SampleLength = 26;
    constexpr double RowHeight = 15;
    constexpr double LetterWidth = 6.5; // at most, in the font of the page
    constexpr double Right = Width - RightMargin - 4;
    qsizetype letters = 0;
    for (const auto& [style, name] : m_legend) {
        letters = std::max(letters, name.size());
    }
    const double width = SampleLength + 16 + static_cast<double>(letters) * LetterWidth;
    const double height = static_cast<double>(m_legend.size()) * RowHeight + 6;
    QString legend = QStringLiteral("<rect class=\"paper\" x=\"%1\" y=\"%2\" width=\"%3\" "
                                    "height=\"%4\"/>")
                         .arg(svgNumber(Right + 4 - width), svgNumber(TopMargin), svgNumber(width),
                              svgNumber(height));
    double y = TopMargin + RowHeight;
    for (const auto& [style, name] : m_legend) {
        legend += QStringLiteral("<path class=\"line %1\" d=\"M%2 %3h%4\"/>")
                      .arg(style, svgNumber(Right - SampleLength), svgNumber(y - 4),
                           svgNumber(SampleLength));
        legend += text(Right - SampleLength - 6, y, "end", name);
        y += RowHeight;
    }
    return legend;
}

QString SvgChart::svg() const
{
    const QString what = m_what.toHtmlEscaped();
    return QStringLiteral("<svg class=\"chart\" viewBox=\"0 0 %1 %2\" role=\"img\" aria-label=\"")
               .arg(svgNumber(Width), svgNumber(Height)) +
           what + QStringLiteral("\">") + axes() + m_content + legend() +
           QStringLiteral("</svg>\n");
}
