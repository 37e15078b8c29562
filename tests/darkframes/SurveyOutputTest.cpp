// SPDX-License-Identifier: MIT
#include "darkframes/SurveyOutput.h"

#include "tests/darkframes/ReferenceStatistics.h"
#include "tests/darkframes/TestFrames.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <gtest/gtest.h>

#include <algorithm>

namespace {

struct Surveyed
{
    DarkStack stack;
    Survey survey;
    Findings findings;

    Surveyed(const TestFrames& frames, const Mosaic& mosaic, const HotRule& rule)
        : stack(frames.stack())
        , survey(Survey::of(stack, mosaic))
        , findings(Findings::of(stack, survey, rule))
    {}
    [[nodiscard]] QJsonObject object(const std::optional<ListRoom>& room = std::nullopt) const
    {
        return darkframes::surveyObject(stack, survey, findings, room);
    }
    [[nodiscard]] QString text(const std::optional<ListRoom>& room = std::nullopt) const
    {
        return darkframes::surveyText(stack, survey, findings, room);
    }
};

/// 16 × 12 pixels of level 10 in two frames, with a pair of hot pixels, a single one, and one
/// that is hot in the second frame only.
TestFrames someHotPixels()
{
    return TestFrames::of(16, 12, 8, 2, [](int frame, int x, int y) {
        if (y == 0 && (x == 2 || x == 4)) {
            return 100;
        }
        if (x == 7 && y == 3) {
            return 200;
        }
        return x == 5 && y == 1 ? 10 + frame * 60 : 10;
    });
}

const HotRule Usual{40, std::nullopt};

QJsonObject plane(const QJsonObject& object, int index)
{
    return object["planes"].toArray()[index].toObject();
}

} // namespace

TEST(SurveyObject, HoldsFramesSizeAndPlanes)
{
    const QJsonObject object =
        Surveyed(someHotPixels(), *Mosaic::fromColours("RGGB"), Usual).object();
    EXPECT_EQ(object["frames"].toInt(), 2);
    EXPECT_EQ(object["width"].toInt(), 16);
    EXPECT_EQ(object["height"].toInt(), 12);
    EXPECT_EQ(object["threshold"].toInt(), 40);
    ASSERT_EQ(object["planes"].toArray().size(), 5);
    const auto place = [&object](int index) {
        const QJsonObject each = plane(object, index);
        return QStringLiteral("%1 %2 %3 %4")
            .arg(each["name"].toString())
            .arg(each["x"].toInt())
            .arg(each["y"].toInt())
            .arg(each["step"].toInt())
            .toStdString();
    };
    EXPECT_EQ(place(0), "all 0 0 1");
    EXPECT_EQ(place(1), "R 0 0 2");
    EXPECT_EQ(place(2), "Gb 0 1 2");
    EXPECT_EQ(place(3), "Gr 1 0 2");
    EXPECT_EQ(place(4), "B 1 1 2");
    EXPECT_EQ(Surveyed(someHotPixels(), Mosaic::mono(), Usual).object()["planes"].toArray().size(),
              1);
}

TEST(SurveyObject, HoldsTheFiguresOfEachPlane)
{
    const TestFrames frames = someHotPixels();
    const QJsonObject object = Surveyed(frames, Mosaic::bayer(), Usual).object();
    const reference::Statistics expected = reference::statistics(frames, {0, 0, 2});
    const QJsonObject red = plane(object, 1);
    EXPECT_EQ(red["pixels"].toInt(), 48);
    EXPECT_DOUBLE_EQ(red["mean"].toDouble(), *expected.mean);
    EXPECT_DOUBLE_EQ(red["median"].toDouble(), *expected.median);
    EXPECT_DOUBLE_EQ(red["deviation"].toDouble(), *expected.deviation);
    EXPECT_DOUBLE_EQ(red["robustDeviation"].toDouble(), *expected.robustDeviation);
    EXPECT_DOUBLE_EQ(red["minimum"].toDouble(), *expected.minimum);
    EXPECT_DOUBLE_EQ(red["maximum"].toDouble(), *expected.maximum);
    EXPECT_DOUBLE_EQ(red["temporalNoise"].toDouble(), *expected.temporalNoise);
    EXPECT_DOUBLE_EQ(red["dsnu"].toDouble(), *expected.dsnu);
    EXPECT_EQ(red["dsnuRow"].isNull(), !expected.dsnuRow.has_value());
    EXPECT_EQ(red["dsnuColumn"].isNull(), !expected.dsnuColumn.has_value());
    EXPECT_DOUBLE_EQ(red["dsnuPixel"].toDouble(), *expected.dsnuPixel);
}

TEST(SurveyObject, HasNullForWhatIsNotDefined)
{
    const Surveyed row(TestFrames::random(6, 1, 8, 2, 1), Mosaic::bayer(), Usual);
    const QJsonObject below = plane(row.object(), 2);
    EXPECT_EQ(below["pixels"].toInt(), 0);
    for (const char* key : {"mean", "median", "deviation", "robustDeviation", "minimum", "maximum",
                            "temporalNoise", "dsnu", "dsnuRow", "dsnuColumn", "dsnuPixel"}) {
        EXPECT_TRUE(below.contains(key)) << key;
        EXPECT_TRUE(below[key].isNull()) << key;
    }
}

