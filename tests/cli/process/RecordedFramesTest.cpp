// SPDX-License-Identifier: MIT
#include "tests/cli/process/CompanionFixture.h"
#include "tests/harness/SharedData.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <gtest/gtest.h>

namespace {

const QString Folder = sharedData("darkframes/colour_cmos_1280x960");

/// One camera per threshold, so that the detections can run side by side.
QByteArray camerasFor(const QStringList& thresholds, const QByteArray& sensor)
{
    QByteArray cameras;
    for (const QString& threshold : thresholds) {
        cameras +=
            "[camera" + threshold.toLatin1() + "]\nserial=T" + threshold.toLatin1() +
            "\nwidth=1280\nheight=960\nsensor=" + sensor +
            "\nuserCapacity=60000\nrecordedFrames=" + QDir(Folder).absolutePath().toLocal8Bit() +
            "\n";
    }
    return cameras;
}

QByteArray hashOf(const QString& fileName)
{
    QFile file(fileName);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(fileName);
    return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256).toHex();
}

class RecordedFramesOfAColourSensor : public testing::TestWithParam<int>
{};

} // namespace

// The detection sees ten of the ten recorded frames, whichever comes first, so its means are those
// of the recording. On a machine that stalls for longer than a frame takes, one is lost, as it is
// with any camera, and another one is seen twice; so what is not right is tried again.
TEST_P(RecordedFramesOfAColourSensor, GiveTheListFilesThatAreKnownForThem)
{
    constexpr int Attempts = 4;
    QFile reference(Folder + QStringLiteral("/detection.json"));
    if (!reference.open(QIODevice::ReadOnly)) {
        GTEST_SKIP() << "the recorded frames are not here";
    }
    const QJsonObject thresholds = QJsonDocument::fromJson(reference.readAll())
                                       .object()[QStringLiteral("modes")]
                                       .toObject()[QString::number(GetParam())]
                                       .toObject()[QStringLiteral("thresholds")]
                                       .toObject();
    ASSERT_EQ(thresholds.size(), 5);

    const CompanionFixture fixture(
        camerasFor(thresholds.keys(), GetParam() == 11 ? "bayer" : "mono"));
    QStringList wrong = thresholds.keys();
    for (int attempt = 0; attempt < Attempts && !wrong.isEmpty(); ++attempt) {
        std::vector<std::unique_ptr<QProcess>> processes;
        for (const QString& threshold : wrong) {
            processes.push_back(
                fixture.start({QStringLiteral("detect"), u'T' + threshold, QStringLiteral("--json"),
                               QStringLiteral("--like-editor"), QStringLiteral("--threshold"),
                               threshold, QStringLiteral("--out"), fixture.file(threshold)}));
        }
        QStringList stillWrong;
        for (std::size_t i = 0; i < processes.size(); ++i) {
            const QString threshold = wrong[static_cast<qsizetype>(i)];
            const QJsonObject expected = thresholds[threshold].toObject();
            const Finished finished = CompanionFixture::finish(*processes[i]);
            EXPECT_EQ(finished.status, 0) << finished.err.constData();
            const QJsonObject json = finished.json();
            EXPECT_EQ(json[QStringLiteral("colorMode")].toInt(), GetParam());
            if (hashOf(fixture.file(threshold)) !=
                    expected[QStringLiteral("sha256OfListFile")].toString().toLatin1() ||
                json[QStringLiteral("found")] != expected[QStringLiteral("unique")]) {
                stillWrong.append(threshold);
            }
        }
        wrong = stillWrong;
    }
    EXPECT_TRUE(wrong.isEmpty()) << qPrintable(wrong.join(u' '));
}

// From the files themselves there is nothing to lose.
TEST_P(RecordedFramesOfAColourSensor, GiveTheSameListFilesWithoutACamera)
{
    QFile reference(Folder + QStringLiteral("/detection.json"));
    if (!reference.open(QIODevice::ReadOnly)) {
        GTEST_SKIP() << "the recorded frames are not here";
    }
    const QJsonObject thresholds = QJsonDocument::fromJson(reference.readAll())
                                       .object()[QStringLiteral("modes")]
                                       .toObject()[QString::number(GetParam())]
                                       .toObject()[QStringLiteral("thresholds")]
                                       .toObject();
    ASSERT_EQ(thresholds.size(), 5);
    const CompanionFixture fixture(QByteArray{});
    for (const QString& threshold : thresholds.keys()) {
        const QJsonObject expected = thresholds[threshold].toObject();
        const auto process = fixture.start(
            {QStringLiteral("detect"), QStringLiteral("--frames"), QDir(Folder).absolutePath(),
             GetParam() == 11 ? QStringLiteral("--bayer") : QStringLiteral("--mono"),
             QStringLiteral("--like-editor"), QStringLiteral("--json"),
             QStringLiteral("--threshold"), threshold, QStringLiteral("--out"),
             fixture.file(threshold)});
        const Finished finished = CompanionFixture::finish(*process);
        EXPECT_EQ(finished.status, 0) << finished.err.constData();
        EXPECT_EQ(finished.json()[QStringLiteral("found")], expected[QStringLiteral("unique")]);
        EXPECT_EQ(hashOf(fixture.file(threshold)),
                  expected[QStringLiteral("sha256OfListFile")].toString().toLatin1());
    }
}

INSTANTIATE_TEST_SUITE_P(BothColourModes, RecordedFramesOfAColourSensor, testing::Values(6, 11));
