// SPDX-License-Identifier: MIT
#include "darkframes/SurveyOutput.h"

#include "darkframes/FrameError.h"

#include <QCoreApplication>
#include <QJsonArray>

#include <algorithm>
#include <array>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(SurveyOutput)
};

/// What of a plane's figures stands in a table or an object, in this order.
struct Figure
{
    const char* key;
    const char* title;
    std::optional<double> PlaneStatistics::*value;
};

constexpr std::array Figures{
    Figure{"mean", QT_TRANSLATE_NOOP("SurveyOutput", "mean"), &PlaneStatistics::mean},
    Figure{"median", QT_TRANSLATE_NOOP("SurveyOutput", "median"), &PlaneStatistics::median},
    Figure{"deviation", QT_TRANSLATE_NOOP("SurveyOutput", "deviation"),
           &PlaneStatistics::deviation},
    Figure{"robustDeviation", QT_TRANSLATE_NOOP("SurveyOutput", "robust"),
           &PlaneStatistics::robustDeviation},
    Figure{"minimum", QT_TRANSLATE_NOOP("SurveyOutput", "least"), &PlaneStatistics::minimum},
    Figure{"maximum", QT_TRANSLATE_NOOP("SurveyOutput", "greatest"), &PlaneStatistics::maximum},
};

constexpr std::array Nonuniformity{
    Figure{"temporalNoise", QT_TRANSLATE_NOOP("SurveyOutput", "noise"),
           &PlaneStatistics::temporalNoise},
    Figure{"dsnu", QT_TRANSLATE_NOOP("SurveyOutput", "DSNU"), &PlaneStatistics::dsnu},
    Figure{"dsnuRow", QT_TRANSLATE_NOOP("SurveyOutput", "rows"), &PlaneStatistics::dsnuRow},
    Figure{"dsnuColumn", QT_TRANSLATE_NOOP("SurveyOutput", "columns"),
           &PlaneStatistics::dsnuColumn},
    Figure{"dsnuPixel", QT_TRANSLATE_NOOP("SurveyOutput", "pixels"), &PlaneStatistics::dsnuPixel},
};

QJsonValue number(const std::optional<double>& value)
{
    return value ? QJsonValue(*value) : QJsonValue(QJsonValue::Null);
}

QJsonValue count(std::uint64_t value)
{
    return static_cast<qint64>(value);
}

QJsonObject planeObject(const Survey& survey, const PlaneStatistics& plane)
{
    QJsonObject object{{QStringLiteral("name"), plane.plane.name},
                       {QStringLiteral("x"), static_cast<qint64>(plane.plane.x)},
                       {QStringLiteral("y"), static_cast<qint64>(plane.plane.y)},
                       {QStringLiteral("step"), static_cast<qint64>(plane.plane.step)},
                       {QStringLiteral("pixels"), count(plane.pixels)}};
    const auto insert = [&](const Figure& figure) {
        object.insert(QLatin1String(figure.key), number(plane.*figure.value));
    };
    std::ranges::for_each(Figures, insert);
    std::ranges::for_each(Nonuniformity, insert);
    QJsonObject above;
    for (const std::uint32_t threshold : darkframes::surveyThresholds(survey.info.bitsPerPixel)) {
        above.insert(QString::number(threshold), count(survey.countAbove(plane, threshold)));
    }
    object.insert(QStringLiteral("above"), above);
    return object;
}

QJsonObject clustersObject(const PixelClusters& clusters)
{
    QJsonArray list;
    for (const PixelCluster& cluster : clusters.clusters) {
        list.append(QJsonObject{{QStringLiteral("pixels"), static_cast<qint64>(cluster.pixels)},
                                {QStringLiteral("left"), cluster.left},
                                {QStringLiteral("top"), cluster.top},
                                {QStringLiteral("right"), cluster.right},
                                {QStringLiteral("bottom"), cluster.bottom}});
    }
    const std::uint64_t largest = clusters.clusters.empty() ? 0 : clusters.clusters.front().pixels;
    return {{QStringLiteral("count"), list.size()},
            {QStringLiteral("pixels"), count(clusters.pixels())},
            {QStringLiteral("largest"), count(largest)},
            {QStringLiteral("list"), list}};
}

QJsonArray flickeringArray(const DarkStack& stack, std::span<const PixelPosition> pixels)
{
    QJsonArray list;
    for (const PixelPosition& pixel : pixels) {
        const std::size_t index = std::size_t{pixel.y} * stack.info().width + pixel.x;
        list.append(
            QJsonObject{{QStringLiteral("x"), pixel.x},
                        {QStringLiteral("y"), pixel.y},
                        {QStringLiteral("mean"), stack.sums()[index] / double(stack.frameCount())},
                        {QStringLiteral("greatest"), stack.greatest(index)}});
    }
    return list;
}

