// SPDX-License-Identifier: MIT
// `survey` and `detect` on frames from files.

#include "cli/Companion.h"
#include "cli/EntryText.h"
#include "cli/Interruption.h"
#include "simulator/SimulatedCameraSdk.h"
#include "tests/cli/RecordedConsole.h"
#include "tests/sdk/EepromSdk.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <functional>
#include <set>

namespace {

using Position = std::pair<int, int>;
using Positions = std::set<Position>;

/// What a run of the companion left behind.
struct Outcome
{
    int status = -1;
    QByteArray out;
    QByteArray err;

    [[nodiscard]] QJsonObject json() const { return QJsonDocument::fromJson(out).object(); }
    [[nodiscard]] Positions pixels() const
    {
        Positions positions;
        for (const QJsonValue& pair : json()[QStringLiteral("pixels")].toArray()) {
            positions.insert({pair.toArray().at(0).toInt(), pair.toArray().at(1).toInt()});
        }
        return positions;
    }
};

/// The companion amid files of its own. @p arguments are separated by blanks, in names of files DIR
/// is the folder.
class FrameCommands : public testing::Test
{
protected:
    [[nodiscard]] QString path(const QString& name) const { return m_folder.filePath(name); }

    Outcome run(QString arguments, const std::function<void(Interruption&)>& prepare = {})
    {
        arguments.replace(QStringLiteral("DIR"), m_folder.path());
        RecordedConsole recorded;
        Interruption interruption;
        if (prepare) {
            prepare(interruption);
        }
        Companion companion(
            [this]() -> std::unique_ptr<CameraSdk> {
                ++m_sdks;
                return std::make_unique<EepromSdk>();
            },
            {}, recorded.console(), interruption);
        Outcome outcome;
        outcome.status =
            companion.run(QStringList(QStringLiteral("vorn-hotpixel")) + arguments.split(u' '));
        outcome.out = recorded.out();
        outcome.err = recorded.err().replace(m_folder.path().toUtf8(), "DIR");
        return outcome;
    }

    /// Two frames of level @p level, or 256 times that for 16 bits, in which some pixels are
    /// brighter: by 100 in the corners and by 50 at (5, 2); (8, 4) is it by 60 in the second one
    /// only.
    void makeFrames(int width = 20, int height = 10, int bits = 8,
                    const QString& suffix = QStringLiteral("png"))
    {
        for (int frame = 0; frame < 2; ++frame) {
            QImage image(width, height,
                         bits == 16 ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8);
            for (int y = 0; y < height; ++y) {
                for (int x = 0; x < width; ++x) {
                    const bool corner = (x == 0 || x == width - 1) && (y == 0 || y == height - 1);
                    const int value = 10 + (corner ? 100 : 0) + (x == 5 && y == 2 ? 50 : 0) +
                                      (x == 8 && y == 4 ? 60 * frame : 0);
                    if (bits == 16) {
                        reinterpret_cast<quint16*>(image.scanLine(y))[x] =
                            static_cast<quint16>(value * 256);
                    } else {
                        image.scanLine(y)[x] = static_cast<uchar>(value);
                    }
                }
            }
            ASSERT_TRUE(image.save(path(QStringLiteral("%1.%2").arg(frame).arg(suffix))));
        }
    }

    static QByteArray contentOf(const QString& fileName)
    {
        QFile file(fileName);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(fileName);
        return file.readAll();
    }

    QTemporaryDir m_folder;
    int m_sdks = 0;
};

const Positions Corners{{0, 0}, {19, 0}, {0, 9}, {19, 9}};

Positions with(Positions positions, const Position& one)
{
    positions.insert(one);
    return positions;
}

} // namespace

TEST_F(FrameCommands, DetectEachPixelOfTheSensorOnce)
{
    makeFrames();
    for (const char* sensor : {"--mono", "--bayer"}) {
        const Outcome found =
            run(QStringLiteral("detect --frames DIR --json ") + QLatin1String(sensor));
        EXPECT_EQ(found.status, 0) << found.err.constData();
        EXPECT_EQ(found.err, QByteArray());
        EXPECT_EQ(found.pixels(), with(Corners, {5, 2})) << sensor;
        EXPECT_EQ(found.json()[QStringLiteral("found")].toInt(), 5);
        EXPECT_EQ(found.json()[QStringLiteral("flickering")].toInt(), 1);
        EXPECT_EQ(found.json()[QStringLiteral("outcome")].toString(), QStringLiteral("found"));
        EXPECT_EQ(found.json()[QStringLiteral("frames")].toInt(), 2);
        EXPECT_EQ(found.json()[QStringLiteral("threshold")].toInt(), 40);
    }
    EXPECT_EQ(m_sdks, 0) << "files need no camera";
}

