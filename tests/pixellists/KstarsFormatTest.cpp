// SPDX-License-Identifier: MIT
#include "pixellists/PixelListError.h"
#include "tests/pixellists/ListTexts.h"

#include <QTemporaryFile>
#include <gtest/gtest.h>

namespace {

PixelList hotAndCold()
{
    return {{.x = 12, .y = 345, .defect = PixelDefect::Hot, .value = 51.8F},
            {.x = 640, .y = 2, .defect = PixelDefect::Cold, .value = 3.0F}};
}

} // namespace

TEST(KstarsFormat, HasTheKeysThatItsProgramReads)
{
    EXPECT_EQ(contentOf("kstars", hotAndCold(),
                        {.size = {}, .suffix = {}, .camera = QStringLiteral("A \"B\"")})
                  .bytes,
              QByteArray("{\n"
                         "    \"camera\": \"A \\\"B\\\"\",\n"
                         "    \"median\": 3,\n"
                         "    \"standardDeviation\": 0,\n"
                         "    \"hotAggressiveness\": 75,\n"
                         "    \"coldAggressiveness\": 75,\n"
                         "    \"hot\": [\n"
                         "        {\"x\": 12, \"y\": 345, \"value\": 51.8}\n"
                         "    ],\n"
                         "    \"cold\": [\n"
                         "        {\"x\": 640, \"y\": 2, \"value\": 3}\n"
                         "    ]\n"
                         "}\n"));
    EXPECT_EQ(
        contentOf("kstars", {}).bytes,
        QByteArray("{\n    \"camera\": \"\",\n    \"median\": 0,\n"
                   "    \"standardDeviation\": 0,\n    \"hotAggressiveness\": 75,\n"
                   "    \"coldAggressiveness\": 75,\n    \"hot\": [],\n    \"cold\": []\n}\n"));
}

TEST(KstarsFormat, HasSaturatedValuesWhereTheyAreNotKnown)
{
    PixelList pixels = pixelsAt({{1, 2}, {3, 4}});
    pixels[1].defect = PixelDefect::Cold;
    const QByteArray text = contentOf("kstars", pixels).bytes;
    EXPECT_TRUE(text.contains("{\"x\": 1, \"y\": 2, \"value\": 65535}")) << text.constData();
    EXPECT_TRUE(text.contains("{\"x\": 3, \"y\": 4, \"value\": 0}")) << text.constData();
}

TEST(KstarsFormat, SaysWhatIsNeverCorrected)
{
    EXPECT_EQ(contentOf("kstars", pixelsAt({{0, 5}, {0, 0}, {1, 1}, {7, 0}, {8, 0}})).losses,
              (QStringList{QStringLiteral("x = 0: 2 entries that KStars never corrects"),
                           QStringLiteral("y = 0: 3 entries that KStars never corrects")}));
    EXPECT_EQ(contentOf("kstars", pixelsAt({{5, 0}})).losses,
              QStringList(QStringLiteral("y = 0: 1 entry that KStars never corrects")));
}

TEST(KstarsFormat, RaisesHotPixelsToTheGreatestColdOneAndSaysSo)
{
    PixelList pixels = hotAndCold();
    pixels[1].value = 60.0F;
    const PixelListContent content = contentOf("kstars", pixels);
    EXPECT_TRUE(content.bytes.contains("\"median\": 60,"));
    EXPECT_TRUE(content.bytes.contains("{\"x\": 12, \"y\": 345, \"value\": 60}"));
    EXPECT_EQ(content.losses, QStringList(QStringLiteral(
                                  "hot, but darker than a cold one: 1, which get its value")));
}

TEST(KstarsFormat, IsReadWhateverElseStandsInIt)
{
    const QByteArray text = R"({"cold":[{"x":640,"y":2,"value":3,"more":[1]}],"new":{"hot":[1]},
                                "hot":[{"value":51.8,"y":345,"x":12}]})";
    EXPECT_EQ(readText("kstars", text).pixels, hotAndCold());
    EXPECT_EQ(readText("kstars", R"({"hot":[{"x":1,"y":2}]})").pixels.front().value, std::nullopt);
}

TEST(KstarsFormat, NamesTheLineOfAPixelThatIsNone)
{
    const QByteArray head =
        "{\n\"cold\": [\n{\"x\":1,\"y\":1,\"value\":1}],\n\"a\": \"hot\",\n\"hot\": [\n"
        "{\"x\":1,\"y\":\n1},\n";
    for (const char* pixel : {R"({"x":-1,"y":2})", R"({"x":1.5,"y":2})", R"({"x":1,"y":65536})",
                              R"({"x":1})", R"({"x":"1","y":2})", R"({"x":1,"y":2,"value":"hot"})",
                              "7", "[]", "null", R"({"x":1e999,"y":2})"}) {
        const QString text = refusal("kstars", head + pixel + ",\n{\"x\":3,\"y\":4}]}");
        EXPECT_TRUE(text.startsWith(QStringLiteral("LIST, line ")) &&
                    text.contains(QStringLiteral(": expected a")))
            << pixel << '\n'
            << qPrintable(text);
        if (QByteArray(pixel).startsWith("{") && !QByteArray(pixel).contains("999")) {
            EXPECT_TRUE(text.startsWith(
                QStringLiteral("LIST, line 8: expected a pixel {x, y, value}, not \"{")))
                << pixel << '\n'
                << qPrintable(text);
        }
    }
}

TEST(KstarsFormat, LeavesOutThePixelsThatAreNoneWhenItIsLenient)
{
    QByteArray text = "{\"hot\": [";
    for (int i = 0; i < 12; ++i) {
        text += "{\"x\": -1},\n";
    }
    text += "{\"x\": 3, \"y\": 4}]}";
    const PixelListReading reading = readText("kstars", text, {.size = {}, .lenient = true});
    EXPECT_EQ(reading.pixels.size(), 1U);
    EXPECT_EQ(reading.badLines, 12U);
    ASSERT_EQ(reading.firstBadLines.size(), 10);
    EXPECT_TRUE(reading.firstBadLines.last().startsWith(QStringLiteral("LIST, line 10: ")));
}

TEST(KstarsFormat, RefusesWhatIsNoSuchObject)
{
    EXPECT_EQ(refusal("kstars", "{\"hot\": [\n{\"x\": 1,}]}"),
              QStringLiteral("LIST, line 2: expected a JSON object, not \"}]}\"."));
    for (const char* text :
         {"", "[]", "1 2\n", "{}", R"({"hot":7})", R"({"x":1,"y":2})", "{\"hot\":[", "\xff\xfe"}) {
        EXPECT_TRUE(refusal("kstars", text).startsWith(QStringLiteral("LIST, line 1: expected ")))
            << text;
    }
}

TEST(KstarsFormat, IsNotReadFromAFileThatIsMuchTooLarge)
{
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    ASSERT_TRUE(file.resize(qint64{1} << 30));
    const PixelListFormat& format = *pixellists::formatNamed(QStringLiteral("kstars"));
    EXPECT_THROW(pixellists::readPixelList(file, QStringLiteral("LIST"), format, {}),
                 PixelListError);
}