/// A table of right-aligned columns, the first one aligned to the left.
class TextTable
{
public:
    explicit TextTable(QStringList titles) { addRow(std::move(titles)); }

    void addRow(QStringList cells) { m_rows.append(std::move(cells)); }

    [[nodiscard]] QString text() const
    {
        QList<qsizetype> widths(m_rows.front().size());
        for (const QStringList& row : m_rows) {
            for (qsizetype i = 0; i < row.size(); ++i) {
                widths[i] = std::max(widths[i], row[i].size());
            }
        }
        QStringList lines;
        for (const QStringList& row : m_rows) {
            QString line = QStringLiteral("  ") + row.front().leftJustified(widths.front());
            for (qsizetype i = 1; i < row.size(); ++i) {
                line += QStringLiteral("  ") + row[i].rightJustified(widths[i]);
            }
            lines.append(line);
        }
        return lines.join(u'\n');
    }

private:
    QList<QStringList> m_rows;
};

QString figureText(const std::optional<double>& value)
{
    return value ? QString::number(*value, 'f', 3) : QStringLiteral("–");
}

template <typename FigureList>
QString figureTable(const Survey& survey, const FigureList& figures, bool withPixels)
{
    QStringList titles{Text::tr("plane")};
    if (withPixels) {
        titles.append(Text::tr("pixels"));
    }
    for (const Figure& figure : figures) {
        titles.append(Text::tr(figure.title));
    }
    TextTable table(titles);
    for (const PlaneStatistics& plane : survey.planes) {
        QStringList row{plane.plane.title()};
        if (withPixels) {
            row.append(QString::number(plane.pixels));
        }
        for (const Figure& figure : figures) {
            row.append(figureText(plane.*figure.value));
        }
        table.addRow(row);
    }
    return table.text();
}

/// Ends with the first threshold above which there is no pixel.
QString thresholdTable(const Survey& survey)
{
    QStringList titles{Text::tr("by more than")};
    for (const PlaneStatistics& plane : survey.planes) {
        titles.append(plane.plane.title());
    }
    TextTable table(titles);
    for (const std::uint32_t threshold : darkframes::surveyThresholds(survey.info.bitsPerPixel)) {
        QStringList row{QString::number(threshold)};
        for (const PlaneStatistics& plane : survey.planes) {
            row.append(QString::number(survey.countAbove(plane, threshold)));
        }
        table.addRow(row);
        if (survey.countAbove(survey.planes.front(), threshold) == 0) {
            break;
        }
    }
    return table.text();
}

QString clusterText(const PixelClusters& clusters)
{
    constexpr std::size_t Shown = 10;
    QStringList lines;
    for (std::size_t i = 0; i < std::min(Shown, clusters.clusters.size()); ++i) {
        const PixelCluster& cluster = clusters.clusters[i];
        lines.append(Text::tr("  %1 pixels from (%2, %3) to (%4, %5)")
                         .arg(cluster.pixels, 6)
                         .arg(cluster.left)
                         .arg(cluster.top)
                         .arg(cluster.right)
                         .arg(cluster.bottom));
    }
    if (clusters.clusters.size() > Shown) {
        lines.append(Text::tr("  and %1 more").arg(clusters.clusters.size() - Shown));
    }
    return lines.join(u'\n');
}

QString flickeringText(const DarkStack& stack, std::span<const PixelPosition> pixels)
{
    constexpr std::size_t Shown = 50;
    TextTable table({Text::tr("x"), Text::tr("y"), Text::tr("mean"), Text::tr("greatest")});
    for (const PixelPosition& pixel : pixels.first(std::min(Shown, pixels.size()))) {
        const std::size_t index = std::size_t{pixel.y} * stack.info().width + pixel.x;
        table.addRow({QString::number(pixel.x), QString::number(pixel.y),
                      QString::number(stack.sums()[index] / double(stack.frameCount()), 'f', 1),
                      QString::number(stack.greatest(index))});
    }
    QString text = table.text();
    if (pixels.size() > Shown) {
        text += u'\n' + Text::tr("  and %1 more").arg(pixels.size() - Shown);
    }
    return text;
}