TEST_F(FrameCommands, DetectByThresholdAndByDeviations)
{
    makeFrames();
    const auto found = [this](const char* options) {
        return run(QStringLiteral("detect --frames DIR --mono --json ") + QLatin1String(options))
            .pixels();
    };
    EXPECT_EQ(found("--threshold 60"), Corners);
    EXPECT_EQ(found("--threshold 101"), Positions());
    // Most pixels are alike, so the robust deviation is 0, and anything brighter stands out.
    EXPECT_EQ(found("--sigma 3"), with(with(Corners, {5, 2}), {8, 4}));
}

TEST_F(FrameCommands, DetectFlickeringPixelsWhenAsked)
{
    makeFrames();
    EXPECT_EQ(run(QStringLiteral("detect --frames DIR --mono --flickering --json")).pixels(),
              with(with(Corners, {5, 2}), {8, 4}));
}

TEST_F(FrameCommands, DetectIn16BitsWithThresholdsOf16Bits)
{
    makeFrames(20, 10, 16);
    const Outcome usual = run(QStringLiteral("detect --frames DIR --mono --json"));
    EXPECT_EQ(usual.json()[QStringLiteral("threshold")].toInt(), 40 * 256);
    EXPECT_EQ(usual.pixels(), with(Corners, {5, 2}));
    EXPECT_EQ(run(QStringLiteral("detect --frames DIR --mono --threshold 15000 --json")).pixels(),
              Corners);
}

TEST_F(FrameCommands, RefuseAThresholdThatFramesOf8BitsDoNotReach)
{
    makeFrames();
    const Outcome refused = run(QStringLiteral("detect --frames DIR --mono --threshold 256"));
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.err,
              QByteArray("vorn-hotpixel: The threshold has to be a number from 5 to 255, not "
                         "\"256\". See \"vorn-hotpixel detect --help\".\n"));
}

TEST_F(FrameCommands, DetectLikeTheEditorBehindTheEndOfARow)
{
    makeFrames();
    const Outcome found = run(QStringLiteral("detect --frames DIR --mono --like-editor --json"));
    EXPECT_EQ(found.status, 0);
    // (0, 9) is seen at (20, 8), too, and the walk ends before it comes to (19, 9).
    EXPECT_EQ(found.pixels(), (Positions{{0, 0}, {19, 0}, {5, 2}, {20, 8}, {0, 9}}));
    EXPECT_EQ(found.err,
              QByteArray("Note: 1 entry at x = 20, behind the sensor's last column, as a "
                         "detection lists them.\n"));
}

TEST_F(FrameCommands, RefuseFramesThatTheEditorDoesNotTake)
{
    makeFrames(20, 10, 16);
    const Outcome refused = run(QStringLiteral("detect --frames DIR --mono --like-editor"));
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.err,
              QByteArray("vorn-hotpixel: The editor takes frames of 8 bits: --like-editor needs "
                         "them.\n"));
}

TEST_F(FrameCommands, PrintWhatTheyFindForPeople)
{
    makeFrames();
    const Outcome found = run(QStringLiteral("detect --frames DIR/0.png DIR/1.png --bayer"));
    EXPECT_EQ(QString::fromUtf8(found.out).replace(m_folder.path(), QStringLiteral("DIR")),
              QStringLiteral("Frames: 2 files, DIR/0.png to DIR/1.png\n"
                             "Sensor: SIZE pixels of 8 bits, raw Bayer\n"
                             "New hotpixels, more than 40 grey levels above the mean of their "
                             "plane: 5\n"
                             "  even columns, even rows       1\n"
                             "  even columns, odd rows        1\n"
                             "  odd columns, even rows        2\n"
                             "  odd columns, odd rows         1\n"
                             "  (0, 0)   (0, 9)   (19, 0)  (5, 2)   (19, 9)\n")
                  .replace(QStringLiteral("SIZE"), cli::sizeText({20, 10})));
}

