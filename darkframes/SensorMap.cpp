// SPDX-License-Identifier: MIT
#include "darkframes/SensorMap.h"

#include "darkframes/FrameError.h"
#include "darkframes/SvgChart.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(SensorMap)
};

constexpr double Width = 420; ///< of the viewport

/// More of a kind can't be told apart any more, and make a page that browsers are slow with.
constexpr std::size_t MostMarks = 10'000;

/// A kind of marks. The first that fits to a pixel is its.
struct Kind
{
    const char* style;
    const char* title;
    bool (*fits)(const FoundPixel& pixel);
    /// The outline of a mark of radius 1 around the point where the pen is, as steps.
    const char* outline;
};

bool isKnown(const FoundPixel& pixel)
{
    return pixel.foundClass == FoundClass::Factory || pixel.foundClass == FoundClass::User;
}

constexpr std::array Kinds{
    Kind{"clustered", QT_TRANSLATE_NOOP("SensorMap", "in a cluster"),
         [](const FoundPixel& pixel) { return pixel.isClustered; },
         "m 0 -1.8 l 1.6 2.9 l -3.2 0 z"},
    Kind{"known", QT_TRANSLATE_NOOP("SensorMap", "known"), &isKnown,
         "m -0.9 -0.9 l 1.8 0 l 0 1.8 l -1.8 0 z"},
    Kind{"nothot", QT_TRANSLATE_NOOP("SensorMap", "in a list, but not hot"),
         [](const FoundPixel& pixel) { return pixel.foundClass == FoundClass::NotHot; },
         "m -1.2 0 l 2.4 0"},
    Kind{"flickering", QT_TRANSLATE_NOOP("SensorMap", "flickering"),
         [](const FoundPixel& pixel) { return pixel.foundClass == FoundClass::Flickering; },
         "m -1 -1 l 2 2 m 0 -2 l -2 2"},
    Kind{"new", QT_TRANSLATE_NOOP("SensorMap", "new"), [](const FoundPixel&) { return true; },
         "m -0.9 0 a 0.9 0.9 0 1 0 1.8 0 a 0.9 0.9 0 1 0 -1.8 0"},
};

constexpr std::size_t NotHot = 2; ///< among the kinds

std::size_t kindOf(const FoundPixel& pixel)
{
    return static_cast<std::size_t>(
        std::ranges::find_if(Kinds, [&pixel](const Kind& kind) { return kind.fits(pixel); }) -
        Kinds.begin());
}

/// The outline in the map's size.
QString scaled(const char* outline, double radius)
{
    QString path;
    bool isFlag = false;
    int number = 0;
    for (const QString& word : QString::fromLatin1(outline).split(u' ')) {
        bool isNumber = false;
        const double value = word.toDouble(&isNumber);
        if (!isNumber) {
            number = 0;
            isFlag = word == QLatin1String("a");
            path += word;
            continue;
        }
        // The third to fifth number of an arc are an angle and two flags.
        const bool asItIs = isFlag && number >= 2 && number <= 4;
        if (number > 0) {
            path += u' ';
        }
        path += asItIs ? word : QString::number(value * radius, 'f', 2);
        ++number;
    }
    return path;
}

std::array<std::size_t, Kinds.size()> counts(std::span<const FoundPixel> pixels)
{
    std::array<std::size_t, Kinds.size()> counts{};
    for (const FoundPixel& pixel : pixels) {
        ++counts[kindOf(pixel)];
    }
    return counts;
}

/// Few marks are large; many get smaller, so that they leave something to see between them.
double radiusFor(std::size_t marks)
{
    if (marks > 2000) {
        return 1.4;
    }
    return marks > 200 ? 2.2 : 3.2;
}

} // namespace

QString darkframes::sensorMap(const ImageInfo& info, std::span<const FoundPixel> pixels)
{
    const double scale = Width / std::max({info.width, info.height, 1U});
    const double width = info.width * scale;
    const double height = info.height * scale;
    constexpr double Margin = 16; // for the numbers

    const auto found = counts(pixels);
    const double radius = radiusFor(pixels.size());
    std::array<QString, Kinds.size()> paths;
    std::array<std::size_t, Kinds.size()> drawn{};
    for (const FoundPixel& pixel : pixels) {
        const std::size_t kind = kindOf(pixel);
        // Evenly thinned out where there are too many.
        const std::size_t every = found[kind] / MostMarks + 1;
        if (drawn[kind]++ % every == 0) {
            paths[kind] += u'M' + svgNumber((pixel.position.x + 0.5) * scale) + u' ' +
                           svgNumber((pixel.position.y + 0.5) * scale) +
                           scaled(Kinds[kind].outline, radius);
        }
    }

    QString svg =
        QStringLiteral("<svg class=\"map\" viewBox=\"-%1 -%1 %2 %3\" role=\"img\" "
                       "aria-label=\"%4\">")
            .arg(svgNumber(Margin), svgNumber(width + 2 * Margin), svgNumber(height + 2 * Margin),
                 Text::tr("Map of the sensor with the pixels that were found"));
    svg += QStringLiteral("<rect class=\"sensor\" width=\"%1\" height=\"%2\"/>")
               .arg(svgNumber(width), svgNumber(height));
    svg += QStringLiteral("<text x=\"0\" y=\"-4\">0, 0</text><text x=\"%1\" y=\"%2\" "
                          "text-anchor=\"end\">%3, %4</text>")
               .arg(svgNumber(width), svgNumber(height + 12))
               .arg(info.width - 1)
               .arg(info.height - 1);
    // New ones first, so that rarer kinds lie on top of them.
    for (std::size_t kind = Kinds.size(); kind-- > 0;) {
        svg += QStringLiteral("<path class=\"mark %1\" d=\"%2\"/>")
                   .arg(QLatin1String(Kinds[kind].style), paths[kind]);
    }
    return svg + QStringLiteral("</svg>\n");
}

QString darkframes::sensorMapLegend(std::span<const FoundPixel> pixels)
{
    const auto found = counts(pixels);
    QString legend = QStringLiteral("<ul class=\"legend\">");
    for (std::size_t kind = 0; kind < Kinds.size(); ++kind) {
        // Only who looks at lists has an eye for this kind.
        if (kind == NotHot && found[kind] == 0) {
            continue;
        }
        QString title = Text::tr("%1: %2").arg(Text::tr(Kinds[kind].title)).arg(found[kind]);
        if (found[kind] > MostMarks) {
            title += Text::tr(", of which every %1. is drawn").arg(found[kind] / MostMarks + 1);
        }
        legend += QStringLiteral("<li><svg viewBox=\"-6 -6 12 12\"><path class=\"mark %1\" "
                                 "d=\"M0 0%2\"/></svg>%3</li>")
                      .arg(QLatin1String(Kinds[kind].style), scaled(Kinds[kind].outline, 3), title);
    }
    return legend + QStringLiteral("</ul>\n");
}
