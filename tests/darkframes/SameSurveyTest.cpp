// SPDX-License-Identifier: MIT
#include "darkframes/FrameFile.h"
#include "darkframes/FrameStacker.h"
#include "darkframes/SurveyOutput.h"
#include "tests/darkframes/DngFile.h"
#include "tests/darkframes/FrameFiles.h"
#include "tests/darkframes/TestFrames.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

/// The same frames in files of several kinds.
class SameSurvey : public FrameFiles
{
protected:
    static constexpr int Frames = 5;

    QByteArray surveyOf(const QString& pattern, const std::optional<Mosaic>& told) const
    {
        FrameStacker stacker(told);
        const QStringList files = darkframes::frameFiles({path(pattern)});
        EXPECT_EQ(files.size(), Frames);
        for (const QString& file : files) {
            stacker.add(file, darkframes::readFrame(file));
        }
        const DarkStack& stack = stacker.finish(2);
        const Survey survey = Survey::of(stack, *stacker.mosaic());
        const Findings findings = Findings::of(stack, survey, {20 * 256, std::nullopt});
        EXPECT_GT(findings.pixels.hot.size(), 10U);
        return QJsonDocument(darkframes::surveyObject(stack, survey, findings, std::nullopt))
            .toJson(QJsonDocument::Compact);
    }
    void SetUp() override
    {
        for (std::size_t i = 0; i < Frames; ++i) {
            const QImage image = m_frames.image(i);
            save(QStringLiteral("%1.png").arg(i), image);
            save(QStringLiteral("%1.tif").arg(i), image);
            write(QStringLiteral("%1.pgm").arg(i), pgm(image, 65535));
            write(QStringLiteral("%1.fits").arg(i), fits16(image, {"BAYERPAT= 'RGGB    '"}));
            writeDng(path(QStringLiteral("%1.dng").arg(i)), image, {});
        }
    }

private:
    TestFrames m_frames = TestFrames::dark(64, 48, 16, Frames, 1);
};

/// Only files that say so have names of colours.
QByteArray withPlaceNames(QByteArray json)
{
    return json.replace("\"R\"", "\"x0y0\"")
        .replace("\"Gb\"", "\"x0y1\"")
        .replace("\"Gr\"", "\"x1y0\"")
        .replace("\"B\"", "\"x1y1\"");
}

} // namespace

TEST_F(SameSurvey, ComesFromEveryKindOfFile)
{
    const QByteArray png = surveyOf("*.png", Mosaic::bayer());
    EXPECT_GT(png.size(), 1000);
    EXPECT_EQ(surveyOf("*.tif", Mosaic::bayer()), png);
    EXPECT_EQ(surveyOf("*.pgm", Mosaic::bayer()), png);
    const QByteArray fits = surveyOf("*.fits", std::nullopt);
    EXPECT_NE(fits, png);
    EXPECT_EQ(withPlaceNames(fits), png);
    EXPECT_EQ(surveyOf("*.dng", std::nullopt), fits);
}