TEST_F(FrameCommands, SaveListTableAndReport)
{
    makeFrames();
    const Outcome found = run(QStringLiteral("detect --frames DIR --mono --out DIR/list.txt --csv "
                                             "DIR/table.csv --report DIR/page.html"));
    EXPECT_EQ(found.status, 0) << found.err.constData();
    EXPECT_EQ(contentOf(path(QStringLiteral("list.txt"))),
              QByteArray("0 0 1\n19 0 1\n5 2 1\n0 9 1\n19 9 1\n"));
    EXPECT_EQ(contentOf(path(QStringLiteral("table.csv"))),
              QByteArray("x,y,plane,mean,temporalNoise,greatest,class\n"
                         "0,0,all,110,0,110,new\n"
                         "19,0,all,110,0,110,new\n"
                         "5,2,all,60,0,60,new\n"
                         "0,9,all,110,0,110,new\n"
                         "19,9,all,110,0,110,new\n"
                         "8,4,all,40,42.42640687,70,flickering\n"));
    const QByteArray page = contentOf(path(QStringLiteral("page.html")));
    EXPECT_TRUE(page.startsWith("<!DOCTYPE html>"));
    EXPECT_TRUE(page.contains("vorn-hotpixel detect --frames " + m_folder.path().toUtf8() +
                              " --mono --out"));
    for (const char* file : {"list.txt: 5 entries", "table.csv", "page.html"}) {
        EXPECT_TRUE(found.out.contains(file)) << found.out.constData();
    }
}

TEST_F(FrameCommands, QuoteTheCommandInAReportForAShell)
{
    makeFrames();
    QDir(path(QString())).mkpath(QStringLiteral("it's"));
    for (const char* name : {"0.png", "1.png"}) {
        QFile::rename(path(QLatin1String(name)),
                      path(QStringLiteral("it's/") + QLatin1String(name)));
    }
    run(QStringLiteral("survey --frames DIR/it's --mono --report DIR/page.html"));
    EXPECT_TRUE(
        contentOf(path(QStringLiteral("page.html")))
            .contains(("'" + m_folder.path() + "/it'\\''s' --mono").toHtmlEscaped().toUtf8()))
        << contentOf(path(QStringLiteral("page.html"))).left(9000).right(1000).constData();
}

TEST_F(FrameCommands, SaveTheFramesThatAreUsed)
{
    makeFrames(20, 10, 8, QStringLiteral("bmp"));
    const Outcome saved =
        run(QStringLiteral("detect --frames DIR --mono --save-frames DIR/new/folder --json"));
    EXPECT_EQ(saved.status, 0) << saved.err.constData();
    EXPECT_EQ(QDir(path(QStringLiteral("new/folder"))).entryList(QDir::Files),
              (QStringList{QStringLiteral("frame_0000.png"), QStringLiteral("frame_0001.png")}));
    EXPECT_EQ(run(QStringLiteral("detect --frames DIR/new/folder --mono --json")).pixels(),
              saved.pixels());
    // What is played back from a folder is all that is in it.
    const Outcome again =
        run(QStringLiteral("detect --frames DIR --mono --save-frames DIR/new/folder"));
    EXPECT_EQ(again.status, 1);
    EXPECT_EQ(again.err, QByteArray("vorn-hotpixel: DIR/new/folder: the folder is not empty.\n"));
}

TEST_F(FrameCommands, SurveyWithoutChangingAnything)
{
    makeFrames();
    const Outcome survey = run(
        QStringLiteral("survey --frames DIR --bayer --capacity 4 --report DIR/page.html --json"));
    EXPECT_EQ(survey.status, 0) << survey.err.constData();
    const QJsonObject json = survey.json();
    EXPECT_EQ(json[QStringLiteral("frames")].toInt(), 2);
    EXPECT_EQ(json[QStringLiteral("planes")].toArray().size(), 5);
    EXPECT_EQ(json[QStringLiteral("hot")].toInt(), 5);
    EXPECT_EQ(json[QStringLiteral("flickering")].toArray().size(), 1);
    const QJsonObject capacity = json[QStringLiteral("capacity")].toObject();
    EXPECT_EQ(capacity[QStringLiteral("entries")].toInt(), 4);
    EXPECT_EQ(capacity[QStringLiteral("found")].toInt(), 4);
    const QString threshold = QString::number(capacity[QStringLiteral("threshold")].toInt());
    EXPECT_EQ(
        run(QStringLiteral("detect --frames DIR/0.png DIR/1.png --bayer --json --threshold ") +
            threshold)
            .pixels(),
        Corners);
    EXPECT_TRUE(contentOf(path(QStringLiteral("page.html"))).startsWith("<!DOCTYPE html>"));
    EXPECT_EQ(m_sdks, 0);
}

