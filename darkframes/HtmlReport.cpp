// SPDX-License-Identifier: MIT
#include "darkframes/HtmlReport.h"

#include "darkframes/FrameError.h"
#include "darkframes/ReportStyle.h"
#include "darkframes/SensorMap.h"
#include "darkframes/SurveyOutput.h"
#include "darkframes/SvgChart.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(HtmlReport)
};

QString element(const char* name, const QString& content)
{
    return QStringLiteral("<%1>").arg(QLatin1String(name)) + content.toHtmlEscaped() +
           QStringLiteral("</%1>").arg(QLatin1String(name));
}

QString heading(const QString& text)
{
    return element("h2", text) + u'\n';
}

QString figure(const std::optional<double>& value)
{
    return value ? QString::number(*value, 'f', 3) : QStringLiteral("–");
}

/// A table whose first column holds names, or numbers of rows.
class HtmlTable
{
public:
    explicit HtmlTable(const QStringList& titles) { addRow("th", titles); }

    void addRow(const QStringList& cells) { addRow("td", cells); }

    [[nodiscard]] QString html() const
    {
        return QStringLiteral("<div class=\"scroll\"><table>") + m_rows +
               QStringLiteral("</table></div>\n");
    }

private:
    void addRow(const char* cell, const QStringList& cells)
    {
        m_rows += QStringLiteral("<tr>");
        for (const QString& content : cells) {
            m_rows += element(cell, content);
        }
        m_rows += QStringLiteral("</tr>\n");
    }

    QString m_rows;
};

QString header(const ReportContext& context)
{
    QString html = element("h1", context.title) + QStringLiteral("\n<dl>");
    for (const auto& [name, value] : context.facts) {
        html += element("dt", name) + element("dd", value);
    }
    html += QStringLiteral("</dl>\n");
    if (!context.command.isEmpty()) {
        html +=
            QStringLiteral("<pre>") + context.command.toHtmlEscaped() + QStringLiteral("</pre>\n");
    }
    return html;
}

QString ruleText(const HotRule& rule)
{
    return rule.sigma ? Text::tr("more than %1 robust deviations above the median").arg(*rule.sigma)
                      : Text::tr("more than %1 grey levels above the mean").arg(rule.threshold);
}

QString tile(const QString& value, const QString& what)
{
    return QStringLiteral("<div>") + element("b", value) + element("span", what) +
           QStringLiteral("</div>");
}

QString summary(const Survey& survey, const Findings& findings, std::span<const FoundPixel> pixels,
                const std::optional<ListRoom>& room)
{
    const auto isNew = [](const FoundPixel& pixel) { return pixel.foundClass == FoundClass::New; };
    const std::size_t hot = findings.pixels.hot.size();
    const auto fresh = static_cast<std::size_t>(std::ranges::count_if(pixels, isNew));
    const PlaneStatistics& all = survey.planes.front();
    QString html = heading(Text::tr("What was found")) + QStringLiteral("<div class=\"tiles\">");
    html += tile(QString::number(hot), Text::tr("hot pixels, %1").arg(ruleText(findings.rule)));
    if (fresh != hot) {
        html += tile(QString::number(fresh), Text::tr("of them in no list yet"));
    }
    html += tile(QString::number(findings.clusters.clusters.size()),
                 Text::tr("clusters, of %1 hot pixels").arg(findings.clusters.pixels()));
    html += tile(QString::number(findings.pixels.flickering.size()),
                 Text::tr("flickering, hot in a frame but not in the mean"));
    html += tile(figure(all.temporalNoise), Text::tr("temporal noise, in grey levels"));
    html += tile(figure(all.dsnu), Text::tr("DSNU, in grey levels"));
    if (room && room->filling) {
        html += tile(QString::number(room->filling->threshold),
                     Text::tr("the threshold that fills the list, with %1 new pixels")
                         .arg(room->filling->found));
    }
    return html + QStringLiteral("</div>\n");
}

/// Counts of levels, put together so that there are not more bars than can be seen.
struct Bars
{
    double left = 0;
    double step = 1;
    std::vector<double> counts;
};

Bars barsOf(const PlaneStatistics& plane, double left, double right)
{
    constexpr double MostBars = 256;
    Bars bars{left, std::max(1.0, std::ceil((right - left) / MostBars)), {}};
    const auto first = static_cast<std::size_t>(left);
    const auto end = std::min(static_cast<std::size_t>(right), plane.levels.size());
    for (std::size_t level = first; level < end; level += static_cast<std::size_t>(bars.step)) {
        const auto from = plane.levels.begin() + static_cast<std::ptrdiff_t>(level);
        const auto count = std::min(static_cast<std::size_t>(bars.step), end - level);
        bars.counts.push_back(static_cast<double>(
            std::accumulate(from, from + static_cast<std::ptrdiff_t>(count), std::uint64_t{0})));
    }
    return bars;
}

