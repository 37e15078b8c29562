// SPDX-License-Identifier: MIT
#include "tests/pixellists/ListTexts.h"

#include <gtest/gtest.h>

namespace {

QStringList namesFor(const char* fileName)
{
    QStringList names;
    for (const PixelListFormat* format : pixellists::formatsOfFile(QLatin1String(fileName))) {
        names.append(format->name);
    }
    return names;
}

} // namespace

TEST(PixelListFormats, FollowFromTheNameOfTheFileWhereThatIsClear)
{
    const struct
    {
        const char* file;
        QStringList formats;
    } cases[] = {
        {"list.txt", {"editor"}},     {"LIST.TXT", {"editor"}},
        {"found.csv", {"csv"}},       {"bad.lst", {"siril"}},
        {"map.json", {"kstars"}},     {"80000285.bpm", {"mlvapp"}},
        {"80000285.fpm", {"mlvapp"}}, {"a.hpm", {"imperx"}},
        {"a.dpm", {"imperx"}},        {"dir.csv/mask.png", {"mask"}},
        {"m.fits", {"mask"}},         {"m.fit", {"mask"}},
        {"m.fts", {"mask"}},
    };
    for (const auto& [file, formats] : cases) {
        EXPECT_EQ(namesFor(file), formats) << file;
    }
}

TEST(PixelListFormats, DontFollowFromNamesThatSeveralProgramsUseOrNone)
{
    EXPECT_EQ(namesFor(".badpixels"), (QStringList{"dcraw", "rawtherapee"}));
    EXPECT_EQ(namesFor("Maker Model.badpixels"), (QStringList{"dcraw", "rawtherapee"}));
    EXPECT_TRUE(namesFor("list").isEmpty());
    EXPECT_TRUE(namesFor("list.").isEmpty());
    EXPECT_TRUE(namesFor("list.dat").isEmpty());
}

TEST(PixelListFormats, AreFoundByTheirNames)
{
    EXPECT_EQ(pixellists::formatNames(),
              QStringLiteral("editor, csv, dcraw, rawtherapee, siril, phd2, kstars, mlvapp, "
                             "imperx, fixpix, mask"));
    for (const PixelListFormat& format : pixellists::allFormats()) {
        EXPECT_EQ(pixellists::formatNamed(format.name), &format);
        EXPECT_EQ(format.isImage(), format.name == QStringLiteral("mask"));
    }
    EXPECT_EQ(pixellists::formatNamed(QStringLiteral("Editor")), nullptr);
    EXPECT_EQ(pixellists::formatNamed(QString()), nullptr);
}