TEST(SurveyObject, CountsPixelsAboveEachThreshold)
{
    const QJsonObject narrow =
        plane(Surveyed(someHotPixels(), Mosaic::mono(), Usual).object(), 0)["above"].toObject();
    EXPECT_EQ(narrow.size(), 51);
    // The means are 10, 40, 100 and 200; that of all is 12.08, cut to 12.
    EXPECT_EQ(narrow["5"].toInt(), 4);
    EXPECT_EQ(narrow["25"].toInt(), 4);
    EXPECT_EQ(narrow["30"].toInt(), 3);
    EXPECT_EQ(narrow["85"].toInt(), 3);
    EXPECT_EQ(narrow["90"].toInt(), 1);
    EXPECT_EQ(narrow["185"].toInt(), 1);
    EXPECT_EQ(narrow["190"].toInt(), 0);
    EXPECT_EQ(narrow["255"].toInt(), 0);
    const QJsonObject wide =
        plane(Surveyed(TestFrames::random(4, 4, 16, 2, 1), Mosaic::mono(), Usual).object(),
              0)["above"]
            .toObject();
    EXPECT_EQ(wide.size(), 51);
    EXPECT_TRUE(wide.contains("1280"));
    EXPECT_TRUE(wide.contains("65280"));
}

TEST(SurveyObject, ListsClustersAndFlickeringPixels)
{
    const QJsonObject object = Surveyed(someHotPixels(), Mosaic::bayer(), Usual).object();
    EXPECT_EQ(object["hot"].toInt(), 3);
    EXPECT_EQ(
        QJsonDocument(object["clusters"].toObject()).toJson(QJsonDocument::Compact),
        R"({"count":1,"largest":2,"list":[{"bottom":0,"left":2,"pixels":2,"right":4,"top":0}],"pixels":2})");
    EXPECT_EQ(QJsonDocument(object["flickering"].toArray()).toJson(QJsonDocument::Compact),
              R"([{"greatest":70,"mean":40,"x":5,"y":1}])");
}

TEST(SurveyObject, SaysWhatFillsAList)
{
    const Surveyed surveyed(someHotPixels(), Mosaic::mono(), Usual);
    EXPECT_FALSE(surveyed.object().contains("capacity"));
    const auto capacity = [&surveyed](const ListRoom& room) {
        return QJsonDocument(surveyed.object(room)["capacity"].toObject())
            .toJson(QJsonDocument::Compact);
    };
    EXPECT_EQ(capacity({100, 20, FillingThreshold{17, 80}}),
              R"({"entries":100,"found":80,"taken":20,"threshold":17})");
    EXPECT_EQ(capacity({100, 100, std::nullopt}),
              R"({"entries":100,"found":null,"taken":100,"threshold":null})");
}

TEST(SurveyObject, NamesTheRuleOfDeviations)
{
    const QJsonObject object = Surveyed(someHotPixels(), Mosaic::mono(), {40, 6.5}).object();
    EXPECT_EQ(object["sigma"].toDouble(), 6.5);
    EXPECT_FALSE(object.contains("threshold"));
}

TEST(SurveyText, IsATableForPeople)
{
    const std::string text = Surveyed(someHotPixels(), Mosaic::mono(), Usual)
                                 .text(ListRoom{10, 8, FillingThreshold{77, 2}})
                                 .toStdString();
    EXPECT_EQ(text,
              "Mean image of 2 frames, 16 × 12 pixels of 8 bits, grey levels:\n"
              "  plane  pixels    mean  median  deviation  robust   least  greatest\n"
              "  all       192  12.083  10.000     16.558   0.000  10.000   200.000\n"
              "\n"
              "Temporal noise and dark signal nonuniformity (EMVA 1288, 4.0):\n"
              "  plane  noise    DSNU   rows  columns  pixels\n"
              "  all    3.062  16.416  0.947        –  16.522\n"
              "\n"
              "Pixels above the mean of their plane:\n"
              "  by more than  all\n"
              "  5               4\n"
              "  10              4\n"
              "  15              4\n"
              "  20              4\n"
              "  25              4\n"
              "  30              3\n"
              "  35              3\n"
              "  40              3\n"
              "  45              3\n"
              "  50              3\n"
              "  55              3\n"
              "  60              3\n"
              "  65              3\n"
              "  70              3\n"
              "  75              3\n"
              "  80              3\n"
              "  85              3\n"
              "  90              1\n"
              "  95              1\n"
              "  100             1\n"
              "  105             1\n"
              "  110             1\n"
              "  115             1\n"
              "  120             1\n"
              "  125             1\n"
              "  130             1\n"
              "  135             1\n"
              "  140             1\n"
              "  145             1\n"
              "  150             1\n"
              "  155             1\n"
              "  160             1\n"
              "  165             1\n"
              "  170             1\n"
              "  175             1\n"
              "  180             1\n"
              "  185             1\n"
              "  190             0\n"
              "\n"
              "The list has room for 2 more pixels (10 in all). Threshold 77 fills it with 2.\n"
              "\n"
              "More than 40 grey levels above the mean: 3 pixels\n"
              "Clusters: 0 with 0 of those pixels\n"
              "Flickering, above the limit in a frame but not in their mean: 1\n"
              "  x  y  mean  greatest\n"
              "  5  1  40.0        70");
}

TEST(SurveyText, HasLinesThatFitOnAScreen)
{
    const Surveyed surveyed(TestFrames::dark(200, 150, 16, 4, 1), *Mosaic::fromColours("RGGB"),
                            {5 * 256, std::nullopt});
    for (const QString& line : surveyed.text().split(u'\n')) {
        EXPECT_LE(line.size(), 100) << line.toStdString();
    }
}

TEST(SurveyText, HasADashForWhatIsNotDefined)
{
    const Surveyed row(TestFrames::random(6, 1, 8, 2, 1), Mosaic::bayer(), Usual);
    EXPECT_TRUE(row.text().contains("  x0y1        0"));
    EXPECT_TRUE(row.text().contains(" – "));
}