QString roomText(const Survey& survey, const ListRoom& room)
{
    const QString list = Text::tr("The list has room for %1 more pixels (%2 in all).")
                             .arg(room.capacity - std::min(room.capacity, room.taken))
                             .arg(room.capacity);
    if (!room.filling) {
        return list + u' ' + Text::tr("No threshold finds so few.");
    }
    const FillingThreshold& filling = *room.filling;
    QString text =
        list + u' ' +
        Text::tr("Threshold %1 fills it with %2").arg(filling.threshold).arg(filling.found);
    if (filling.threshold == darkframes::surveyThresholds(survey.info.bitsPerPixel).front()) {
        text += Text::tr("; it is the least that there is");
    }
    return text + u'.';
}

} // namespace

std::vector<std::uint32_t> darkframes::surveyThresholds(std::uint32_t bitsPerPixel)
{
    std::vector<std::uint32_t> thresholds;
    for (std::uint32_t level = 5; level <= 255; level += 5) {
        thresholds.push_back(level * levelScale(bitsPerPixel));
    }
    return thresholds;
}

QJsonObject darkframes::surveyObject(const DarkStack& stack, const Survey& survey,
                                     const Findings& findings, const std::optional<ListRoom>& room)
{
    QJsonArray planes;
    for (const PlaneStatistics& plane : survey.planes) {
        planes.append(planeObject(survey, plane));
    }
    QJsonObject object{
        {QStringLiteral("frames"), static_cast<qint64>(survey.frames)},
        {QStringLiteral("width"), static_cast<qint64>(survey.info.width)},
        {QStringLiteral("height"), static_cast<qint64>(survey.info.height)},
        {QStringLiteral("bits"), static_cast<qint64>(survey.info.bitsPerPixel)},
        {QStringLiteral("planes"), planes},
        {QStringLiteral("hot"), count(findings.pixels.hot.size())},
        {QStringLiteral("clusters"), clustersObject(findings.clusters)},
        {QStringLiteral("flickering"), flickeringArray(stack, findings.pixels.flickering)}};
    if (findings.rule.sigma) {
        object.insert(QStringLiteral("sigma"), *findings.rule.sigma);
    } else {
        object.insert(QStringLiteral("threshold"), static_cast<qint64>(findings.rule.threshold));
    }
    if (room) {
        QJsonObject capacity{{QStringLiteral("entries"), count(room->capacity)},
                             {QStringLiteral("taken"), count(room->taken)},
                             {QStringLiteral("threshold"), QJsonValue(QJsonValue::Null)},
                             {QStringLiteral("found"), QJsonValue(QJsonValue::Null)}};
        if (room->filling) {
            capacity[QStringLiteral("threshold")] = static_cast<qint64>(room->filling->threshold);
            capacity[QStringLiteral("found")] = count(room->filling->found);
        }
        object.insert(QStringLiteral("capacity"), capacity);
    }
    return object;
}

QString darkframes::surveyText(const DarkStack& stack, const Survey& survey,
                               const Findings& findings, const std::optional<ListRoom>& room)
{
    QStringList parts;
    parts.append(Text::tr("Mean image of %1 frames, %2 × %3 pixels of %4 bits, grey levels:")
                     .arg(survey.frames)
                     .arg(survey.info.width)
                     .arg(survey.info.height)
                     .arg(survey.info.bitsPerPixel));
    parts.append(figureTable(survey, Figures, true));
    parts.append(Text::tr("\nTemporal noise and dark signal nonuniformity (EMVA 1288, 4.0):"));
    parts.append(figureTable(survey, Nonuniformity, false));
    parts.append(Text::tr("\nPixels above the mean of their plane:"));
    parts.append(thresholdTable(survey));
    if (room) {
        parts.append(u'\n' + roomText(survey, *room));
    }
    const std::size_t hot = findings.pixels.hot.size();
    parts.append(findings.rule.sigma
                     ? Text::tr("\nMore than %1 robust deviations above the median: %2 pixels")
                           .arg(*findings.rule.sigma)
                           .arg(hot)
                     : Text::tr("\nMore than %1 grey levels above the mean: %2 pixels")
                           .arg(findings.rule.threshold)
                           .arg(hot));
    const PixelClusters& clusters = findings.clusters;
    parts.append(Text::tr("Clusters: %1 with %2 of those pixels")
                     .arg(clusters.clusters.size())
                     .arg(clusters.pixels()));
    if (!clusters.clusters.empty()) {
        parts.append(clusterText(clusters));
    }
    const auto& flickering = findings.pixels.flickering;
    parts.append(Text::tr("Flickering, above the limit in a frame but not in their mean: %1")
                     .arg(flickering.size()));
    if (!flickering.empty()) {
        parts.append(flickeringText(stack, flickering));
    }
    return parts.join(u'\n');
}