/// How many pixels a normal distribution of this mean and deviation has in each bar.
std::vector<std::pair<double, double>> normalCurve(const PlaneStatistics& plane, const Bars& bars,
                                                   double left, double right)
{
    const double deviation = *plane.deviation;
    const double peak = static_cast<double>(plane.pixels) * bars.step /
                        (deviation * std::sqrt(2 * std::numbers::pi));
    // To where less than a pixel is left, and at least to the ends of the diagram.
    constexpr int Points = 240;
    std::vector<std::pair<double, double>> curve;
    for (int i = 0; i <= Points; ++i) {
        const double x = left + (right - left) * i / Points;
        const double distance = (x - *plane.mean) / deviation;
        curve.emplace_back(x, peak * std::exp(-distance * distance / 2));
    }
    return curve;
}

QString histogram(const PlaneStatistics& plane, const HotLimit& limit, std::uint32_t frames)
{
    const double hotFrom = static_cast<double>(limit.greatestColdSum + 1) / frames;
    const double left = std::floor(*plane.minimum);
    const auto highest = static_cast<double>(plane.levels.size());
    const double right = std::min(highest, std::max(std::floor(*plane.maximum) + 1, hotFrom + 1));
    const Bars bars = barsOf(plane, left, right);
    const double most = bars.counts.empty() ? 1 : *std::ranges::max_element(bars.counts);
    SvgChart chart(left, right, most, Text::tr("mean of a pixel in grey levels"),
                   Text::tr("Histogram of plane %1").arg(plane.plane.title()));
    chart.addBars(bars.left, bars.step, bars.counts);
    if (plane.deviation.value_or(0) > 0) {
        chart.addLine(normalCurve(plane, bars, left, right), QStringLiteral("curve"),
                      Text::tr("normal distribution"));
    }
    if (hotFrom <= right) {
        chart.addLimit(hotFrom, Text::tr("limit"));
    }
    const QString caption =
        Text::tr("%1: mean %2, deviation %3")
            .arg(plane.plane.title(), figure(plane.mean), figure(plane.deviation));
    return QStringLiteral("<figure>") + element("h3", caption) + chart.svg() +
           QStringLiteral("</figure>\n");
}

QString histograms(const Survey& survey, const Findings& findings)
{
    QString html = heading(Text::tr("Histograms of the mean image")) +
                   QStringLiteral("<div class=\"charts\">");
    for (const HotLimit& limit : findings.limits) {
        const auto plane =
            std::ranges::find_if(survey.searchPlanes(), [&limit](const PlaneStatistics& each) {
                return each.plane.x == limit.plane.x && each.plane.y == limit.plane.y;
            });
        html += histogram(*plane, limit, survey.frames);
    }
    return html + QStringLiteral("</div>\n");
}

QString accumulated(const Survey& survey, const Findings& findings,
                    const std::optional<ListRoom>& room)
{
    const auto levels = static_cast<std::uint32_t>(survey.planes.front().levels.size());
    const auto step = std::max(1U, levels / 256);
    std::uint32_t end = 0;
    while (end < levels && survey.countAbove(survey.planes.front(), end) > 0) {
        end += step;
    }
    SvgChart chart(0, std::max(end, step), static_cast<double>(survey.planes.front().pixels),
                   Text::tr("grey levels above the mean of the plane"),
                   Text::tr("Number of pixels above each threshold"));
    for (std::size_t i = 0; i < survey.planes.size(); ++i) {
        const PlaneStatistics& plane = survey.planes[i];
        std::vector<std::pair<double, double>> points;
        for (std::uint32_t threshold = 0; threshold <= end; threshold += step) {
            points.emplace_back(threshold,
                                static_cast<double>(survey.countAbove(plane, threshold)));
        }
        chart.addLine(points, QStringLiteral("p%1").arg(i), plane.plane.title());
    }
    if (!findings.rule.sigma) {
        chart.addLimit(findings.rule.threshold,
                       Text::tr("threshold %1").arg(findings.rule.threshold));
    }
    if (room && room->capacity > room->taken) {
        chart.addLevel(static_cast<double>(room->capacity - room->taken),
                       Text::tr("room in the list"));
    }
    return heading(Text::tr("Accumulated histogram")) + QStringLiteral("<figure>") + chart.svg() +
           element("figcaption", Text::tr("How many pixels lie above the mean of their plane by "
                                          "more than a threshold.")) +
           QStringLiteral("</figure>\n");
}

QString map(const Survey& survey, std::span<const FoundPixel> pixels)
{
    return heading(Text::tr("Map of the sensor")) + QStringLiteral("<figure class=\"wide\">") +
           darkframes::sensorMap(survey.info, pixels) + darkframes::sensorMapLegend(pixels) +
           QStringLiteral("</figure>\n");
}

/// As darkframes::className() has it for machines.
QString classText(FoundClass foundClass)
{
    switch (foundClass) {
    case FoundClass::New:
        return Text::tr("new");
    case FoundClass::Factory:
        return Text::tr("factory");
    case FoundClass::User:
        return Text::tr("user");
    case FoundClass::NotHot:
        return Text::tr("not hot");
    case FoundClass::Flickering:
        break;
    }
    return Text::tr("flickering");
}