TEST_F(FrameCommands, SurveyAgreesWithDetectForEachThreshold)
{
    makeFrames(37, 23);
    for (const char* sensor : {" --mono", " --bayer"}) {
        const QJsonObject above =
            run(QStringLiteral("survey --frames DIR --json") + QLatin1String(sensor))
                .json()[QStringLiteral("planes")]
                .toArray()[0]
                .toObject()[QStringLiteral("above")]
                .toObject();
        for (const char* threshold : {"5", "30", "45", "50", "95", "100", "255"}) {
            const Outcome found = run(QStringLiteral("detect --frames DIR --json --threshold ") +
                                      QLatin1String(threshold) + QLatin1String(sensor));
            EXPECT_EQ(found.json()[QStringLiteral("found")], above[QLatin1String(threshold)]);
        }
    }
}

TEST_F(FrameCommands, SurveyNeedsTwoFramesAndDetectOne)
{
    makeFrames();
    for (const char* frames : {"DIR/0.png", "DIR/0.png DIR/0.png"}) {
        const Outcome survey =
            run(QStringLiteral("survey --mono --frames ") + QLatin1String(frames));
        EXPECT_EQ(survey.status, 1);
        EXPECT_EQ(
            survey.err,
            QByteArray("vorn-hotpixel: DIR/0.png: one frame only; at least 2 are necessary\n"));
    }
    for (const char* option : {"", " --like-editor"}) {
        const Outcome found =
            run(QStringLiteral("detect --frames DIR/0.png --mono --json") + QLatin1String(option));
        EXPECT_EQ(found.status, 0);
        EXPECT_TRUE(found.pixels().contains({5, 2}));
    }
}

TEST_F(FrameCommands, EndWithOneLineThatNamesTheFile)
{
    makeFrames();
    QDir().mkpath(path(QStringLiteral("empty")));
    ASSERT_TRUE(QImage(20, 9, QImage::Format_Grayscale8).save(path(QStringLiteral("size.pgm"))));
    ASSERT_TRUE(QImage(20, 10, QImage::Format_Grayscale16).save(path(QStringLiteral("depth.tif"))));
    ASSERT_TRUE(QImage(20, 10, QImage::Format_RGB32).save(path(QStringLiteral("colour.bmp"))));
    QFile text(path(QStringLiteral("text.dat")));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("no image, no image, no image");
    text.close();
    QFile::copy(path(QStringLiteral("0.png")), path(QStringLiteral("cut.dat")));
    ASSERT_TRUE(QFile::resize(path(QStringLiteral("cut.dat")), 60));

    const struct
    {
        const char* arguments;
        const char* message;
    } cases[] = {
        {"DIR/0.png DIR/1.png", "DIR/0.png: doesn't say whether its sensor has colour filters; "
                                "--bayer or --mono does."},
        {"DIR/0.png DIR/size.pgm --mono",
         "DIR/size.pgm: 20 × 9 pixels of 8 bits, and not 20 × 10 pixels of 8 bits as DIR/0.png"},
        {"DIR/0.png DIR/depth.tif --mono", "DIR/depth.tif: 20 × 10 pixels of 16 bits, and not "
                                           "20 × 10 pixels of 8 bits as DIR/0.png"},
        {"DIR/0.png DIR/colour.bmp --mono", "DIR/colour.bmp: a colour image; a dark frame is grey"},
        {"DIR/0.png DIR/text.dat --mono", "DIR/text.dat: not an image of a kind that is read here"},
        {"DIR/0.png DIR/cut.dat --mono", "DIR/cut.dat: truncated"},
        {"DIR/missing.png --mono", "DIR/missing.png: there is no such file"},
        {"DIR/x*.png --mono", "DIR/x*.png: there is no such file"},
        {"DIR/empty --mono", "DIR/empty: there are no frames in this folder"},
    };
    for (const auto& [arguments, message] : cases) {
        for (const char* command : {"survey --frames ", "detect --frames "}) {
            const Outcome failed = run(QLatin1String(command) + QLatin1String(arguments));
            EXPECT_EQ(failed.status, 1) << arguments;
            EXPECT_EQ(failed.out, QByteArray()) << arguments;
            EXPECT_EQ(failed.err, QByteArray("vorn-hotpixel: ") + message + '\n');
        }
    }
}

TEST_F(FrameCommands, EndWhenTheEndIsAskedFor)
{
    makeFrames();
    for (const char* command : {"survey", "detect"}) {
        const Outcome ended = run(QLatin1String(command) + QStringLiteral(" --frames DIR --mono"),
                                  [](Interruption& interruption) { interruption.request(); });
        EXPECT_EQ(ended.status, 1);
        EXPECT_EQ(ended.err, QByteArray("vorn-hotpixel: Interrupted.\n"));
    }
}
