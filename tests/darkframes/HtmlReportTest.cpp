// SPDX-License-Identifier: MIT
#include "darkframes/HtmlReport.h"

#include "tests/darkframes/TestFrames.h"

#include <QRegularExpression>
#include <QXmlStreamReader>
#include <gtest/gtest.h>

namespace {

struct Report
{
    explicit Report(TestFrames testFrames)
        : frames(std::move(testFrames))
    {}

    TestFrames frames;
    Mosaic mosaic = Mosaic::bayer();
    HotRule rule{40, std::nullopt};
    std::vector<PixelPosition> user;
    std::vector<PixelPosition> drawnIn; ///< of a list, whether they are hot or not
    std::optional<ListRoom> room;
    ReportContext context{"A sensor", {{"files", "a.png"}}, "survey --frames a.png", "Vorn 1.0"};

    [[nodiscard]] QString html() const
    {
        const DarkStack stack = frames.stack();
        const Survey survey = Survey::of(stack, mosaic);
        const Findings findings = Findings::of(stack, survey, rule);
        auto pixels = darkframes::foundPixels(stack, survey, findings, {}, user);
        const auto others = darkframes::pixelsNotFound(stack, survey, findings, drawnIn);
        pixels.insert(pixels.end(), others.begin(), others.end());
        return darkframes::htmlReport(survey, findings, pixels, room, context);
    }
};

Report usual()
{
    return Report(TestFrames::dark(120, 90, 8, 6, 1));
}

qsizetype countOf(const QString& html, const QString& part)
{
    return html.count(part);
}

/// What a reader of markup finds wrong with the page; it has no more freedom than XML.
QString mistakeIn(QString html)
{
    html.remove(QStringLiteral("<!DOCTYPE html>\n"));
    html.replace(QRegularExpression(QStringLiteral("<meta ([^>]*)>")),
                 QStringLiteral("<meta \\1/>"));
    QXmlStreamReader reader(html);
    while (!reader.atEnd()) {
        reader.readNext();
    }
    return reader.errorString();
}

} // namespace

TEST(HtmlReport, IsAWellFormedPage)
{
    EXPECT_EQ(mistakeIn(usual().html()).toStdString(), "");
    Report nothing{TestFrames::of(6, 4, 16, 2, [](int, int, int) { return 7; })};
    EXPECT_EQ(mistakeIn(nothing.html()).toStdString(), "");
    Report row{TestFrames::random(9, 1, 8, 2, 1)};
    EXPECT_EQ(mistakeIn(row.html()).toStdString(), "");
    Report onePixel{TestFrames::random(1, 1, 8, 1, 1)};
    EXPECT_EQ(mistakeIn(onePixel.html()).toStdString(), "");
    EXPECT_FALSE(onePixel.html().contains(QRegularExpression("\\b(nan|inf)\\b")));
}

TEST(HtmlReport, NeedsNoNetworkAndNoScript)
{
    const QString html = usual().html();
    for (const char* outside : {"http:", "https:", "//", "src=", "href=", "@import", "url(",
                                "<script", "<link", "<iframe", "onload"}) {
        EXPECT_FALSE(html.contains(outside)) << outside;
    }
}

TEST(HtmlReport, EscapesWhateverItIsTold)
{
    Report report = usual();
    const QString hostile = QStringLiteral("<script>alert(\"1\" & '2')</script> %1 %2");
    report.context = {hostile, {{hostile, hostile}}, hostile, hostile};
    const QString html = report.html();
    EXPECT_FALSE(html.contains("<script"));
    EXPECT_EQ(countOf(html, hostile.toHtmlEscaped()), 6);
    EXPECT_EQ(mistakeIn(html).toStdString(), "");
}

TEST(HtmlReport, IsMadeForLightAndDarkForPhonesAndForPaper)
{
    const QString html = usual().html();
    EXPECT_TRUE(html.contains("prefers-color-scheme: dark"));
    EXPECT_TRUE(html.contains("@media print"));
    EXPECT_TRUE(html.contains("name=\"viewport\" content=\"width=device-width"));
}

TEST(HtmlReport, HasAHistogramForEachPlane)
{
    Report report = usual();
    EXPECT_EQ(countOf(report.html(), "class=\"bars\""), 4);
    EXPECT_EQ(countOf(report.html(), "class=\"line curve\""), 8); // and in their legends
    report.mosaic = Mosaic::mono();
    EXPECT_EQ(countOf(report.html(), "class=\"bars\""), 1);
}