QString hottest(std::span<const FoundPixel> pixels)
{
    constexpr std::size_t Shown = 50;
    std::vector<const FoundPixel*> sorted;
    for (const FoundPixel& pixel : pixels) {
        if (pixel.foundClass != FoundClass::NotHot) {
            sorted.push_back(&pixel);
        }
    }
    std::ranges::stable_sort(sorted, std::greater<>(),
                             [](const FoundPixel* pixel) { return pixel->mean; });
    sorted.resize(std::min(sorted.size(), Shown));
    QString html = heading(Text::tr("The hottest fifty"));
    if (sorted.empty()) {
        return html + element("p", Text::tr("None was found.")) + u'\n';
    }
    HtmlTable table({Text::tr("no."), Text::tr("x"), Text::tr("y"), Text::tr("plane"),
                     Text::tr("mean"), Text::tr("noise"), Text::tr("greatest"), Text::tr("class"),
                     Text::tr("cluster")});
    int number = 0;
    for (const FoundPixel* pixel : sorted) {
        table.addRow({QString::number(++number), QString::number(pixel->position.x),
                      QString::number(pixel->position.y), pixel->plane.title(),
                      QString::number(pixel->mean, 'f', 1),
                      QString::number(pixel->temporalNoise, 'f', 2),
                      QString::number(pixel->greatest), classText(pixel->foundClass),
                      pixel->isClustered ? Text::tr("yes") : QString()});
    }
    return html + table.html();
}

QString clusters(const PixelClusters& clusters)
{
    constexpr std::size_t Shown = 10;
    if (clusters.clusters.empty()) {
        return {};
    }
    HtmlTable table(
        {Text::tr("pixels"), Text::tr("from x"), Text::tr("y"), Text::tr("to x"), Text::tr("y")});
    for (std::size_t i = 0; i < std::min(Shown, clusters.clusters.size()); ++i) {
        const PixelCluster& cluster = clusters.clusters[i];
        table.addRow({QString::number(cluster.pixels), QString::number(cluster.left),
                      QString::number(cluster.top), QString::number(cluster.right),
                      QString::number(cluster.bottom)});
    }
    return heading(Text::tr("The largest clusters")) +
           element("p", Text::tr("Hot pixels that touch another one of the same colour: a camera "
                                 "takes a pixel's value from those neighbours.")) +
           u'\n' + table.html();
}

QString figures(const Survey& survey)
{
    HtmlTable image({Text::tr("plane"), Text::tr("pixels"), Text::tr("mean"), Text::tr("median"),
                     Text::tr("deviation"), Text::tr("robust"), Text::tr("least"),
                     Text::tr("greatest")});
    HtmlTable emva({Text::tr("plane"), Text::tr("temporal noise"), Text::tr("DSNU"),
                    Text::tr("of rows"), Text::tr("of columns"), Text::tr("of pixels")});
    for (const PlaneStatistics& plane : survey.planes) {
        image.addRow({plane.plane.title(), QString::number(plane.pixels), figure(plane.mean),
                      figure(plane.median), figure(plane.deviation), figure(plane.robustDeviation),
                      figure(plane.minimum), figure(plane.maximum)});
        emva.addRow({plane.plane.title(), figure(plane.temporalNoise), figure(plane.dsnu),
                     figure(plane.dsnuRow), figure(plane.dsnuColumn), figure(plane.dsnuPixel)});
    }
    return QStringLiteral("<div class=\"pair\"><section>") +
           heading(Text::tr("Figures of the mean image")) + image.html() +
           QStringLiteral("</section><section>") + heading(Text::tr("EMVA 1288, release 4.0")) +
           emva.html() + QStringLiteral("</section></div>\n") +
           element("p", Text::tr("Temporal noise and dark signal nonuniformity (DSNU) in grey "
                                 "levels, by EMVA standard 1288. A dash stands where the noise "
                                 "leaves nothing over.")) +
           u'\n';
}

} // namespace

QString darkframes::htmlReport(const Survey& survey, const Findings& findings,
                               std::span<const FoundPixel> pixels,
                               const std::optional<ListRoom>& room, const ReportContext& context)
{
    const QString language = Text::tr("en", "the language of this page, as HTML names it");
    return QStringLiteral("<!DOCTYPE html>\n<html lang=\"%1\">\n<head>\n<meta charset=\"utf-8\">\n"
                          "<meta name=\"viewport\" content=\"width=device-width, "
                          "initial-scale=1\">\n")
               .arg(language.toHtmlEscaped()) +
           element("title", context.title) + QStringLiteral("\n<style>") +
           QLatin1String(ReportStyle) + QStringLiteral("</style>\n</head>\n<body>\n") +
           header(context) + summary(survey, findings, pixels, room) + figures(survey) +
           histograms(survey, findings) + accumulated(survey, findings, room) +
           map(survey, pixels) + hottest(pixels) + clusters(findings.clusters) +
           QStringLiteral("<footer>") + context.program.toHtmlEscaped() +
           QStringLiteral("</footer>\n</body>\n</html>\n");
}