TEST(HtmlReport, TellsKindsOfPixelsApartByShape)
{
    Report report{TestFrames::of(20, 20, 8, 2, [](int frame, int x, int y) {
        const bool hot = y == 4 && (x == 4 || x == 6 || x == 13 || x == 18);
        return hot ? 200 : x == 10 && y == 10 ? 10 + frame * 90 : 10;
    })};
    report.user = {{13, 4}};
    const QString html = report.html();
    const QRegularExpression mark(
        QStringLiteral("<path class=\"mark (\\w+)\" d=\"M[0-9.]+ [0-9.]+([^M\"]*)"));
    QMap<QString, QString> shapes;
    for (auto found = mark.globalMatch(html); found.hasNext();) {
        const auto match = found.next();
        if (!shapes.contains(match.captured(1))) {
            shapes[match.captured(1)] = match.captured(2);
        }
    }
    EXPECT_EQ(shapes.keys(), (QStringList{"clustered", "flickering", "known", "new"}));
    QStringList different = shapes.values();
    different.removeDuplicates();
    EXPECT_EQ(different.size(), 4);
    for (const char* legend : {"in a cluster: 2", "known: 1", "flickering: 1", "new: 1"}) {
        EXPECT_TRUE(html.contains(legend)) << legend;
    }
}

TEST(HtmlReport, DrawsInWhatAListHasThatIsNotHot)
{
    Report report{TestFrames::of(20, 20, 8, 2,
                                 [](int, int x, int y) { return x == 4 && y == 4 ? 200 : 10; })};
    EXPECT_FALSE(report.html().contains("in a list, but not hot"));
    report.user = {{4, 4}};
    report.drawnIn = {{4, 4}, {9, 9}, {15, 3}};
    const QString html = report.html();
    EXPECT_TRUE(html.contains("in a list, but not hot: 2"));
    EXPECT_TRUE(html.contains("known: 1"));
    EXPECT_TRUE(html.contains("new: 0"));
    EXPECT_EQ(mistakeIn(html), QString());
    EXPECT_FALSE(html.contains("<td>not hot</td>")) << "it is none of the hottest";
}

TEST(HtmlReport, ListsTheHottestFiftyFromTheTop)
{
    Report report{TestFrames::of(
        40, 40, 8, 2, [](int, int x, int y) { return y == 0 || y == 20 ? 100 + x : 10; })};
    report.mosaic = Mosaic::mono();
    const QString html = report.html();
    const QString table = html.mid(html.indexOf("The hottest fifty"));
    const QRegularExpression row(QStringLiteral("<tr><td>(\\d+)</td><td>(\\d+)</td><td>(\\d+)</td>"
                                                "<td>all</td><td>([0-9.]+)</td>"));
    QStringList rows;
    double before = 1000;
    for (auto found = row.globalMatch(table); found.hasNext();) {
        const auto match = found.next();
        rows.append(match.captured(1));
        EXPECT_LE(match.captured(4).toDouble(), before);
        before = match.captured(4).toDouble();
    }
    EXPECT_EQ(rows.size(), 50);
    EXPECT_EQ(before, 115);
    EXPECT_TRUE(table.contains("<td>39</td><td>0</td><td>all</td><td>139.0</td>"));
}

TEST(HtmlReport, SaysWhatWasLookedAtAndHowToRepeatIt)
{
    Report report = usual();
    report.context = {"Dark frames",
                      {{"serial number", "4711"}, {"gain", "50"}},
                      "vorn-hotpixel survey --frames 'my frames'",
                      "vorn-hotpixel 1.0"};
    const QString html = report.html();
    EXPECT_TRUE(html.contains("<dt>serial number</dt><dd>4711</dd><dt>gain</dt><dd>50</dd>"));
    EXPECT_TRUE(html.contains("<pre>vorn-hotpixel survey --frames 'my frames'</pre>") ||
                html.contains("<pre>vorn-hotpixel survey --frames &#39;my frames&#39;</pre>"));
}

TEST(HtmlReport, StaysSmallWhereEverythingIsHot)
{
    Report report{TestFrames::random(400, 300, 8, 2, 1)};
    report.rule.threshold = 0;
    EXPECT_LT(report.html().size(), 4'000'000);
    EXPECT_TRUE(report.html().contains("is drawn"));
}
